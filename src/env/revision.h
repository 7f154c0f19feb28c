// The source revision of the build; in a file of its own because the build defines it there.
#pragma once

namespace tarvik {

const char *sourceRevision();

}  // namespace tarvik

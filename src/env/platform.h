// Facts of the machine and its operating system; one source file a system.
#pragma once

namespace tarvik {

inline constexpr int kPlatformTextBytes = 512;

const char *platformName();       // "linux64", "mac64"
const char *platformExtension();  // "[x86]", "[arm]", "[rosetta2]"

// The processor's brand name and the operating system's type, release and version into a buffer
// of kPlatformTextBytes; 0, or the code of the failed query, which leaves the buffer empty.
int processorBrand(char *buffer);
int systemDescription(char *buffer);

int onlineProcessors();
// The smaller of the physical core count and the number of online processors, at least 1.
int physicalCoreCount();

// False when the processor lacks the vector instructions that the kernels are compiled for.
bool processorSupported();

}  // namespace tarvik

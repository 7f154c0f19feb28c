// Between the user's model and the MIP kernel's currency.
#pragma once

#include "mip/mip_model.h"
#include "model/model_data.h"

namespace tarvik {

MipModel mipFromModel(const ModelData &data);

}  // namespace tarvik

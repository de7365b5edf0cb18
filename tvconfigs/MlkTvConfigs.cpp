#include "tvconfigs/MlkTvConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

MlkTvConfigs::MlkTvConfigs(const char* /*path*/) {}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// Tag of every log line of the TV feature service and its editors.
inline constexpr char kTvConfigsTag[] = "MlkTvConfigs";

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

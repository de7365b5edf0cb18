#pragma once

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Line numbers in log messages. Tools that read the log find a message by the function's name and
 * this number, so that both stay as they are when the code moves.
 */
inline constexpr int kLineOfMaxIdCheck = 522; /**< "SetProjectIdInternal" */
inline constexpr int kLineOfAvrPath = 780;    /**< "updateAudioConfig" */
inline constexpr int kLineOfTvSysMap = 875;   /**< "InitTvSysMapInfo" */

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

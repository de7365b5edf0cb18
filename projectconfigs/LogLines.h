#pragma once

namespace vendor::morlak::mlkconfigs::V1_0::implementation::log_line {

/*
 * Line numbers in messages of the form "[function:line] text", as in regional/LogLines.h: tools
 * that read the log tell messages apart by them, so that they do not follow the code.
 */

// SetProjectIdInternal
constexpr int kMaxIdCheck = 522;

// updateAudioConfig
constexpr int kAvrPath = 780;

// InitTvSysMapInfo
constexpr int kTvSysMap = 875;

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::log_line

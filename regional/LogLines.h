#pragma once

namespace vendor::morlak::mlkconfigs::V1_0::implementation::log_line {

/*
 * Line numbers in messages of the form "[function:line] text". Tools that read the log tell these
 * messages apart by function and number, so each number below is fixed. The numbers of messages
 * that are not listed here follow the code.
 */

// TvSysMapCfgHolder::saveCountryId
constexpr int kSavedId = 133;
constexpr int kSavedFolder = 142;
constexpr int kSavedFile = 153;

// TvSysMapCfgHolder::loadConfigXmlFile
constexpr int kSystemFile = 224;
constexpr int kNoSystemFile = 227;
constexpr int kSystemFileBroken = 235;
constexpr int kMapFile = 243;

// TvSysMapCfgHolder::loadCountryTvConfigMapXML
constexpr int kNoMapFile = 373;
constexpr int kMapFileElsewhere = 383;
constexpr int kMapPath = 386;
constexpr int kMapFileBroken = 392;
constexpr int kNoTvSystem = 417;
constexpr int kNoTvConfig = 427;
constexpr int kNoCountryName = 432;
constexpr int kMapSize = 436;

// TvSysMapCfgHolder::parseCountryId
constexpr int kIdFolder = 484;
constexpr int kIdFile = 500;
constexpr int kIdNotRead = 505;
constexpr int kIdNotWritten = 524;
constexpr int kIdInUse = 538;

// FreqTableParser::ParseFreqTable
constexpr int kTableUnreadable = 92;

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::log_line

#pragma once

#include <android/log.h>

#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "regional/CountryFreqMapParse.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What tests change about the country map that the process shares. */
struct CountryFreqMapParsePeer {
    /** Puts it back to how a process starts with it. */
    static void forget() {
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        const std::lock_guard<std::mutex> lock(map.mMutex);
        map.mCoutryFreqMap.clear();
        map.mTvConfigPath.clear();
    }
    static std::vector<CountryFreqMapEntry> entries() {
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        const std::lock_guard<std::mutex> lock(map.mMutex);
        return map.mCoutryFreqMap;
    }
};

/** A set of its own with regional files, and what is logged while they are read. */
class RegionalFiles {
  public:
    RegionalFiles() { CountryFreqMapParsePeer::forget(); }
    ~RegionalFiles() { CountryFreqMapParsePeer::forget(); }
    RegionalFiles(const RegionalFiles&) = delete;
    RegionalFiles& operator=(const RegionalFiles&) = delete;

    /** Writes a file of the tvconfigs partition. */
    std::string write(const std::string& name, const std::string& text) const {
        return mSet.dir().write("tvconfigs/" + name, text);
    }
    /** Writes the frequency map that consists of these blocks. */
    std::string writeFreqMap(const std::string& blocks) const {
        return write("freqtables/country_freq_map.xml", blocks);
    }
    mlk::testing::HostSet& set() { return mSet; }
    const mlk::testing::HostSet& set() const { return mSet; }
    mlk::testing::LogCapture& log() { return mLog; }
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "MlkProjectConfigs");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }

  private:
    mlk::testing::HostSet mSet;
    mlk::testing::LogCapture mLog;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <android/log.h>

#include <array>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "platform/Platform.h"
#include "regional/CountryFreqMapParse.h"
#include "regional/CountryListParser.h"
#include "regional/FreqTableParser.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Gives tests access to the process's RegionalData. */
struct RegionalPeer {
    /** Restores the state at the start of a process. */
    static void forget() {
        for (NameTable* const table : tables()) {
            const std::lock_guard<std::shared_mutex> lock(table->mMutex);
            table->mAdded.clear();
        }
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        const std::lock_guard<std::mutex> lock(map.mMutex);
        map.mCoutryFreqMap.clear();
        map.mTvConfigPath.clear();
    }
    /** The number of unknown names in all tables. */
    static size_t addedNames() {
        size_t count = 0;
        for (NameTable* const table : tables()) {
            const std::lock_guard<std::shared_mutex> lock(table->mMutex);
            count += table->mAdded.size();
        }
        return count;
    }
    static std::vector<CountryFreqMapEntry> entries() {
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        const std::lock_guard<std::mutex> lock(map.mMutex);
        return map.mCoutryFreqMap;
    }

  private:
    static std::array<NameTable*, 3> tables() {
        RegionalData& data = RegionalData::GetInstance();
        return {&data.countries.mNames, &data.tvSystemCountries, &data.modulations};
    }
};

/** Makes a holder on the set of the process. */
inline TvSysMapCfgHolder processHolder() {
    return {systemPartitions(), systemProperties(), RegionalData::GetInstance()};
}

/** Makes a parser on the RegionalData of the process. */
inline FreqTableParser processParser() {
    return FreqTableParser(RegionalData::GetInstance());
}

/** A set with regional files, and the log of reading them. */
class RegionalFiles {
  public:
    RegionalFiles() { RegionalPeer::forget(); }
    ~RegionalFiles() { RegionalPeer::forget(); }
    RegionalFiles(const RegionalFiles&) = delete;
    RegionalFiles& operator=(const RegionalFiles&) = delete;

    /** Writes a file of the tvconfigs partition. */
    std::string write(const std::string& name, const std::string& text) const {
        return mSet.dir().write("tvconfigs/" + name, text);
    }
    /** Writes a map of channel plans of these blocks. */
    std::string writeFreqMap(const std::string& blocks) const {
        return write("freqtables/country_freq_map.xml", blocks);
    }
    mlk::testing::HostSet& set() { return mSet; }
    const mlk::testing::HostSet& set() const { return mSet; }
    mlk::testing::LogCapture& log() { return mLog; }
    const mlk::testing::LogCapture& log() const { return mLog; }
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

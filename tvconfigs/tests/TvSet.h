#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "tvconfigs/MlkTvConfigs.h"
#include "tvconfigs/TvFeatures.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A set with a TV service; the log is captured. */
class TvSet {
  public:
    /** Writes the set's own file, "tvconfigs/tv.config", and starts the service on it. */
    ::android::sp<IMlkTvConfigs> start(const std::string& content) {
        mSet.dir().write("tvconfigs/tv.config", content);
        return start();
    }
    /** Starts the service on the set's own file as it is. */
    static ::android::sp<IMlkTvConfigs> start() { return new MlkTvConfigs(nullptr); }

    std::string path() const { return mSet.tvconfigs() + "/tv.config"; }
    std::string file() const { return mSet.dir().read("tvconfigs/tv.config"); }
    const ::mlk::testing::TempDir& dir() const { return mSet.dir(); }

    /** The value in the property store; nullopt if there is no such property. */
    std::optional<std::string> property(const std::string& key) const {
        const std::string name = "data/property/" + key;
        if (!std::filesystem::exists(mSet.dir().path(name))) {
            return {};
        }
        return mSet.dir().read(name);
    }
    void setProperty(const std::string& key, const std::string& value) {
        mSet.setProperty(key, value);
    }
    void removeProperty(const std::string& key) {
        std::filesystem::remove(mSet.dir().path("data/property/" + key));
    }

    ::mlk::testing::LogCapture& log() { return mLog; }

  private:
    ::mlk::testing::HostSet mSet;
    ::mlk::testing::LogCapture mLog;
};

/** Records the calls of an editor: "get KEY", "set KEY=VALUE". Has fixed values and stores none. */
class RecordingEditor : public ConfigEditor {
  public:
    using Calls = std::vector<std::string>;

    /** @param name  is put before each call in `calls`, which must outlive the object */
    RecordingEditor(std::string name, Calls& calls, std::map<std::string, std::string> values = {})
        : mName(std::move(name)), mCalls(calls), mValues(std::move(values)) {}

    bool Set(const char* key, const char* value) override {
        mCalls.push_back(mName + " set " + key + '=' + value);
        return false;
    }
    bool Get(const char* key, char* value) const override {
        mCalls.push_back(mName + " get " + key);
        // The caller clears the buffer each time.
        EXPECT_EQ(std::string(value, kValueSize), std::string(kValueSize, '\0'));
        const auto found = mValues.find(key);
        if (found == mValues.end()) {
            value[0] = 'x';
            return false;
        }
        found->second.copy(value, kValueSize - 1);
        return true;
    }

  private:
    const std::string mName;
    Calls& mCalls;
    const std::map<std::string, std::string> mValues;
};

/** The service with editors of the test's choice: the file's, null for none, and those after it. */
inline ::android::sp<MlkTvConfigs> serviceWith(std::unique_ptr<FileConfigEditor> file,
                                               TvFeatures::EditorList others) {
    return new MlkTvConfigs(std::make_unique<TvFeatures>(std::move(file), std::move(others)));
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

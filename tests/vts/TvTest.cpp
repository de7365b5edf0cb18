// IMlkTvConfigs against the TV feature file and the properties of this set.

#include <sys/statvfs.h>

#include "tests/vts/Hal.h"
#include "tests/vts/Restore.h"
#include "tests/vts/TvRows.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::hardware::hidl_string;

namespace {

using I = IMlkTvConfigs;

std::vector<std::string> tvKeys() {
    std::vector<std::string> keys = {kAtvSystemKey, kDtvSystemKey};
    for (const TvFlagRow& row : tvFlagRows()) {
        keys.emplace_back(row.key);
    }
    return keys;
}

bool isOnReadOnlyMount(const std::string& path) {
    struct statvfs status {};
    return statvfs(path.c_str(), &status) == 0 && (status.f_flag & ST_RDONLY) != 0;
}

}  // namespace

class TvAnswers : public HalTest<IMlkTvConfigs> {};

TEST_P(TvAnswers, AreThoseOfTheSet) {
    check(tvQuestions(service, PlainFeatures(set.tvConfigPath())));
}

MLK_ON_EVERY_INSTANCE(TvAnswers, IMlkTvConfigs);

class TvWrites : public HalWriteTest<IMlkTvConfigs> {
  protected:
    void SetUp() override {
        HalWriteTest<IMlkTvConfigs>::SetUp();
        if (service == nullptr || IsSkipped()) {
            return;
        }
        for (const TvFlagRow& row : tvFlagRows()) {
            mFlags[row.type] = flag(row);
        }
        mAtvSystem = ask(*service, MLK_METHOD(I, getAtvSystem));
        mDtvSystem = ask(*service, MLK_METHOD(I, getDtvSystem));
    }
    void TearDown() override {
        if (service != nullptr) {
            restoreFlags();
            restoreSystem(MLK_METHOD(I, setAtvSystem), mAtvSystem);
            restoreSystem(MLK_METHOD(I, setDtvSystem), mDtvSystem);
        }
        HalWriteTest<IMlkTvConfigs>::TearDown();
    }

    std::string flag(const TvFlagRow& row) { return ask(*service, row.getterName, row.getter); }
    std::string setFlag(const TvFlagRow& row, bool enabled) {
        return ask(*service, row.setterName, row.setter, enabled);
    }
    const TvFlagRow& rowOf(ConfigType type) const {
        for (const TvFlagRow& row : tvFlagRows()) {
            if (row.type == type) {
                return row;
            }
        }
        abort();
    }

    // Masters come first: the flags below them can be restored only while the masters are on.
    void restoreFlags() {
        for (const TvFlagRow& row : tvFlagRows()) {
            if (flag(row) != mFlags[row.type]) {
                EXPECT_EQ(setFlag(row, mFlags[row.type] == "true"), mFlags[row.type])
                        << row.setterName << " does not put " << row.getterName << " back";
            }
        }
    }

    using SystemSetter = ::android::hardware::Return<void> (I::*)(
            int32_t, std::function<void(const OptionalInt32&)>);
    void restoreSystem(const char* name, SystemSetter setter, const std::string& former) {
        // A value that no setter accepts was not changed.
        static_cast<void>(ask(*service, name, setter, numberOf(former)));
    }

    // The property has the text, and so has the file if it has the key.
    void expectStored(const std::string& call, const std::string& key, const std::string& text) {
        EXPECT_EQ(propertyOf(key), text) << call << " leaves another value in " << key;
        std::string value;
        if (tvFileValue(set.tvConfigPath(), key, value) && !isOnReadOnlyMount(set.tvConfigPath())) {
            EXPECT_EQ(value, text) << call << " leaves another value in " << set.tvConfigPath();
        }
    }

    std::map<ConfigType, std::string> mFlags;
    std::string mAtvSystem;
    std::string mDtvSystem;

  private:
    // Their destructors run last, after the service has restored its values.
    const FileGuard mFile{set.tvConfigPath()};
    const PropertyGuard mProperties{tvKeys()};
};

TEST_P(TvWrites, FlagsChangeAndAreStored) {
    for (const TvFlagRow& row : tvFlagRows()) {
        const bool wanted = flag(row) != "true";
        const bool isCaption = row.master == ConfigType::CLOSE_CAPTION && row.master != row.type;
        const bool held = isCaption && flag(rowOf(row.master)) != "true";
        const std::string expected = wanted && !held ? "true" : "false";
        EXPECT_EQ(setFlag(row, wanted), expected) << row.setterName;
        EXPECT_EQ(flag(row), expected) << row.getterName << " after " << row.setterName;
        EXPECT_EQ(ask(*service, MLK_METHOD(I, getFlag), row.type), expected) << row.setterName;
        expectStored(row.setterName, row.key, expected);
        restoreFlags();
    }
}

TEST_P(TvWrites, SetFlagIsTheSetterOfTheType) {
    for (const TvFlagRow& row : tvFlagRows()) {
        if (row.master == ConfigType::CLOSE_CAPTION) {
            continue;  // the next test
        }
        const bool wanted = flag(row) != "true";
        EXPECT_EQ(ask(*service, MLK_METHOD(I, setFlag), row.type, wanted),
                  wanted ? "true" : "false")
                << "setFlag of " << row.key;
        EXPECT_EQ(flag(row), wanted ? "true" : "false") << row.getterName << " after setFlag";
        restoreFlags();
    }
    for (const uint32_t number : {0U, 4U, 26U, 0xffffffffU}) {
        for (const bool wanted : {false, true}) {
            EXPECT_EQ(
                    ask(*service, MLK_METHOD(I, setFlag), static_cast<ConfigType>(number), wanted),
                    textOf(OptionalBool{false, wanted}))
                    << "setFlag(" << number << ")";
        }
    }
}

TEST_P(TvWrites, CaptionsFollowTheirMaster) {
    const TvFlagRow& master = rowOf(ConfigType::CLOSE_CAPTION);
    std::vector<TvFlagRow> captions;
    for (const TvFlagRow& row : tvFlagRows()) {
        if (row.master == master.type && row.type != master.type) {
            captions.push_back(row);
        }
    }
    ASSERT_EQ(captions.size(), 3U);
    // Off first: a setter that changes nothing writes nothing.
    EXPECT_EQ(setFlag(master, false), "false");
    EXPECT_EQ(setFlag(master, true), "true");
    for (const TvFlagRow& row : captions) {
        EXPECT_EQ(setFlag(row, true), "true") << row.setterName;
        EXPECT_EQ(flag(row), "true") << row.getterName;
        expectStored(row.setterName, row.key, "true");
    }
    EXPECT_EQ(setFlag(master, false), "false");
    for (const TvFlagRow& row : captions) {
        EXPECT_EQ(flag(row), "false") << row.getterName << " without its master";
        expectStored(master.setterName, row.key, "false");
        EXPECT_EQ(ask(*service, MLK_METHOD(I, setFlag), row.type, true), "false")
                << "setFlag of " << row.key << " without its master";
        EXPECT_EQ(flag(row), "false") << row.getterName << " without its master";
    }
}

TEST_P(TvWrites, SystemsHaveTheirRanges) {
    for (const int32_t system : {-1, 2, 5, 0x7fffffff}) {
        const std::string refusal = textOf(OptionalInt32{false, system});
        EXPECT_EQ(ask(*service, MLK_METHOD(I, setAtvSystem), system), refusal);
        EXPECT_EQ(ask(*service, MLK_METHOD(I, getAtvSystem)), mAtvSystem);
        if (system != 2) {
            EXPECT_EQ(ask(*service, MLK_METHOD(I, setDtvSystem), system), refusal);
            EXPECT_EQ(ask(*service, MLK_METHOD(I, getDtvSystem)), mDtvSystem);
        }
    }
    EXPECT_EQ(ask(*service, MLK_METHOD(I, setDtvSystem), 0), textOf(OptionalInt32{false, 0}));
    // A file may have a number that no setter accepts: a change of it could not be undone.
    if (mAtvSystem == "0" || mAtvSystem == "1") {
        const int32_t other = 1 - numberOf(mAtvSystem);
        const std::string text = std::to_string(other);
        EXPECT_EQ(ask(*service, MLK_METHOD(I, setAtvSystem), other), text) << "setAtvSystem";
        EXPECT_EQ(ask(*service, MLK_METHOD(I, getAtvSystem)), text) << "getAtvSystem";
        expectStored("setAtvSystem", kAtvSystemKey, text);
    }
    if (numberOf(mDtvSystem) >= 1 && numberOf(mDtvSystem) <= 4) {
        for (const int32_t system : {1, 2, 3, 4}) {
            const std::string text = std::to_string(system);
            EXPECT_EQ(ask(*service, MLK_METHOD(I, setDtvSystem), system), text) << "setDtvSystem";
            EXPECT_EQ(ask(*service, MLK_METHOD(I, getDtvSystem)), text) << "getDtvSystem";
        }
        EXPECT_EQ(ask(*service, MLK_METHOD(I, setDtvSystem), numberOf(mDtvSystem) % 4 + 1),
                  std::to_string(numberOf(mDtvSystem) % 4 + 1));
        expectStored("setDtvSystem", kDtvSystemKey, std::to_string(numberOf(mDtvSystem) % 4 + 1));
    }
}

TEST_P(TvWrites, ReloadTakesTheFileAgain) {
    const PlainFeatures features(set.tvConfigPath());
    EXPECT_EQ(ask(*service, MLK_METHOD(I, reloadTvConfig),
                  hidl_string(set.tvconfigs + "/no such file")),
              "false")
            << "reloadTvConfig of a file that is not there";
    check(tvQuestions(service, features));
    if (access(set.tvConfigPath().c_str(), R_OK) == 0) {
        EXPECT_EQ(ask(*service, MLK_METHOD(I, reloadTvConfig), hidl_string(set.tvConfigPath())),
                  "true")
                << "reloadTvConfig";
        check(tvQuestions(service, features));
    }
}

MLK_ON_EVERY_INSTANCE(TvWrites, IMlkTvConfigs);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts

#include <android/log.h>
#include <gmock/gmock.h>

#include <filesystem>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::testing::ElementsAre;

constexpr char kPvr[] = "persist.vendor.mlk.tv.enable_pvr";
constexpr char kHdmi[] = "persist.vendor.mlk.tv.enable_hdmi";
constexpr char kCaption[] = "persist.vendor.mlk.tv.enable_cc";

/** A file in which every flag has that value. */
std::string allFlags(const std::string& value) {
    std::string content;
    for (const TvFlag& flag : tvFlags()) {
        content += std::string(flag.key) + '=' + value + '\n';
    }
    return content;
}

std::string withValue(std::string content, const std::string& key, const std::string& value) {
    const size_t begin = content.find(key + '=') + key.size() + 1;
    return content.replace(begin, content.find('\n', begin) - begin, value);
}

class FlagsTest : public ::testing::Test {
  protected:
    TvSet mSet;
};

TEST_F(FlagsTest, ASetterChangesItsValuePropertyAndFile) {
    for (const TvFlag& flag : tvFlags()) {
        TvSet set;
        const std::string content = allFlags("true");
        const auto service = set.start(content);
        EXPECT_EQ(flag.set(*service, false), "false") << flag.name;
        EXPECT_EQ(set.property(flag.key), "false") << flag.name;
        if (flag.key == std::string(kCaption)) {
            continue;  // see CaptionsTest
        }
        EXPECT_EQ(set.file(), withValue(content, flag.key, "false"));
        for (const TvFlag& other : tvFlags()) {
            const bool same = other.key == flag.key;
            EXPECT_EQ(other.get(*service), same ? "false" : "true")
                    << other.name << " after " << flag.name;
            EXPECT_EQ(set.property(other.key).has_value(), same) << other.name;
        }
        EXPECT_EQ(flag.set(*service, true), "true");
        EXPECT_EQ(flag.get(*service), "true");
        EXPECT_EQ(set.property(flag.key), "true");
        EXPECT_EQ(set.file(), content);
    }
}

TEST_F(FlagsTest, ASetterAddsNothingToTheFile) {
    const std::string content = std::string("# kept\n") + kHdmi + "=true\n";
    const auto service = mSet.start(content);
    EXPECT_EQ(tvFlag(kPvr).set(*service, true), "true");
    EXPECT_EQ(mSet.file(), content);
    EXPECT_EQ(mSet.property(kPvr), "true");
}

TEST_F(FlagsTest, ASetterThatChangesNothingWritesNothing) {
    for (const TvFlag& flag : tvFlags()) {
        TvSet set;
        const auto service = set.start(allFlags("true"));
        set.dir().write("tvconfigs/tv.config", "somebody else's");
        EXPECT_EQ(flag.set(*service, true), "true");
        EXPECT_EQ(set.property(flag.key), std::nullopt) << flag.name;
        EXPECT_EQ(set.file(), "somebody else's") << flag.name;
    }
}

TEST_F(FlagsTest, AMasterLeavesTheReceptionPathsAlone) {
    for (const char* master :
         {"persist.vendor.mlk.tv.enable_atv", "persist.vendor.mlk.tv.enable_dtv"}) {
        const auto service = mSet.start(allFlags("true"));
        EXPECT_EQ(tvFlag(master).set(*service, false), "false");
        for (const TvFlag& flag : tvFlags()) {
            EXPECT_EQ(flag.get(*service), flag.key == std::string(master) ? "false" : "true")
                    << flag.name;
        }
        EXPECT_EQ(mSet.file(), withValue(allFlags("true"), master, "false"));
    }
    // The paths can be set while their master is off.
    const TvFlag& cable = tvFlag("persist.vendor.mlk.tv.atv_cable");
    const auto service = mSet.start(allFlags("false"));
    EXPECT_EQ(cable.set(*service, true), "true");
    EXPECT_EQ(cable.get(*service), "true");
}

TEST_F(FlagsTest, WritesThroughAllEditorsInOrder) {
    RecordingEditor::Calls calls;
    TvFeatures::EditorList editors;
    // Neither of them stores anything; the change counts nevertheless.
    editors.push_back(std::make_unique<RecordingEditor>("1", calls));
    editors.push_back(std::make_unique<RecordingEditor>("2", calls));
    const sp<IMlkTvConfigs> service = serviceWith(nullptr, std::move(editors));
    calls.clear();
    EXPECT_EQ(tvFlag(kPvr).set(*service, true), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
    EXPECT_THAT(calls, ElementsAre(std::string("1 set ") + kPvr + "=true",
                                   std::string("2 set ") + kPvr + "=true"));
}

TEST_F(FlagsTest, AValueThatCannotBeStoredIsServedNevertheless) {
    const auto service = mSet.start(allFlags("false"));
    std::filesystem::remove_all(mSet.dir().path("tvconfigs"));
    std::filesystem::remove_all(mSet.dir().path("data"));
    mSet.dir().write("data", "no folder");
    mSet.log().clear();
    EXPECT_EQ(tvFlag(kPvr).set(*service, true), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
    EXPECT_THAT(mSet.log().texts(),
                ElementsAre("ERROR: Set property persist.vendor.mlk.tv.enable_pvr fail!"));
}

TEST_F(FlagsTest, GetFlagIsTheGetterOfItsType) {
    for (const TvFlag& one : tvFlags()) {
        const auto service = mSet.start(allFlags("true"));
        one.set(*service, false);
        for (const TvFlag& flag : tvFlags()) {
            EXPECT_EQ(getFlag(*service, flag.type), flag.get(*service)) << flag.name;
        }
        EXPECT_EQ(getFlag(*service, one.type), "false") << one.name;
    }
}

TEST_F(FlagsTest, SetFlagIsTheSetterOfItsType) {
    for (const TvFlag& flag : tvFlags()) {
        TvSet set;
        const auto service = set.start(allFlags("true"));
        EXPECT_EQ(setFlag(*service, flag.type, false), "false") << flag.name;
        EXPECT_EQ(flag.get(*service), "false") << flag.name;
        EXPECT_EQ(set.property(flag.key), "false") << flag.name;
        EXPECT_EQ(setFlag(*service, flag.type, true), "true") << flag.name;
        EXPECT_EQ(set.property(flag.key), "true") << flag.name;
    }
}

TEST_F(FlagsTest, SetFlagGoesThroughTheInterface) {
    struct Silent : MlkTvConfigs {
        Silent() : MlkTvConfigs(nullptr) {}
        ::android::hardware::Return<void> setPvrEnabled(bool enabled,
                                                        setPvrEnabled_cb answer) override {
            answer({false, enabled});
            return ::android::hardware::Status::fromExceptionCode(
                    ::android::hardware::Status::EX_ILLEGAL_STATE);
        }
    };
    const sp<IMlkTvConfigs> service = new Silent;
    std::string answer;
    const auto status = service->setFlag(
            ConfigType::PVR, true, [&](const OptionalBool& given) { answer = textOf(given); });
    EXPECT_EQ(answer, "refused true");
    EXPECT_FALSE(status.isOk());
}

TEST_F(FlagsTest, ATypeWithoutAFlagIsRefused) {
    const auto service = mSet.start(allFlags("true"));
    for (const uint32_t number : {0U, 4U, 26U, 27U, 256U, 0x80000001U, 0xffffffffU}) {
        const auto type = static_cast<ConfigType>(number);
        mSet.log().clear();
        EXPECT_EQ(getFlag(*service, type), "refused false") << number;
        EXPECT_EQ(setFlag(*service, type, true), "refused true") << number;
        EXPECT_EQ(setFlag(*service, type, false), "refused false") << number;
        EXPECT_THAT(
                mSet.log().texts(ANDROID_LOG_DEBUG, "MlkTvConfigs"),
                ElementsAre("unknown config type, return false", "unknown type, set value to false",
                            "unknown type, set value to false"));
        EXPECT_EQ(mSet.log().lines().size(), 3U);
    }
    EXPECT_EQ(mSet.file(), allFlags("true"));
}

TEST_F(FlagsTest, AnAnswerMayCallTheService) {
    const auto service = mSet.start(allFlags("false"));
    std::string inner;
    service->setPvrEnabled(true, [&](const OptionalBool&) {
        service->pvrEnabled([&](const OptionalBool&) {
            service->setFlag(ConfigType::HDMI, true, [&](const OptionalBool&) {
                service->reloadTvConfig(mSet.path(), [&](const OptionalBool&) {
                    service->setDtvSystem(4, [&](const OptionalInt32&) {
                        inner = tvFlag(kPvr).set(*service, false);
                    });
                });
            });
        });
    });
    EXPECT_EQ(inner, "false");
    EXPECT_EQ(tvFlag(kHdmi).get(*service), "true");
}

/** Asks the service while it writes. */
class AskingEditor : public ConfigEditor {
  public:
    explicit AskingEditor(std::function<void()> ask) : mAsk(std::move(ask)) {}
    bool Set(const char*, const char*) override {
        mAsk();
        return true;
    }
    bool Get(const char*, char*) const override { return false; }

  private:
    const std::function<void()> mAsk;
};

TEST_F(FlagsTest, GettersDoNotWaitForAWrite) {
    IMlkTvConfigs* service = nullptr;
    std::vector<std::string> answers;
    TvFeatures::EditorList editors;
    editors.push_back(std::make_unique<AskingEditor>([&] {
        if (service != nullptr) {
            answers.push_back(tvFlag(kPvr).get(*service));
            answers.push_back(getFlag(*service, ConfigType::PVR));
            answers.push_back(tvSystems()[0].get(*service));
            answers.push_back(tvSystems()[1].get(*service));
        }
    }));
    const sp<IMlkTvConfigs> owner = serviceWith(nullptr, std::move(editors));
    service = owner.get();
    EXPECT_EQ(tvFlag(kPvr).set(*service, true), "true");
    EXPECT_THAT(answers, ElementsAre("true", "true", "0", "0"));
    answers.clear();
    EXPECT_EQ(tvSystems()[1].set(*service, 3), "3");
    EXPECT_THAT(answers, ElementsAre("true", "true", "0", "3"))
            << "a value is answered before it is written";
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

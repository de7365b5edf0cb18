#include <android/log.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

constexpr char kPvr[] = "persist.vendor.mlk.tv.enable_pvr";
constexpr char kHdmi[] = "persist.vendor.mlk.tv.enable_hdmi";
constexpr char kDtvSystem[] = "persist.vendor.mlk.tv.dtv_system";

std::string line(const std::string& key, const std::string& value) {
    return key + '=' + value + '\n';
}

class ReloadTest : public ::testing::Test {
  protected:
    TvSet mSet;

    std::vector<std::string> errors() {
        return mSet.log().texts(ANDROID_LOG_ERROR, "MlkTvConfigs");
    }
};

TEST_F(ReloadTest, TakesAnotherFilesValues) {
    const auto service = mSet.start(line(kPvr, "true"));
    const std::string other = mSet.dir().write("tvdata/other.config", line(kHdmi, "true"));
    mSet.log().clear();
    EXPECT_EQ(reload(*service, other), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "false");
    EXPECT_EQ(tvFlag(kHdmi).get(*service), "true");
    EXPECT_THAT(mSet.log().brief(), ElementsAre("E/Open " + other + " success!",
                                                StartsWith("D/MlkTvConfigs:\n\tmAtvSystem:0")));
}

TEST_F(ReloadTest, SeesPropertiesThatSomebodyElseChanged) {
    const auto service = mSet.start(line(kHdmi, "true"));
    mSet.setProperty(kPvr, "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "false");
    EXPECT_EQ(reload(*service, mSet.path()), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
}

TEST_F(ReloadTest, TheFirstFileTakesOverWhatWasReloaded) {
    const std::string content = "# first\n" + line(kPvr, "true");
    const auto service = mSet.start(content);
    const std::string reloaded = line(kHdmi, "true") + line(kPvr, "false");
    const std::string other = mSet.dir().write("tvdata/other.config", "# other\n" + reloaded);
    EXPECT_EQ(reload(*service, other), "true");
    EXPECT_EQ(mSet.file(), content) << "nothing has been written yet";
    EXPECT_EQ(tvFlag(kHdmi).set(*service, false), "false");
    EXPECT_EQ(mSet.file(), line(kHdmi, "false") + line(kPvr, "false"));
    EXPECT_EQ(mSet.dir().read("tvdata/other.config"), "# other\n" + reloaded);
}

TEST_F(ReloadTest, ADigitalSystemHasItTakenOverAtOnce) {
    const auto service = mSet.start(line(kPvr, "true"));
    const std::string content = "# other\n" + line(kDtvSystem, "3x") + line(kHdmi, "1");
    const std::string other = mSet.dir().write("tvdata/other.config", content);
    EXPECT_EQ(reload(*service, other), "true");
    EXPECT_EQ(mSet.file(), line(kDtvSystem, "3") + line(kHdmi, "1"));
    EXPECT_EQ(mSet.property(kDtvSystem), "3");
    EXPECT_EQ(mSet.dir().read("tvdata/other.config"), content);
}

TEST_F(ReloadTest, AFileThatCannotBeOpenedChangesNothing) {
    const std::string content = "# kept\n" + line(kPvr, "true") + line(kDtvSystem, "2");
    const auto service = mSet.start(content);
    const std::string written = mSet.file();
    const std::string fifo = mSet.dir().path("tvdata/fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    mSet.setProperty(kHdmi, "true");
    for (const std::string& path :
         {mSet.dir().path("tvdata/missing"), mSet.dir().path("tvdata"), fifo, std::string(),
          std::string("/dev/zero"), std::string(100000, 'x')}) {
        mSet.log().clear();
        EXPECT_EQ(reload(*service, path), "false") << path;
        const bool isMissing = path.empty() || path == mSet.dir().path("tvdata/missing");
        EXPECT_EQ(mSet.log().lines().size(), isMissing ? 1U : 2U);
        const std::string begin = path.substr(0, 900);
        ASSERT_EQ(errors().size(), mSet.log().lines().size());
        EXPECT_THAT(errors()[0], StartsWith("ERROR: Open " + begin));
        EXPECT_THAT(errors().back(), StartsWith((isMissing ? "ERROR: Open " : "") + begin));
        EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
        EXPECT_EQ(tvFlag(kHdmi).get(*service), "false");
        EXPECT_EQ(tvSystems()[1].get(*service), "2");
    }
    EXPECT_EQ(mSet.file(), written);
    // The entries are still those of the first file.
    EXPECT_EQ(tvFlag(kPvr).set(*service, false), "false");
    EXPECT_EQ(mSet.file(), line(kPvr, "false") + line(kDtvSystem, "2"));
}

TEST_F(ReloadTest, AMissingFileIsTold) {
    const auto service = mSet.start("");
    mSet.log().clear();
    EXPECT_EQ(reload(*service, "/no/such/file"), "false");
    EXPECT_THAT(errors(), ElementsAre("ERROR: Open /no/such/file fail!"));
}

TEST_F(ReloadTest, AFileWithALineTooLongCountsUpToIt) {
    const auto service = mSet.start("");
    const std::string other =
            mSet.dir().write("tvdata/other.config",
                             line(kPvr, "1") + std::string(1024, 'x') + '\n' + line(kHdmi, "1"));
    mSet.log().clear();
    EXPECT_EQ(reload(*service, other), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
    EXPECT_EQ(tvFlag(kHdmi).get(*service), "false");
    EXPECT_THAT(errors(),
                ElementsAre("Open " + other + " success!", "ERROR: line out of buf size=1024"));
}

TEST_F(ReloadTest, ANullPathIsRefused) {
    auto file = std::make_unique<FileConfigEditor>(
            mSet.dir().write("tvconfigs/tv.config", line(kPvr, "true")).c_str());
    TvFeatures features(std::move(file), {});
    mSet.log().clear();
    EXPECT_FALSE(features.reload(nullptr));
    EXPECT_THAT(errors(), ElementsAre(MatchesRegex("\\[reloadTvConfig:[0-9]+\\] invalid paramter "
                                                   "\\(path is null\\)")));
    EXPECT_EQ(mSet.log().lines().size(), 1U);
    EXPECT_TRUE(features.get(kTvFlags[tvFlagItem("pvrEnabled")]));
}

TEST_F(ReloadTest, WithoutEditorsThereIsNothingToReload) {
    const sp<IMlkTvConfigs> service = serviceWith(nullptr, {});
    mSet.log().clear();
    EXPECT_EQ(reload(*service, mSet.dir().write("tvdata/other.config", line(kPvr, "1"))), "false");
    EXPECT_THAT(errors(), ElementsAre(MatchesRegex("\\[reloadTvConfig:[0-9]+\\] invalid paramter "
                                                   "\\(mEditorLst's size is 0\\)")));
    EXPECT_EQ(mSet.log().lines().size(), 1U);
    EXPECT_EQ(tvFlag(kPvr).get(*service), "false");
    // A value that no editor stores is served nevertheless.
    EXPECT_EQ(tvFlag(kPvr).set(*service, true), "true");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

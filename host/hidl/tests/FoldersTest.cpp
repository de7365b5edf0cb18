// The folder of the services' sockets: its place, and who may use it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Everything.h"
#include "host/hidl/src/RuntimeFolder.h"
#include "host/testing/EnvironmentVariable.h"
#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"

namespace mlk::test {
namespace {

namespace transport = ::android::hardware::transport;
using ::testing::ElementsAre;

class FoldersTest : public ::testing::Test {
  protected:
    // HostSet restores the variable.
    static void use(const std::string& path) { setenv("MLK_RUNTIME_DIR", path.c_str(), 1); }

    // Whether a service can be registered and found in this process.
    static ::testing::AssertionResult works() {
        const sp<IEverything> service = new Everything;
        if (service->registerAsService("default") != ::android::OK) {
            return ::testing::AssertionFailure() << "not registered";
        }
        const sp<IEverything> found = IEverything::getService();
        if (found == nullptr || !found->ping().isOk()) {
            return ::testing::AssertionFailure() << "not found";
        }
        return ::testing::AssertionSuccess();
    }
    static mode_t modeOf(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    testing::HostSet mSet;
    const std::string mBase = mSet.dir().path();
    const testing::EnvironmentVariable mSession{"XDG_RUNTIME_DIR", nullptr};
};

TEST_F(FoldersTest, IsMadeForItsUserOnly) {
    const mode_t former = umask(0);
    for (const char* name :
         {"/new", "/slash/at/end/", "/two/slashes//", "/deep/er/still", "/umask"}) {
        umask(name == std::string("/umask") ? 0277 : 0);
        use(mBase + name);
        EXPECT_TRUE(works()) << name;
        EXPECT_EQ(modeOf(mBase + name), 0700U) << name;
    }
    umask(former);
}

TEST_F(FoldersTest, OnlyItsUserWritesToTheFoldersAboveIt) {
    const mode_t former = umask(0);
    use(mBase + "/upper/middle/sockets");
    const bool isFound = works();
    umask(077);
    use(mBase + "/closed/sockets");
    const bool isFoundBelowClosed = works();
    umask(former);
    EXPECT_TRUE(isFound);
    EXPECT_EQ(modeOf(mBase + "/upper"), 0755U);
    EXPECT_EQ(modeOf(mBase + "/upper/middle"), 0755U);
    EXPECT_TRUE(isFoundBelowClosed);
    EXPECT_EQ(modeOf(mBase + "/closed"), 0700U) << "the umask still counts";
}

TEST_F(FoldersTest, PathTooLongForASocketsAddress) {
    std::string path = mBase;
    for (int i = 0; i < 5; ++i) {
        path += "/" + std::string(60, 'p');
    }
    use(path);
    EXPECT_TRUE(works());
    EXPECT_TRUE(std::filesystem::exists(path + "/mlk.test.everything@1.0::IEverything.default"));
}

TEST_F(FoldersTest, EveryLengthAroundTheAddressesLimit) {
    const std::string file = "/mlk.test.everything@1.0::IEverything.default";
    for (size_t whole = 100; whole < 116; ++whole) {
        const size_t taken = mBase.size() + 1 + file.size();
        ASSERT_LT(taken, whole);
        use(mBase + "/" + std::string(whole - taken, 'p'));
        EXPECT_TRUE(works()) << whole;
    }
}

TEST_F(FoldersTest, RelativePath) {
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(mBase);
    use("relative");
    EXPECT_TRUE(works());
    std::filesystem::current_path(former);
    EXPECT_TRUE(std::filesystem::is_directory(mBase + "/relative"));
}

TEST_F(FoldersTest, DefaultsWithoutTheVariable) {
    mSession.set(mBase + "/session");
    for (const bool isEmpty : {true, false}) {
        if (isEmpty) {
            use("");
        } else {
            unsetenv("MLK_RUNTIME_DIR");
        }
        EXPECT_EQ(transport::findRuntimeFolder().path, mBase + "/session/mlkconfigs");
    }
    EXPECT_TRUE(works());
    EXPECT_EQ(modeOf(mBase + "/session/mlkconfigs"), 0700U);
    mSession.set("");
    EXPECT_EQ(transport::findRuntimeFolder().path, "/run/mlkconfigs");
    mSession.set(nullptr);
    EXPECT_EQ(transport::findRuntimeFolder().path, "/run/mlkconfigs");
    // HostSet restored the variable, so set it again.
    use(mSet.runtime());
}

TEST_F(FoldersTest, FileInItsPlace) {
    const std::string path = mSet.dir().write("file", "");
    use(path);
    const testing::LogCapture log;
    EXPECT_FALSE(works());
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidl"),
                ElementsAre(path + ": cannot use the runtime folder: Not a directory"));
    use(path + "/below");
    EXPECT_FALSE(works());
}

TEST_F(FoldersTest, AUserWhoCannotMakeTheDefaultIsToldWhatToSet) {
    if (geteuid() != 0 || std::filesystem::exists("/run/mlkconfigs")) {
        GTEST_SKIP() << "only root can become another user, who must have to make the folder";
    }
    unsetenv("MLK_RUNTIME_DIR");
    const testing::LogCapture log;
    ASSERT_EQ(seteuid(65534), 0);
    const bool isMade = transport::makeRuntimeFolder().descriptor.ok();
    mSession.set("/proc/none");
    (void)transport::makeRuntimeFolder();
    ASSERT_EQ(seteuid(0), 0);
    use(mSet.runtime());
    EXPECT_FALSE(isMade);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidl"),
                ElementsAre("/run/mlkconfigs: cannot use the runtime folder: Permission denied; "
                            "set MLK_RUNTIME_DIR to a folder of your own",
                            "/proc/none/mlkconfigs: cannot use the runtime folder: No such file "
                            "or directory"));
}

TEST_F(FoldersTest, FolderInPlaceOfTheName) {
    const std::string name = "mlk.test.everything@1.0::IEverything.default";
    (void)mSet.dir().mkdir("run/" + name);
    {
        const testing::LogCapture log;
        EXPECT_FALSE(works());
        EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidl"),
                    ElementsAre(mSet.runtime() + "/" + name + ": cannot listen: Is a directory"));
    }
    EXPECT_EQ(IEverything::getService(), nullptr);
    // Nothing else is left.
    EXPECT_TRUE(std::filesystem::remove(mSet.runtime() + "/" + name));
    EXPECT_TRUE(std::filesystem::is_empty(mSet.runtime()));
    EXPECT_TRUE(works());
}

TEST_F(FoldersTest, FolderOfAnotherUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    ASSERT_EQ(chown(mSet.runtime().c_str(), 65534, 65534), 0);
    const testing::LogCapture log;
    const sp<IEverything> service = new Everything;
    EXPECT_NE(service->registerAsService("default"), ::android::OK);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidl"),
                ElementsAre(mSet.runtime() + ": the runtime folder belongs to user 65534"));
}

}  // namespace
}  // namespace mlk::test

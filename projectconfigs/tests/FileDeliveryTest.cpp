#include <android/log.h>
#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "host/testing/Eventually.h"
#include "host/testing/TestPipe.h"
#include "host/testing/Threads.h"
#include "projectconfigs/ClientDescriptor.h"
#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::TestPipe;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

using Service = IMlkProjectConfigs;

// A handle of these descriptors, which stay the caller's.
class Handle {
  public:
    explicit Handle(const std::vector<int>& fds, int numbers = 0)
        : mHandle(native_handle_create(static_cast<int>(fds.size()), numbers)) {
        std::copy(fds.begin(), fds.end(), mHandle->data);
    }
    ~Handle() { native_handle_delete(mHandle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    const native_handle_t* get() const { return mHandle; }

  private:
    native_handle_t* mHandle;
};

class FileDeliveryTest : public ServiceOnSet {
  protected:
    FileDeliveryTest() {
        start();
        mLog.clear();
    }
    std::string fileText(const std::string& path) {
        const auto bytes = asked(&Service::getTvFile, path);
        return bytes ? std::string(bytes->begin(), bytes->end()) : "no answer";
    }
    void debug(const native_handle_t* handle) {
        EXPECT_TRUE(mService->debug(handle, {"ignored"}).isOk());
    }
};

TEST_F(FileDeliveryTest, FileIsDeliveredWhole) {
    const std::string bytes("a\0b\n\xff", 5);
    write("tvdata/channels.bin", bytes);
    const std::string path = mSet.tvdata() + "/channels.bin";
    EXPECT_EQ(fileText(path), bytes);
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), ElementsAre("getTvFile,path:" + path, "filePath:" + path,
                                                       "getTvFile fileData size:5"));
    EXPECT_EQ(fileText('"' + path + '"'), bytes);
}

TEST_F(FileDeliveryTest, UnreadableFileIsAnEmptyAnswer) {
    write("tvdata/empty", "");
    EXPECT_EQ(fileText(mSet.tvdata() + "/empty"), "");
    EXPECT_EQ(fileText(mSet.tvdata() + "/none"), "");
    EXPECT_EQ(fileText(mSet.tvdata()), "");
    EXPECT_EQ(fileText(""), "");
}

TEST_F(FileDeliveryTest, PathWithoutTextGetsNoAnswer) {
    EXPECT_FALSE(asked(&Service::getTvFile, absentText()).has_value());
    EXPECT_FALSE(asked(&Service::isFileExist, absentText()).has_value());
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                ElementsAre("getTvFile, invalid paramter", "isFileExist, invalid paramter"));
    EXPECT_FALSE(asked(&Service::getVendorPartitionFile, absentText())->valid())
            << "this one answers";
    EXPECT_EQ(logged(ANDROID_LOG_ERROR).back(), "getVendorPartitionFile, invalid paramter");
}

TEST_F(FileDeliveryTest, FileExistsOrNot) {
    const std::string path = mSet.tvconfigs() + "/sys.ini";
    EXPECT_EQ(number(asked(&Service::isFileExist, path)), "1");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre("isFileExist, path:" + path, "isFileExist filePath:" + path));
    EXPECT_EQ(number(asked(&Service::isFileExist, '"' + path + '"')), "1");
    EXPECT_EQ(number(asked(&Service::isFileExist, path + "x")), "0");
    EXPECT_EQ(number(asked(&Service::isFileExist, "")), "0");
}

TEST_F(FileDeliveryTest, NoSharedMemoryWithoutAnAllocator) {
    write("tvdata/five.bin", "12345");
    const auto memory = asked(&Service::getVendorPartitionFile, mSet.tvdata() + "/five.bin");
    ASSERT_TRUE(memory.has_value());
    EXPECT_FALSE(memory->valid());
    EXPECT_EQ(memory->size(), 0U);
    EXPECT_EQ(memory->name(), "");
    EXPECT_EQ(logged(ANDROID_LOG_DEBUG).front(),
              "getVendorPartitionFile,path:" + mSet.tvdata() + "/five.bin");
    EXPECT_THAT(mLog.brief(), Contains("D/getTvFile fileData size:5"));
}

TEST_F(FileDeliveryTest, DebugWritesStoreAndAudioFiles) {
    const std::string path = mSet.dir().write("dump", "");
    const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    debug(Handle({fd}).get());
    EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC) << "the descriptor stays open";
    close(fd);
    EXPECT_EQ(mSet.dir().read("dump"),
              "ProjectConfigs:\n  Customer ID: 42\n  Project ID: 1\n  Project max index: 2\n"
              "  Sys ini file: " +
                      mSet.tvconfigs() +
                      "/sys.ini\n"
                      "  Project ini file: " +
                      mSet.tvconfigs() +
                      "/model/A.ini\n"
                      "  Board ini file: " +
                      mSet.tvconfigs() +
                      "/board.ini\n"
                      "    [BOARD]:name=board\n    [PANEL]:m_pPanelName=panel A\n"
                      "Audio configuration file: \n  IniProjectParser deatil:\n");
    EXPECT_THAT(logged(ANDROID_LOG_INFO), ElementsAre("debug -- dumping succeeded"));
}

TEST_F(FileDeliveryTest, DebugWantsExactlyOneDescriptor) {
    const std::string path = mSet.dir().write("dump", "");
    const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    debug(nullptr);
    debug(Handle({}).get());
    debug(Handle({}, 1).get());
    debug(Handle({fd, fd}).get());
    close(fd);
    EXPECT_EQ(mSet.dir().read("dump"), "");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                ElementsAre("debug -- dumping failed -- invalid file descriptor to dump to",
                            "debug -- dumping failed -- invalid file descriptor to dump to",
                            "debug -- dumping failed -- invalid file descriptor to dump to",
                            "debug -- dumping failed -- invalid file descriptor to dump to"));
}

TEST_F(FileDeliveryTest, DebugSurvivesAClosedPipe) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    debug(Handle({ends[1]}).get());
    close(ends[1]);
    EXPECT_THAT(logged(ANDROID_LOG_WARN), ElementsAre("debug -- dumping failed -- write()"));
    EXPECT_THAT(logged(ANDROID_LOG_INFO), IsEmpty());
}

TEST_F(FileDeliveryTest, DebugGivesUpWhatNobodyReads) {
    TestPipe pipe;
    debug(Handle({pipe.fill().writeEnd()}).get());
    EXPECT_TRUE(::mlk::testing::eventually([&] { return !logged(ANDROID_LOG_WARN).empty(); }));
    EXPECT_THAT(
            logged(ANDROID_LOG_WARN),
            ElementsAre("debug -- dumping failed -- write() given up after 0 bytes, nobody reads "
                        "them"));
    EXPECT_THAT(logged(ANDROID_LOG_INFO), IsEmpty());
}

TEST_F(FileDeliveryTest, DebugGivesUpWhereManyWait) {
    std::vector<TestPipe> pipes(kWaitForReaders + 1);
    for (TestPipe& pipe : pipes) {
        pipe.fill();
    }
    EXPECT_TRUE(::mlk::testing::eventually([&] {
        ::mlk::testing::inThreads(kWaitForReaders + 1, [&](int i) {
            debug(Handle({pipes[static_cast<size_t>(i)].writeEnd()}).get());
        });
        return ::testing::Matches(Contains(HasSubstr("too many dumps wait already")))(
                logged(ANDROID_LOG_WARN));
    }));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

// The model does not change to one whose files exist but cannot be read.

#include <android/log.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "host/testing/ReadHook.h"
#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::Not;

/** This process cannot open files during its life. */
class NoDescriptors {
  public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &mFormer);
        rlimit few = mFormer;
        few.rlim_cur = 64;
        setrlimit(RLIMIT_NOFILE, &few);
        for (int fd = 0; (fd = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
            mTaken.push_back(fd);
        }
    }
    ~NoDescriptors() {
        for (const int fd : mTaken) {
            close(fd);
        }
        setrlimit(RLIMIT_NOFILE, &mFormer);
    }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

  private:
    rlimit mFormer{};
    std::vector<int> mTaken;
};

class ProjectReloadTest : public ServiceOnSet {
  protected:
    ProjectReloadTest() {
        start();
        mLog.clear();
    }
    std::string set(int32_t id) { return flag(asked(&IMlkProjectConfigs::setProjectId, id)); }
    std::string setWithPid(int32_t id) {
        return flag(asked(&IMlkProjectConfigs::setProjectIdWithPid, id, "factory", 99));
    }
    void expectModelA(const std::string& highest = "2") {
        EXPECT_EQ(panel(), "panel A");
        EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectId)), "1");
        EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), highest);
        EXPECT_EQ(text(asked(&IMlkProjectConfigs::getCustomerId)), "42");
        EXPECT_EQ(mSet.dir().read("impdata/project_id.bin"), "PROJECT_ID=1\n");
    }
    /** Something that can be opened, but reading it from its start fails. */
    void makeUnreadable(const std::string& file) {
        const std::string path = mSet.tvconfigs() + "/" + file;
        unlink(path.c_str());
        ASSERT_EQ(symlink("/proc/self/mem", path.c_str()), 0);
    }
};

// Memory runs out at each read of the files in its turn.
TEST_F(ProjectReloadTest, WithoutMemoryTheModelStays) {
    using ::mlk::testing::ReadHook;
    const auto setWithReads = [&](int most) {
        const ReadHook hook([most](int descriptor, void* bytes, size_t size) {
            if (ReadHook::calls() > most) {
                throw std::bad_alloc();
            }
            return ReadHook::read(descriptor, bytes, size);
        });
        try {
            return set(2);
        } catch (const std::bad_alloc&) {
            return std::string("no memory");
        }
    };
    int failed = 0;
    std::string answer;
    while ((answer = setWithReads(failed)) == "no memory") {
        expectModelA();
        ++failed;
    }
    EXPECT_EQ(answer, "true");
    EXPECT_GT(failed, 2);
    EXPECT_EQ(panel(), "panel B");
}

TEST_F(ProjectReloadTest, WithoutDescriptorsTheModelStays) {
    // A sanitizer needs descriptors for what it meets for the first time.
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(setWithPid(1), "true");
    EXPECT_EQ(set(3), "false");
    EXPECT_NE(std::generic_category().message(EMFILE), "");
    mLog.clear();
    {
        const NoDescriptors none;
        EXPECT_EQ(set(2), "false");
        EXPECT_EQ(setWithPid(2), "false");
        EXPECT_EQ(set(3), "false") << "nor does looking again lose it";
    }
    expectModelA();
    EXPECT_THAT(logged(ANDROID_LOG_ERROR),
                Contains(mSet.tvconfigs() + "/model/A.ini cannot be read; project 1 stays in use"))
            << "the system file, which names the other model's, cannot be read either";
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), Contains("[mProjectMaxIdx:2] pid:3 is illegal!"));
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(panel(), "panel B");
}

TEST_F(ProjectReloadTest, ProjectFileThatCannotBeReadKeepsTheModel) {
    write("tvconfigs/sys.ini", "Model_2=/tvconfigs/model/B.ini\nModel_9=/tvconfigs/model/A.ini\n");
    makeUnreadable("model/B.ini");
    EXPECT_EQ(set(2), "false");
    EXPECT_EQ(setWithPid(2), "false");
    expectModelA("9");
}

TEST_F(ProjectReloadTest, BoardFileThatCannotBeReadKeepsTheModel) {
    makeUnreadable("board.ini");
    EXPECT_EQ(set(2), "false");
    expectModelA();
    EXPECT_NE(boardName(), "");
}

// The file need not be one of the project that was asked for.
TEST_F(ProjectReloadTest, TheLogNamesTheFileThatCannotBeRead) {
    const auto complaint = [&](const std::string& file) {
        return mSet.tvconfigs() + "/" + file + " cannot be read; project 1 stays in use";
    };
    makeUnreadable("board.ini");
    EXPECT_EQ(set(2), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), Contains(complaint("board.ini")));
    mLog.clear();
    makeUnreadable("model/A.ini");
    EXPECT_EQ(set(9), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), Contains(complaint("model/A.ini")));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), Not(Contains(complaint("board.ini"))));
}

TEST_F(ProjectReloadTest, AFurtherModelIsFoundThoughThePresentOneCannotBeRead) {
    write("tvconfigs/sys.ini", "Model_1=/tvconfigs/model/A.ini\nModel_3=/tvconfigs/model/B.ini\n");
    makeUnreadable("model/A.ini");
    EXPECT_EQ(set(3), "true");
    EXPECT_EQ(panel(), "panel B");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "3");
}

TEST_F(ProjectReloadTest, MissingProjectFileIsAChangeAllTheSame) {
    ASSERT_EQ(unlink((mSet.tvconfigs() + "/model/B.ini").c_str()), 0);
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(panel(), "");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectId)), "2");
}

TEST_F(ProjectReloadTest, FirstReadingTakesWhatItCan) {
    makeUnreadable("board.ini");
    start();
    EXPECT_EQ(panel(), "panel A");
    EXPECT_EQ(text(asked(&IMlkProjectConfigs::getCustomerId)), "42");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

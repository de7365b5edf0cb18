#include <android/log.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "host/testing/QuietLog.h"
#include "host/testing/Threads.h"
#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kLookAgain =
        "[SetProjectIdInternal:522] Update and check Max ID again for the case of USB update";

class ProjectIndexTest : public ServiceOnSet {
  protected:
    ProjectIndexTest() {
        start();
        mLog.clear();
    }
    std::string set(int32_t id) { return flag(asked(&IMlkProjectConfigs::setProjectId, id)); }
    std::string setWithPid(int32_t id) {
        return flag(asked(&IMlkProjectConfigs::setProjectIdWithPid, id, "factory", 99));
    }
    std::string projectId() { return number(asked(&IMlkProjectConfigs::getProjectId)); }
    std::string projectFile() const { return mSet.dir().read("impdata/project_id.bin"); }
};

TEST_F(ProjectIndexTest, ChangeIsStoredAndReadsTheNewProject) {
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(panel(), "panel B");
    EXPECT_EQ(projectId(), "2");
    EXPECT_EQ(projectFile(), "PROJECT_ID=2\n");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("\tProject ID=2"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains(kLookAgain)));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), IsEmpty());
}

TEST_F(ProjectIndexTest, ChangeWithPidDoesTheSame) {
    EXPECT_EQ(setWithPid(2), "true");
    EXPECT_EQ(panel(), "panel B");
    EXPECT_EQ(projectId(), "2");
    EXPECT_EQ(projectFile(), "PROJECT_ID=2\n");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains("\tProject ID=2"));
}

TEST_F(ProjectIndexTest, BoardFileInUseStaysInUse) {
    // The identity file is not read any more, even if it has another index now.
    write("impdata/board_id.bin", "BOARD_ID=DEFAULT_BOARD_ID\n");
    write("tvconfigs/board.ini", "[BOARD]\nname=changed\n");
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(boardName(), "changed");
    write("tvconfigs/board.ini", "[BOARD]\nname=again\n");
    EXPECT_EQ(setWithPid(1), "true");
    EXPECT_EQ(boardName(), "again");
}

TEST_F(ProjectIndexTest, WithoutABoardFileAChangeLooksForTheEmptyPath) {
    write("impdata/board_id.bin", "BOARD_ID=DEFAULT_BOARD_ID\n");
    start();
    for (const auto& change : {set(2), setWithPid(1)}) {
        EXPECT_EQ(change, "true");
    }
    const std::vector<std::string> lines = logged(ANDROID_LOG_DEBUG);
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.find("[parse_project_ini ") == 0 &&
                                       line.find("]  don't exist.") != std::string::npos;
                            }),
              2);
}

TEST_F(ProjectIndexTest, IndexBelowOneIsRefusedWithoutLookingAgain) {
    write("tvconfigs/model/A.ini", "[PANEL]\nm_pPanelName=changed\n");
    EXPECT_EQ(set(0), "false");
    EXPECT_EQ(set(-3), "false");
    EXPECT_EQ(setWithPid(0), "false");
    EXPECT_EQ(setWithPid(-3), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), ElementsAre("[mProjectMaxIdx:2] pid:0 is illegal!",
                                                       "[mProjectMaxIdx:2] pid:-3 is illegal!",
                                                       "[mProjectMaxIdx:2] pid:0 is illegal!!",
                                                       "[mProjectMaxIdx:2] pid:-3 is illegal!!"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains(kLookAgain)));
    EXPECT_EQ(panel(), "panel A");
    EXPECT_EQ(projectFile(), "PROJECT_ID=1\n");
}

TEST_F(ProjectIndexTest, RefusalStillLogsTheStore) {
    set(0);
    setWithPid(0);
    const std::vector<std::string> lines = logged(ANDROID_LOG_DEBUG);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ProjectConfigs:"), 2);
}

TEST_F(ProjectIndexTest, IndexAboveTheMaximumLooksAgainAndIsRefused) {
    write("tvconfigs/model/A.ini", "[PANEL]\nm_pPanelName=changed\n");
    EXPECT_EQ(set(3), "false");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Contains(kLookAgain));
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), ElementsAre("[mProjectMaxIdx:2] pid:3 is illegal!"));
    EXPECT_EQ(panel(), "changed") << "the files were read again, with the old index";
    EXPECT_EQ(projectFile(), "PROJECT_ID=1\n");
}

TEST_F(ProjectIndexTest, LookingAgainFindsNewProjects) {
    write("tvconfigs/sys.ini", "Model_5=/tvconfigs/model/B.ini\n");
    EXPECT_EQ(set(6), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), ElementsAre("[mProjectMaxIdx:5] pid:6 is illegal!"));
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "5");
    EXPECT_EQ(set(5), "true");
    EXPECT_EQ(panel(), "panel B");
}

TEST_F(ProjectIndexTest, NewProjectIsAcceptedAtOnce) {
    write("tvconfigs/sys.ini", "Model_3=/tvconfigs/model/B.ini\n");
    EXPECT_EQ(set(3), "true");
    EXPECT_EQ(panel(), "panel B");
    EXPECT_EQ(projectFile(), "PROJECT_ID=3\n");
}

TEST_F(ProjectIndexTest, WithPidNeverLooksAgain) {
    write("tvconfigs/sys.ini", "Model_3=/tvconfigs/model/B.ini\n");
    EXPECT_EQ(setWithPid(3), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), ElementsAre("[mProjectMaxIdx:2] pid:3 is illegal!!"));
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), Not(Contains(kLookAgain)));
    EXPECT_EQ(panel(), "panel A");
    // But a model that another change has found is accepted.
    EXPECT_EQ(set(4), "false");
    EXPECT_EQ(setWithPid(3), "true");
}

TEST_F(ProjectIndexTest, MaximumIsAskedOfTheStore) {
    write("tvconfigs/sys.ini", "Model_9=/tvconfigs/model/B.ini\n");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "2");
    EXPECT_EQ(set(1), "true");
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "9");
    EXPECT_EQ(setWithPid(9), "false") << "the service looks again only when it has to";
}

TEST_F(ProjectIndexTest, NegativeModelAdmitsNoIndex) {
    write("tvconfigs/sys.ini", "Model_-1=/tvconfigs/model/B.ini\n");
    EXPECT_EQ(set(3), "false");
    EXPECT_THAT(logged(ANDROID_LOG_ERROR), ElementsAre("[mProjectMaxIdx:-1] pid:3 is illegal!"));
    EXPECT_EQ(number(asked(&IMlkProjectConfigs::getProjectMaxIdx)), "-1");
}

TEST_F(ProjectIndexTest, IndexThatCannotBeStoredStillHolds) {
    ASSERT_EQ(remove((mSet.impdata() + "/project_id.bin").c_str()), 0);
    mSet.dir().mkdir("impdata/project_id.bin");
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(panel(), "panel B");
    EXPECT_EQ(projectId(), "2");
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                Contains("Open " + mSet.impdata() + "/project_id.bin fail!"));
    ASSERT_EQ(remove((mSet.impdata() + "/project_id.bin").c_str()), 0);
    EXPECT_EQ(set(2), "true");
    EXPECT_EQ(projectFile(), "PROJECT_ID=2\n") << "now it can be stored";
}

TEST_F(ProjectIndexTest, LongProcessNameIsHarmless) {
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setProjectIdWithPid, 2, std::string(5000, 'p'), -1)),
              "true");
}

TEST_F(ProjectIndexTest, ListHasTheProjectFilesInFileOrder) {
    const auto list = asked(&IMlkProjectConfigs::getProjectIniList);
    ASSERT_TRUE(list.has_value());
    EXPECT_THAT(std::vector<std::string>(list->begin(), list->end()),
                ElementsAre("A.ini", "B.ini"));
}

TEST_F(ProjectIndexTest, ChangesFromManyThreadsDoNotMix) {
    constexpr int kChanging = 4;
    std::atomic<int> changing = kChanging;
    const mlk::testing::QuietLog quiet;
    mlk::testing::inThreads(kChanging + 1, [&](int thread) {
        if (thread < kChanging) {
            for (int32_t round = 0; round < 40; ++round) {
                const int32_t id = 1 + (thread + round) % 2;
                EXPECT_EQ(round % 2 == 0 ? set(id) : setWithPid(id), "true");
                EXPECT_EQ(set(7), "false");
            }
            --changing;
            return;
        }
        while (changing > 0) {
            EXPECT_THAT(panel(), StartsWith("panel "));
            EXPECT_THAT(projectId(), AnyOf("1", "2"));
            EXPECT_EQ(text(asked(&IMlkProjectConfigs::getCustomerId)), "42");
            EXPECT_EQ(asked(&IMlkProjectConfigs::getProjectIniList)->size(), 2U);
            EXPECT_EQ(asked(&IMlkProjectConfigs::getConfigsByCategory, "[PANEL]")->size(), 1U);
        }
    });
    // All three agree, whichever thread was last.
    EXPECT_EQ(projectFile(), "PROJECT_ID=" + projectId() + "\n");
    EXPECT_EQ(panel(), projectId() == "1" ? "panel A" : "panel B");
}

// Each refusal reads the highest index. Every second one first reads the files again to find it.
TEST_F(ProjectIndexTest, RefusedIndicesFromManyThreads) {
    const mlk::testing::QuietLog quiet;
    mlk::testing::inThreads(4, [&](int thread) {
        for (int round = 0; round < 200; ++round) {
            EXPECT_EQ(thread % 2 == 0 ? set(7) : setWithPid(7), "false");
        }
    });
    EXPECT_EQ(projectId(), "1");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include <TvPartitionPath.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "host/testing/HostSet.h"
#include "host/testing/Threads.h"

namespace {

using ::mlk::testing::HostSet;
using ::mlk::testing::inThreads;

TEST(TvPartitionPath, IsBelowTheRoot) {
    const HostSet set;
    const TvPartitionPath* paths = TvPartitionPath::GetInstance();
    EXPECT_EQ(paths->GetTvconfigsPath(), set.tvconfigs());
    EXPECT_EQ(paths->GetTvdataPath(), set.tvdata());
    EXPECT_EQ(paths->GetImpdataPath(), set.impdata());
    EXPECT_EQ(TvPartitionPath::GetInstance(), paths);
}

TEST(TvPartitionPath, WithoutARootIsTheDevices) {
    const HostSet putBackAfterwards;
    unsetenv("MLK_ROOT");
    EXPECT_STREQ(TvPartitionPath::GetInstance()->GetTvconfigsPath(), "/tvconfigs");
    setenv("MLK_ROOT", "", 1);
    EXPECT_STREQ(TvPartitionPath::GetInstance()->GetTvdataPath(), "/tvdata");
    EXPECT_STREQ(TvPartitionPath::GetInstance()->GetImpdataPath(), "/impdata");
}

TEST(TvPartitionPath, TextsOutliveAChangeOfTheRoot) {
    const HostSet first;
    const char* former = TvPartitionPath::GetInstance()->GetTvconfigsPath();
    const HostSet second;
    EXPECT_EQ(TvPartitionPath::GetInstance()->GetTvconfigsPath(), second.tvconfigs());
    EXPECT_EQ(former, first.tvconfigs());
}

TEST(TvPartitionPath, MayBeAskedByManyThreads) {
    const HostSet set;
    inThreads(4, [&](int) {
        for (int count = 0; count < 1000; ++count) {
            ASSERT_EQ(TvPartitionPath::GetInstance()->GetImpdataPath(), set.impdata());
        }
    });
}

TEST(TvPartitionPath, MayBeAskedForTheFirstTimeByManyThreads) {
    const HostSet set;  // puts the variable back
    for (int round = 0; round < 20; ++round) {
        const std::string root = "/round-" + std::to_string(round);
        ASSERT_EQ(setenv("MLK_ROOT", root.c_str(), 1), 0);
        inThreads(4, [&](int) {
            ASSERT_EQ(TvPartitionPath::GetInstance()->GetImpdataPath(), root + "/impdata");
        });
    }
}

}  // namespace

#include "host/testing/OtherUser.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "host/testing/TempDir.h"

namespace mlk::testing {
namespace {

TEST(OtherUserTest, IsNotRootAndCanEnterTheFolder) {
    const TempDir dir;
    dir.write("file", "text");
    EXPECT_TRUE(asOtherUser(dir.path(), [] { return geteuid() != 0 && getuid() != 0; }));
    EXPECT_TRUE(asOtherUser(dir.path(), [&] { return dir.read("file") == "text"; }));
}

TEST(OtherUserTest, GivesWhatTheFunctionReturns) {
    const TempDir dir;
    EXPECT_FALSE(asOtherUser(dir.path(), [] { return false; }));
    EXPECT_FALSE(asOtherUser(dir.path(), []() -> bool { _exit(3); }));
}

}  // namespace
}  // namespace mlk::testing

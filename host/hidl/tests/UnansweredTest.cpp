// Methods that do not answer as they must.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

class UnansweredTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
    Server mServer;
    const sp<IEverything> mService = mServer.service();
};

TEST_F(UnansweredTest, NoAnswerEndsTheServer) {
    const auto called = mService->silent([](const hidl_string&) { FAIL(); });
    EXPECT_TRUE(called.isDeadObject()) << called.description();
    EXPECT_EQ(mServer.wait(), 128 + SIGABRT);
    EXPECT_TRUE(mServer.says("silent: _hidl_cb not called, but must be called once."));
}

TEST_F(UnansweredTest, TwoAnswersGiveTheFirstAndEndTheServer) {
    std::string answer;
    const auto called = mService->twice([&](const hidl_string& text) { answer = text; });
    EXPECT_TRUE(called.isOk()) << called.description();
    EXPECT_EQ(answer, "first");
    EXPECT_EQ(mServer.wait(), 128 + SIGABRT);
    EXPECT_TRUE(mService->ping().isDeadObject());
}

TEST_F(UnansweredTest, ExceptionsFailTheirCallAndNothingElse) {
    const auto noMemory = mService->fails(true, [](const hidl_string&) { FAIL(); });
    EXPECT_EQ(noMemory.description(), "Status(EX_TRANSACTION_FAILED): 'NO_MEMORY: '");
    const auto other = mService->fails(false, [](const hidl_string&) { FAIL(); });
    EXPECT_EQ(other.description(), "Status(EX_TRANSACTION_FAILED): 'UNKNOWN_ERROR: '");
    EXPECT_TRUE(mService->ping().isOk());
    EXPECT_TRUE(mServer.says("ended in an exception: on request"));
}

// Within one process no stub checks for an answer.
TEST(UnansweredHereTest, IsNoError) {
    const sp<IEverything> here = new Everything;
    EXPECT_TRUE(here->silent([](const hidl_string&) { FAIL(); }).isOk());
}

}  // namespace
}  // namespace mlk::test

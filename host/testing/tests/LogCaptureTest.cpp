#include "host/testing/LogCapture.h"

#include <android/log.h>
#include <gmock/gmock.h>

#include "host/testing/Threads.h"

namespace mlk::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(LogCapture, TakesEveryLineOfItsLifeTime) {
    __android_log_write(ANDROID_LOG_DEBUG, "tag", "before");
    LogCapture log;
    __android_log_print(ANDROID_LOG_VERBOSE, "tag", "%s\n", "one");
    __android_log_write(ANDROID_LOG_ERROR, "other", "two");
    __android_log_write(ANDROID_LOG_ERROR, "tag", "three");
    EXPECT_THAT(log.texts(), ElementsAre("one\n", "two", "three"));
    EXPECT_THAT(log.brief(), ElementsAre("V/one\n", "E/two", "E/three"));
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "tag"), ElementsAre("three"));
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN, "tag"), IsEmpty());
    ASSERT_THAT(log.lines(), SizeIs(3));
    EXPECT_EQ(log.lines()[1].priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(log.lines()[1].tag, "other");
    log.clear();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(LogCapture, MayNest) {
    const LogCapture outer;
    {
        const LogCapture inner;
        __android_log_write(ANDROID_LOG_VERBOSE, "tag", "both");
        EXPECT_THAT(inner.texts(), ElementsAre("both"));
    }
    __android_log_write(ANDROID_LOG_VERBOSE, "tag", "outer only");
    EXPECT_THAT(outer.texts(), ElementsAre("both", "outer only"));
}

TEST(LogCapture, TakesLinesOfAllThreads) {
    const LogCapture log;
    inThreads(4, [](int) {
        for (int line = 0; line < 250; ++line) {
            __android_log_write(ANDROID_LOG_DEBUG, "tag", "line");
        }
    });
    EXPECT_THAT(log.lines(), SizeIs(1000));
}

}  // namespace
}  // namespace mlk::testing

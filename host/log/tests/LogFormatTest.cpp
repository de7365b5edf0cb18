#include "host/log/LogFormat.h"

#include <android/log.h>
#include <gtest/gtest.h>

namespace mlk::host {
namespace {

TEST(LogFormat, IsLogcatsBriefForm) {
    EXPECT_EQ(formatBrief(ANDROID_LOG_DEBUG, "MlkProjectConfigs", 1234, "text"),
              "D/MlkProjectConfigs( 1234): text\n");
}

TEST(LogFormat, PadsTagAndProcess) {
    EXPECT_EQ(formatBrief(ANDROID_LOG_INFO, "a", 1, "x"), "I/a       (    1): x\n");
    EXPECT_EQ(formatBrief(ANDROID_LOG_INFO, "", 1, "x"), "I/        (    1): x\n");
    EXPECT_EQ(formatBrief(ANDROID_LOG_INFO, "12345678", 12345, "x"), "I/12345678(12345): x\n");
    EXPECT_EQ(formatBrief(ANDROID_LOG_INFO, "123456789", 4194304, "x"),
              "I/123456789(4194304): x\n");
}

TEST(LogFormat, HasALetterForEveryPriority) {
    std::string letters;
    for (int priority = -1; priority <= ANDROID_LOG_SILENT + 1; ++priority) {
        letters += formatBrief(priority, "a", 1, "x")[0];
    }
    EXPECT_EQ(letters, "???VDIWEFS?");
}

TEST(LogFormat, GivesEachLineThePrefix) {
    EXPECT_EQ(formatBrief(ANDROID_LOG_WARN, "a", 1, "one\ntwo\n\nfour"),
              "W/a       (    1): one\n"
              "W/a       (    1): two\n"
              "W/a       (    1): \n"
              "W/a       (    1): four\n");
}

TEST(LogFormat, NewlineAtTheEndBeginsNoLine) {
    EXPECT_EQ(formatBrief(ANDROID_LOG_WARN, "a", 1, "one\n"), "W/a       (    1): one\n");
    EXPECT_EQ(formatBrief(ANDROID_LOG_WARN, "a", 1, "one\n\n"),
              "W/a       (    1): one\nW/a       (    1): \n");
}

TEST(LogFormat, AnEmptyMessageIsALine) {
    EXPECT_EQ(formatBrief(ANDROID_LOG_WARN, "a", 1, ""), "W/a       (    1): \n");
    EXPECT_EQ(formatBrief(ANDROID_LOG_WARN, "a", 1, "\n"), "W/a       (    1): \n");
}

}  // namespace
}  // namespace mlk::host

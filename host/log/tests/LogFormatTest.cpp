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

TEST(LogFormat, EscapesWhatATerminalWouldObey) {
    EXPECT_EQ(escapeControls(""), "");
    EXPECT_EQ(escapeControls("plain \\ \"text\"\tand\n"), "plain \\ \"text\"\tand\n");
    EXPECT_EQ(escapeControls(std::string_view("\0\r\x1b]0;x\a\x7f", 9)),
              "\\u0000\\u000d\\u001b]0;x\\u0007\\u007f");
    EXPECT_EQ(escapeControls("\xc2\x80\xc2\x9f\xc2\xa0"), "\\u0080\\u009f\xc2\xa0");
    EXPECT_EQ(escapeControls("\xe2\x82\xac\xf0\x9f\x93\xba"), "\xe2\x82\xac\xf0\x9f\x93\xba");
    // Malformed: cut, overlong, a surrogate, beyond the last character, a lone continuation byte.
    EXPECT_EQ(escapeControls("\xe2\x82"), "\\xe2\\x82");
    EXPECT_EQ(escapeControls("\xe2\x82x"), "\\xe2\\x82x");
    EXPECT_EQ(escapeControls("\xc0\x9b\xe0\x82\x9b\xf0\x80\x82\x9b"),
              "\\xc0\\x9b\\xe0\\x82\\x9b\\xf0\\x80\\x82\\x9b");
    EXPECT_EQ(escapeControls("\xed\xa0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(escapeControls("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(escapeControls("\xf5\x80\x80\x80\x9b"), "\\xf5\\x80\\x80\\x80\\x9b");
}

}  // namespace
}  // namespace mlk::host

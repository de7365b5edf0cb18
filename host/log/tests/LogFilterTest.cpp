#include "host/log/LogFilter.h"

#include <android/log.h>
#include <gmock/gmock.h>

#include <ostream>

namespace mlk::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Row {
    const char* rules;
    int priority;
    const char* tag;
    bool shown;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << '"' << row.rules << "\" on " << row.priority << "/" << row.tag;
}

class LogFilterTable : public ::testing::TestWithParam<Row> {};

TEST_P(LogFilterTable, Shows) {
    const Row& row = GetParam();
    std::vector<std::string> unknown;
    EXPECT_EQ(LogFilter(row.rules, &unknown).shows(row.priority, row.tag), row.shown);
    EXPECT_THAT(unknown, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
        All, LogFilterTable,
        ::testing::Values(
                Row{"", ANDROID_LOG_INFO, "a", true}, Row{"", ANDROID_LOG_DEBUG, "a", false},
                Row{" \t ", ANDROID_LOG_INFO, "a", true},
                Row{"*:V", ANDROID_LOG_VERBOSE, "a", true},
                Row{"*:D", ANDROID_LOG_DEBUG, "a", true},
                Row{"*:D", ANDROID_LOG_VERBOSE, "a", false},
                Row{"*:I", ANDROID_LOG_DEBUG, "a", false}, Row{"*:W", ANDROID_LOG_INFO, "a", false},
                Row{"*:W", ANDROID_LOG_WARN, "a", true}, Row{"*:E", ANDROID_LOG_WARN, "a", false},
                Row{"*:E", ANDROID_LOG_ERROR, "a", true}, Row{"*:F", ANDROID_LOG_ERROR, "a", false},
                Row{"*:F", ANDROID_LOG_FATAL, "a", true}, Row{"*:S", ANDROID_LOG_FATAL, "a", false},
                Row{"*:S", ANDROID_LOG_SILENT, "a", false},
                Row{"*:e", ANDROID_LOG_WARN, "a", false},
                Row{"*:v", ANDROID_LOG_VERBOSE, "a", true},
                Row{"*:d", ANDROID_LOG_DEBUG, "a", true},
                Row{"*:d", ANDROID_LOG_VERBOSE, "a", false},
                Row{"*:i", ANDROID_LOG_INFO, "a", true}, Row{"*:i", ANDROID_LOG_DEBUG, "a", false},
                Row{"*:w", ANDROID_LOG_WARN, "a", true}, Row{"*:w", ANDROID_LOG_INFO, "a", false},
                Row{"*:f", ANDROID_LOG_FATAL, "a", true}, Row{"*:f", ANDROID_LOG_ERROR, "a", false},
                Row{"*:s", ANDROID_LOG_FATAL, "a", false}, Row{"*", ANDROID_LOG_DEBUG, "a", true},
                Row{"*", ANDROID_LOG_VERBOSE, "a", false}, Row{"a", ANDROID_LOG_VERBOSE, "a", true},
                Row{"a", ANDROID_LOG_DEBUG, "b", false}, Row{"a", ANDROID_LOG_INFO, "b", true},
                Row{"a", ANDROID_LOG_DEBUG, "A", false}, Row{"a", ANDROID_LOG_DEBUG, "ab", false},
                Row{"ab", ANDROID_LOG_DEBUG, "a", false},
                Row{"MlkTvConfigs:D *:E", ANDROID_LOG_DEBUG, "MlkTvConfigs", true},
                Row{"MlkTvConfigs:D *:E", ANDROID_LOG_WARN, "MlkProjectConfigs", false},
                Row{"*:E MlkTvConfigs:D", ANDROID_LOG_DEBUG, "MlkTvConfigs", true},
                Row{"a:S", ANDROID_LOG_FATAL, "a", false}, Row{"a:S", ANDROID_LOG_INFO, "b", true},
                Row{"a:D a:E", ANDROID_LOG_WARN, "a", false},
                Row{"a:E a:D", ANDROID_LOG_DEBUG, "a", true},
                Row{"*:E *:D", ANDROID_LOG_DEBUG, "a", true},
                Row{"  a:D\t b:E ,c:W", ANDROID_LOG_DEBUG, "a", true},
                Row{"  a:D\t b:E ,c:W", ANDROID_LOG_WARN, "b", false},
                Row{"  a:D\t b:E ,c:W", ANDROID_LOG_INFO, "c", false},
                Row{"a:E,b:D", ANDROID_LOG_WARN, "a", false},
                Row{"a:E,b:D", ANDROID_LOG_DEBUG, "b", true},
                Row{"v.m.mlconfigs@1.0-service:D", ANDROID_LOG_DEBUG, "v.m.mlconfigs@1.0-service",
                    true},
                Row{"a::b:E", ANDROID_LOG_WARN, "a::b", false}));

struct Least {
    const char* rules;
    int priority;
};

void PrintTo(const Least& row, std::ostream* out) {
    *out << '"' << row.rules << '"';
}

class LogFilterLowest : public ::testing::TestWithParam<Least> {};

TEST_P(LogFilterLowest, IsTheLeastOfAllRules) {
    EXPECT_EQ(LogFilter(GetParam().rules).lowest(), GetParam().priority);
}

INSTANTIATE_TEST_SUITE_P(All, LogFilterLowest,
                         ::testing::Values(Least{"", ANDROID_LOG_INFO},
                                           Least{"*:S", ANDROID_LOG_SILENT},
                                           Least{"*:S a:F", ANDROID_LOG_FATAL},
                                           Least{"*:E a:V b:D", ANDROID_LOG_VERBOSE},
                                           Least{"a:E", ANDROID_LOG_INFO},
                                           Least{"*:D a:S", ANDROID_LOG_DEBUG}));

TEST(LogFilter, NamesWhatItDoesNotUnderstandAndKeepsTheRest) {
    std::vector<std::string> unknown;
    const LogFilter filter("a:D b:X :E c: d:DD e:1 *: f:W", &unknown);
    EXPECT_THAT(unknown, ElementsAre("b:X", ":E", "c:", "d:DD", "e:1", "*:"));
    EXPECT_TRUE(filter.shows(ANDROID_LOG_DEBUG, "a"));
    EXPECT_FALSE(filter.shows(ANDROID_LOG_DEBUG, "b"));
    EXPECT_FALSE(filter.shows(ANDROID_LOG_INFO, "f"));
    EXPECT_TRUE(filter.shows(ANDROID_LOG_INFO, "other"));
}

TEST(LogFilter, WhatIsNoRuleNeedNotBeTold) {
    EXPECT_TRUE(LogFilter("a:X b:D", nullptr).shows(ANDROID_LOG_DEBUG, "b"));
}

}  // namespace
}  // namespace mlk::host

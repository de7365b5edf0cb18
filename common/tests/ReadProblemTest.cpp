#include "common/ReadProblem.h"

#include <gtest/gtest.h>

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

TEST(ReadProblemTest, EachKindHasItsTextAndSaysWhatIsLost) {
    struct Row {
        ProblemKind kind;
        std::string text;  // with the detail "X"
        bool isWholeFileLost;
    };
    const Row rows[] = {
            {ProblemKind::UNREADABLE, "cannot be read: X", true},
            {ProblemKind::TOO_LARGE, "cannot be read: X", true},
            {ProblemKind::READ_ERROR, "cannot be read further: X", true},
            {ProblemKind::MALFORMED_XML, "no well-formed XML: X", true},
            {ProblemKind::COSTLY_XML, "more than X", true},
            {ProblemKind::LONG_LINE, "line longer than X bytes, its rest is skipped", false},
            {ProblemKind::LAST_LINE, "line longer than X bytes, the file is read up to it", false},
            {ProblemKind::NO_INDEX, "no index in the first X bytes", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(textOf(row.kind, "X"), row.text);
        EXPECT_EQ(isWholeFileLost(row.kind), row.isWholeFileLost) << row.text;
    }
}

TEST(ReadProblemTest, WhatIsSkippedNeedsNoDetail) {
    EXPECT_EQ(textOf(ProblemKind::NO_EQUALS), "no \"=\", line skipped");
    EXPECT_EQ(textOf(ProblemKind::NO_VALUE), "no value, line skipped");
    EXPECT_EQ(textOf(ProblemKind::ONLY_COMMAS), "nothing but commas, line skipped");
    EXPECT_EQ(textOf(ProblemKind::NO_TYPE), "TV system without type, skipped");
    EXPECT_EQ(textOf(ProblemKind::INCOMPLETE_ITEM), "item without category, key or value, skipped");
    EXPECT_EQ(textOf(ProblemKind::NO_COUNTRY), "country without COUNTRY_NAME, skipped");
    EXPECT_FALSE(isWholeFileLost(ProblemKind::NO_EQUALS));
    EXPECT_FALSE(isWholeFileLost(ProblemKind::NO_COUNTRY));
}

}  // namespace

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

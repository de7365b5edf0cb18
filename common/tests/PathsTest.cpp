#include "common/Paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "host/testing/OtherUser.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(PathsTest, FileNameIsWhatFollowsTheLastSlash) {
    EXPECT_EQ(fileNameOf("/tvconfigs/audio/panel.ini"), "panel.ini");
    EXPECT_EQ(fileNameOf("/panel.ini"), "panel.ini");
    EXPECT_EQ(fileNameOf("panel.ini"), "panel.ini");
    EXPECT_EQ(fileNameOf("/tvconfigs/"), "");
    EXPECT_EQ(fileNameOf(""), "");
}

TEST(PathsTest, OnlyALeadingQuoteIsTakenOff) {
    EXPECT_EQ(withoutQuotes("\"/a/b\""), "/a/b");
    EXPECT_EQ(withoutQuotes("\"/a/b\" # comment"), "/a/b");
    EXPECT_EQ(withoutQuotes("\"/a\"b\"c"), "/a\"b");
    EXPECT_EQ(withoutQuotes("\"\""), "");
    EXPECT_EQ(withoutQuotes("/a/\"b\""), "/a/\"b\"");
    EXPECT_EQ(withoutQuotes(" \"/a\""), " \"/a\"");
    EXPECT_EQ(withoutQuotes("/a"), "/a");
    EXPECT_EQ(withoutQuotes(""), "");
}

TEST(PathsTest, LeadingQuoteWithoutPartnerNamesNoFile) {
    EXPECT_EQ(withoutQuotes("\""), std::nullopt);
    EXPECT_EQ(withoutQuotes("\"/a/b"), std::nullopt);
}

TEST(PathsTest, WhateverHasThePathExists) {
    const mlk::testing::TempDir dir;
    EXPECT_TRUE(pathExists(dir.write("file", "")));
    EXPECT_TRUE(pathExists(dir.path()));
    EXPECT_FALSE(pathExists(dir.path() + "/nothing"));
    EXPECT_FALSE(pathExists(""));
}

TEST(PathsTest, FileThatMayNotBeReadExists) {
    const mlk::testing::TempDir dir;
    const std::string file = dir.write("file", "");
    EXPECT_EQ(chmod(file.c_str(), 0), 0);
    EXPECT_TRUE(mlk::testing::asOtherUser(dir.path(), [&] { return pathExists(file); }));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "common/Paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
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

TEST(PathsTest, OnlyALeadingQuoteIsTakenOffAName) {
    EXPECT_EQ(findFile("\"/a/b\"").path, "/a/b");
    EXPECT_EQ(findFile("\"/a/b\" # comment").path, "/a/b");
    EXPECT_EQ(findFile("\"/a\"b\"c").path, "/a\"b");
    EXPECT_EQ(findFile("\"\"").path, "");
    EXPECT_EQ(findFile("/a/\"b\"").path, "/a/\"b\"");
    EXPECT_EQ(findFile(" \"/a\"").path, " \"/a\"");
    EXPECT_EQ(findFile("/a").path, "/a");
    EXPECT_EQ(findFile("").path, "");
}

TEST(PathsTest, FileOfANameIsLookedForWithoutTheQuotes) {
    const mlk::testing::TempDir dir;
    const std::string file = dir.write("file", "");
    EXPECT_TRUE(findFile(file).exists);
    EXPECT_TRUE(findFile("\"" + file + "\"").exists);
    EXPECT_TRUE(findFile(dir.path()).exists);
    EXPECT_FALSE(findFile(dir.path("nothing")).exists);
    EXPECT_FALSE(findFile("\"\"").exists);
    EXPECT_FALSE(findFile("").exists);
}

TEST(PathsTest, LeadingQuoteWithoutPartnerNamesNoFile) {
    const mlk::testing::TempDir dir;
    std::filesystem::current_path(dir.path());
    for (const std::string name : {"\"", "\"file"}) {
        (void)dir.write(name, "");
        EXPECT_EQ(findFile(name).path, name);
        EXPECT_FALSE(findFile(name).exists);
    }
    std::filesystem::current_path("/");
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

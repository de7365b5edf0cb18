// By which words of a command line a file of a tree is found.

#include "tools/mlktree/Tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/TempDir.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

class TreeWordsTest : public ::testing::Test {
  protected:
    TreeWordsTest() : mFormer(fs::current_path()) {
        mDir.write("T/tvconfigs/board/b.ini", "");
        mDir.mkdir("T/tvdata");
        mDir.mkdir("T/impdata");
        fs::create_directory_symlink("T", mDir.path("link"));
        fs::create_symlink("b.ini", mDir.path("T/tvconfigs/board/other.ini"));
        fs::current_path(mDir.path());
    }
    ~TreeWordsTest() override { fs::current_path(mFormer); }

    static std::string found(const std::string& root, const std::string& word) {
        const Tree tree(root, {});
        return tree.relative(tree.hostOfArgument(word));
    }

    mlk::testing::TempDir mDir;
    const fs::path mFormer;
};

TEST_F(TreeWordsTest, AWordFindsAFileByAnyOfItsPaths) {
    const std::string file = "tvconfigs/board/b.ini";
    const std::string host = mDir.path("T/" + file);
    for (const std::string& root : {std::string("T"), std::string("./T"), std::string("T/"),
                                    std::string("link"), mDir.path("T")}) {
        for (const std::string& word :
             std::vector<std::string>{"/" + file, file, "./" + file, "tvconfigs/../" + file,
                                      "tvconfigs//board/./b.ini", "T/" + file, "./T/" + file,
                                      "T//" + file, "T/./" + file, "link/" + file, host,
                                      mDir.path("link/" + file), mDir.path("T/../T/" + file)}) {
            EXPECT_EQ(found(root, word), file) << root << " " << word;
        }
    }
    fs::current_path(mDir.path("T/tvconfigs/board"));
    EXPECT_EQ(found("../..", "b.ini"), file);
    EXPECT_EQ(found(mDir.path("T"), "../board/b.ini"), file);
}

TEST_F(TreeWordsTest, APartitionApartIsFoundInto) {
    Tree::Apart apart;
    apart.tvconfigs = "T/tvconfigs";
    const Tree tree("", apart);
    EXPECT_EQ(tree.relative(tree.hostOfArgument(mDir.path("T/tvconfigs/board/b.ini"))),
              "tvconfigs/board/b.ini");
}

TEST_F(TreeWordsTest, ALinkKeepsItsName) {
    EXPECT_EQ(found("T", mDir.path("T/tvconfigs/board/other.ini")), "tvconfigs/board/other.ini");
    EXPECT_EQ(found("T", "T/tvconfigs/board/other.ini"), "tvconfigs/board/other.ini");
}

TEST_F(TreeWordsTest, WhatLiesOutsideKeepsItsPath) {
    const std::string outside = mDir.write("outside.ini", "");
    EXPECT_EQ(found("T", outside), outside);
    EXPECT_EQ(found("T", "nowhere.ini"), "nowhere.ini");
    EXPECT_THROW(found("T", ""), UsageError);
}

}  // namespace

}  // namespace mlk::tree

// Lines alike in different files have one number, and nothing else has it.

#include "tools/mlktree/LineContents.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace mlk::tree {
namespace {

ReadLine item(std::string_view text, std::string_view section) {
    ReadLine line;
    line.use = LineUse::ITEM;
    line.text = text;
    line.section = section;
    line.key = text.substr(0, text.find('='));
    line.value = text.substr(text.find('=') + 1);
    return line;
}

std::unique_ptr<FileLines> fileOf(const std::vector<ReadLine>& lines,
                                  FileFormat format = FileFormat::PROJECT) {
    auto file = std::make_unique<FileLines>("tvconfigs/model/a.ini", format);
    for (ReadLine line : lines) {
        line.number = file->lines().size() + 1;
        file->onLine(line);
    }
    file->finish(true, {});
    return file;
}

TEST(LineContentsTest, NumbersLinesAlikeAlike) {
    const auto one = fileOf({item("a=1", "[A]"), item("b=2", "[A]")});
    const auto other = fileOf({item("b=2", "[A]"), item("a=1", "[A]"), item("a=1", "[A]")});
    LineContents contents;
    contents.add(*one);
    contents.add(*other);
    ASSERT_EQ(contents.all().size(), 2U);
    EXPECT_EQ(one->contents(), (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(other->contents(), (std::vector<uint32_t>{1, 0, 0}));
    EXPECT_EQ(contents.all()[1].line->text, "b=2");
    EXPECT_EQ(contents.all()[1].format, FileFormat::PROJECT);
    EXPECT_EQ(other->contentOf(other->lines()[2]), 0U);
}

TEST(LineContentsTest, TellsLinesApart) {
    ReadLine cut = item("a=1", "[A]");
    cut.isCut = true;
    ReadLine ended = item("a=1", "[A]");
    ended.hasNul = true;
    ReadLine comment = item("a=1", "[A]");
    comment.use = LineUse::NOTHING;
    ReadLine moved = item("a=1", "[A]");
    moved.column = 50;
    const auto file = fileOf({item("a=1", "[A]"), item("a=2", "[A]"), item("a=1", "[B]"), cut,
                              ended, comment, moved});
    const auto features = fileOf({item("a=1", "[A]")}, FileFormat::TV_FEATURES);
    LineContents contents;
    contents.add(*file);
    contents.add(*features);
    EXPECT_EQ(file->contents(), (std::vector<uint32_t>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(features->contents(), std::vector<uint32_t>{7});
}

// Among 200,000 different lines, some share a hash of 32 bits.
TEST(LineContentsTest, TellsLinesOfOneHashApart) {
    constexpr size_t kLines = 200000;
    std::vector<std::string> sections;
    sections.reserve(kLines);
    std::vector<ReadLine> lines;
    for (size_t i = 0; i < kLines; ++i) {
        sections.push_back("[" + std::to_string(i) + "]");
        lines.push_back(item("a=1", sections.back()));
    }
    const auto file = fileOf(lines);
    LineContents contents;
    contents.add(*file);
    EXPECT_EQ(contents.all().size(), kLines);
}

TEST(LineContentsTest, LeavesOutXml) {
    ReadLine element = item("", "");
    element.column = 0;
    const auto file = fileOf({element}, FileFormat::COUNTRY_MAP);
    LineContents contents;
    contents.add(*file);
    EXPECT_TRUE(file->contents().empty());
    EXPECT_TRUE(contents.all().empty());
}

TEST(FileLinesTest, OneOfTwoLinesCounts) {
    const std::vector<ReadLine> lines = {item("a=1", "[A]"), item("a=2", "[A]"),
                                         item("a=3", "[B]")};
    const auto model = fileOf(lines, FileFormat::PROJECT);
    EXPECT_FALSE(model->counts(model->lines()[0]));
    EXPECT_TRUE(model->counts(model->lines()[1]));
    EXPECT_TRUE(model->counts(model->lines()[2]));
    EXPECT_EQ(model->find("[A]", "a"), &model->lines()[1]);
    const auto audio = fileOf(lines, FileFormat::AUXILIARY);
    EXPECT_TRUE(audio->counts(audio->lines()[0]));
    EXPECT_FALSE(audio->counts(audio->lines()[1]));
    EXPECT_EQ(audio->find("[A]", "a"), &audio->lines()[0]);
}

}  // namespace
}  // namespace mlk::tree

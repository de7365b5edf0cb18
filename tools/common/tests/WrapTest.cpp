#include "tools/common/Wrap.h"

#include <gmock/gmock.h>

namespace mlk {

namespace {

using ::testing::ElementsAre;

TEST(ColumnsTest, CountsCharacters) {
    EXPECT_EQ(columnsOf(""), 0U);
    EXPECT_EQ(columnsOf("abc"), 3U);
    EXPECT_EQ(columnsOf("\xc3\xa4\xe2\x82\xac"), 2U);
    EXPECT_EQ(columnsOf("\xff"), 1U);
}

TEST(WrappedTest, BreaksAtBlanks) {
    EXPECT_THAT(wrapped("", 10), ElementsAre(""));
    EXPECT_THAT(wrapped("one two three", 13), ElementsAre("one two three"));
    EXPECT_THAT(wrapped("one two three", 12), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("one two three", 6), ElementsAre("one", "two", "three"));
    EXPECT_THAT(wrapped("one two   ", 7), ElementsAre("one two"));
}

TEST(WrappedTest, BreaksAfterOtherCharacters) {
    EXPECT_THAT(wrapped("/a/bc/def", 6, "/"), ElementsAre("/a/bc/", "def"));
    EXPECT_THAT(wrapped("/a/bc/def", 5, "/"), ElementsAre("/a/", "bc/", "def"));
    EXPECT_THAT(wrapped("TV,AV,HDMI1", 6, ","), ElementsAre("TV,AV,", "HDMI1"));
    EXPECT_THAT(wrapped("/a/bc/def", 6), ElementsAre("/a/bc/", "def"));  // cut
}

TEST(WrappedTest, CutsWhatIsLongerThanALine) {
    EXPECT_THAT(wrapped("abcdefg", 3), ElementsAre("abc", "def", "g"));
    EXPECT_THAT(wrapped("a bcdefg h", 3), ElementsAre("a", "bcd", "efg", "h"));
    EXPECT_THAT(wrapped("\xc3\xa4\xc3\xb6\xc3\xbc", 2),
                ElementsAre("\xc3\xa4\xc3\xb6", "\xc3\xbc"));
    EXPECT_THAT(wrapped("\xff\x80", 1), ElementsAre("\xff\x80"));
    EXPECT_THAT(wrapped("ab", 1), ElementsAre("a", "b"));
}

TEST(ParagraphTest, IndentsEveryLineButTheFirst) {
    EXPECT_EQ(paragraph("Item  ", "one two three", 6, 13), "Item  one two\n      three\n");
    EXPECT_EQ(paragraph("", "", 0, 10), "\n");
}

}  // namespace

}  // namespace mlk

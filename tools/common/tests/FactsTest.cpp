#include "tools/common/Facts.h"

#include <gmock/gmock.h>

#include "tools/common/FactTable.h"
#include "tools/common/Json.h"
#include "tools/common/Table.h"

namespace mlk {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::vector<Fact> factsOfEachKind() {
    return {
            {{"Panel", "name", "name"}, std::string("LC430-A")},
            {{"Panel", "file", "file"}, std::string("/tvconfigs/panel.ini")},
            {{"Panel", "empty", "empty"}, std::string()},
            {{"HDMI", "inputs", "inputs"}, 3},
            {{"HDMI", "arc", "arc"}, true},
            {{"HDMI", "edid", "edid"}, Files{{"1.4", "/tvconfigs/edid14.bin"}, {"2.0", "none"}}},
            {{"Lists", "paths", "paths"}, std::vector<std::string>{"/a", "b"}},
            {{"Lists", "names", "names"}, Names{{"x", "y"}}},
            {{"Lists", "counts", "counts"}, Counts{{"eu", 2}, {"us", 0}}},
            {{"Lists", "none", "none"}, NoValue{"(no answer)"}},
    };
}

TEST(FactsTest, JsonHasAnObjectForEachGroup) {
    EXPECT_EQ(factsJson(factsOfEachKind(), {"/a"}).str(),
              R"({"panel":{"name":"LC430-A","file":"/tvconfigs/panel.ini","empty":""},)"
              R"("hdmi":{"inputs":3,"arc":true,"edid":{"1.4":"/tvconfigs/edid14.bin",)"
              R"("2.0":"none"}},)"
              R"("lists":{"paths":["/a","b"],"names":["x","y"],"counts":{"eu":2,"us":0},)"
              R"("none":null},"missing":["/a"]})");
}

TEST(FactsTest, PathsBeginWithASlashWhereverTheyStand) {
    EXPECT_THAT(pathsIn(factsOfEachKind()),
                ElementsAre("/a", "/tvconfigs/edid14.bin", "/tvconfigs/panel.ini"));
}

TEST(FactsTest, TheTableMarksWhatIsMissing) {
    FactFrame frame;
    frame.missing = {"/tvconfigs/panel.ini"};
    const std::string table = factTable(factsOfEachKind(), frame);
    const auto lineWith = [&](const std::string& text) {
        const size_t at = table.find(text);
        const size_t begin = table.rfind('\n', at) + 1;
        return at == std::string::npos ? "" : table.substr(begin, table.find('\n', at) - begin);
    };
    EXPECT_THAT(lineWith("/tvconfigs/panel.ini"), HasSubstr("missing"));
    EXPECT_THAT(lineWith("/tvconfigs/edid14.bin"), Not(HasSubstr("missing")));
    EXPECT_THAT(lineWith("empty"), HasSubstr("-"));
    EXPECT_THAT(lineWith("(no answer)"), HasSubstr("none"));
}

TEST(JsonTest, Lists) {
    EXPECT_EQ(jsonTexts({}), "[]");
    EXPECT_EQ(jsonTexts({"a", "\""}), R"(["a","\""])");
    EXPECT_EQ(jsonLines({}), "[]");
    EXPECT_EQ(jsonLines({"1", "2"}), "[\n1,\n2\n]");
    EXPECT_EQ(jsonArray({"1", "2"}), "[1,2]");
}

TEST(JsonTest, LongListsHaveALineForEachValue) {
    std::string text;
    const TextSink sink = [&text](std::string_view piece) { text += piece; };
    JsonLines none(JsonObject().number("version", 1), "rows", sink);
    none.end();
    EXPECT_EQ(text, "{\"version\":1,\"rows\":[]}\n");
    text.clear();
    JsonLines two(JsonObject().number("version", 1), "r\"s", sink);
    two.add("1");
    two.add("{}");
    two.end();
    EXPECT_EQ(text, "{\"version\":1,\"r\\\"s\":[\n1,\n{}\n]}\n");
}

TEST(JsonTest, Objects) {
    EXPECT_EQ(JsonObject().str(), "{}");
    EXPECT_EQ(JsonObject().text("a", "b").number("c", -1).flag("d", false).str(),
              R"({"a":"b","c":-1,"d":false})");
}

TEST(TableTest, ColumnsAreAlignedAndLinesHaveNoBlanksAtTheirEnds) {
    EXPECT_EQ(aligned({{"a", "bbb", "c"}, {"aaa", "b", ""}, {"a"}}), "a    bbb  c\naaa  b\na\n");
}

}  // namespace

}  // namespace mlk

// The parts that diff is made of: operands, lists, words for sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/testing/TempDir.h"
#include "tools/mlktree/diff/Change.h"
#include "tools/mlktree/diff/Operand.h"
#include "tools/mlktree/diff/Sequences.h"

namespace mlk::tree {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using testing::TempDir;

TEST(OperandTest, ReadsItsParts) {
    const Operand set = parseOperand("model=6,board=b1.ini,country=GERMANY,tree=some dir");
    EXPECT_TRUE(set.namesSet());
    EXPECT_EQ(set.source, "some dir");
    EXPECT_EQ(set.set.at("board"), "b1.ini");
    EXPECT_EQ(set.set.count("tree"), 0U);
    const Operand tree = parseOperand("tree=rev:HEAD~1");
    EXPECT_FALSE(tree.namesSet());
    EXPECT_EQ(tree.source, "rev:HEAD~1");
    EXPECT_EQ(parseOperand("rev:a=b").source, "rev:a=b");
    EXPECT_EQ(parseOperand("some/dir").source, "some/dir");
    // A file may have such a name.
    const TempDir dir;
    const std::string file = dir.write("x=1,y", "");
    EXPECT_EQ(parseOperand(file).source, file);
}

TEST(OperandTest, FilesMayHaveCommasInTheirNames) {
    const Operand board = parseOperand("board=a,b=c d.ini,model=6");
    EXPECT_EQ(board.set.at("board"), "a,b=c d.ini");
    EXPECT_EQ(board.set.at("model"), "6");
    EXPECT_EQ(parseOperand("customer=x,y.ini,tree=a,b").set.at("customer"), "x,y.ini");
    EXPECT_EQ(parseOperand("customer=x,y.ini,tree=a,b").source, "a,b");
    // What was probably meant as a part is no part of a name.
    EXPECT_THROW(parseOperand("board=a.ini,modle=6"), UsageError);
    EXPECT_THROW(parseOperand("country=A,B"), UsageError);
}

TEST(SequencesTest, MoveAsFewAsPossible) {
    const auto shown = [](const std::vector<std::string>& a, const std::vector<std::string>& b) {
        std::vector<std::string> all;
        for (const SequencePair& pair : matchSequences(a, b)) {
            const std::string& text = pair.a ? a[*pair.a] : b[*pair.b];
            all.push_back((!pair.a ? "+" : !pair.b ? "-" : pair.isMoved ? "~" : "=") + text);
        }
        return all;
    };
    EXPECT_THAT(shown({}, {}), IsEmpty());
    EXPECT_THAT(shown({"a", "b"}, {"a", "b"}), ElementsAre("=a", "=b"));
    EXPECT_THAT(shown({"a", "b", "c", "d"}, {"d", "a", "b", "c"}),
                ElementsAre("=a", "=b", "=c", "~d"));
    EXPECT_THAT(shown({"a", "b"}, {"b", "x", "a"}), ElementsAre("~a", "=b", "+x"));
    EXPECT_THAT(shown({"a", "a", "b"}, {"a", "b"}), ElementsAre("=a", "-a", "=b"));
    EXPECT_THAT(shown({"a"}, {"a", "a"}), ElementsAre("=a", "+a"));
    EXPECT_THAT(shown({"a"}, {"b"}), ElementsAre("-a", "+b"));
    // The entry that is new is the first "b": the last one stays where it is.
    EXPECT_THAT(shown({"a", "c", "b", "d"}, {"b", "c", "b", "d"}),
                ElementsAre("-a", "=c", "=b", "=d", "+b"));
    EXPECT_THAT(shown({"b", "b"}, {"b", "x", "b"}), ElementsAre("=b", "=b", "+x"));
}

TEST(SequencesTest, KeepWhatStaysInPlaceInBothDirections) {
    const auto movedOf = [](const std::vector<std::string>& a, const std::vector<std::string>& b) {
        std::set<std::string> moved;
        for (const SequencePair& pair : matchSequences(a, b)) {
            if (pair.isMoved) {
                EXPECT_NE(pair.a, pair.b) << a[*pair.a];
                moved.insert(a[*pair.a]);
            }
        }
        return moved;
    };
    const auto movedBothWays = [&](const std::vector<std::string>& a,
                                   const std::vector<std::string>& b) {
        const std::set<std::string> moved = movedOf(a, b);
        EXPECT_EQ(movedOf(b, a), moved) << ::testing::PrintToString(a);
        return moved;
    };
    EXPECT_THAT(movedBothWays({"B", "A", "C"}, {"C", "A", "B"}), ElementsAre("B", "C"));
    EXPECT_THAT(movedBothWays({"a", "c", "b"}, {"b", "c", "a"}), ElementsAre("a", "b"));
    EXPECT_THAT(movedBothWays({"a", "b"}, {"b", "a"}), SizeIs(1));
    EXPECT_THAT(movedBothWays({"b", "a"}, {"a", "b"}), SizeIs(1));
    EXPECT_THAT(movedBothWays({"a", "b", "a"}, {"b", "a", "a"}), SizeIs(1));
    // "c" stays in place, though not in the order of the others.
    EXPECT_THAT(movedBothWays({"a", "b", "c", "d", "e"}, {"d", "e", "c", "a", "b"}), SizeIs(2));

    std::vector<std::string> order = {"a", "b", "c", "d", "e"};
    const std::vector<std::string> sorted = order;
    while (std::next_permutation(order.begin(), order.end())) {
        EXPECT_THAT(movedBothWays(sorted, order), Not(IsEmpty()))
                << ::testing::PrintToString(order);
    }
}

TEST(SequencesTest, AnEntryThatIsRepeatedIsNewWhereItIsNew) {
    const std::vector<SequencePair> pairs = matchSequences({"a", "c", "b"}, {"b", "c", "b"});
    ASSERT_EQ(pairs.size(), 4U);
    EXPECT_EQ(pairs[2].b, 2U);
    EXPECT_EQ(pairs[3].a, std::nullopt);
    EXPECT_EQ(pairs[3].b, 0U);
}

TEST(ChangeTest, TellsSetsInWords) {
    EXPECT_EQ(inWords({SetGroup()}), "all sets");
    EXPECT_EQ(inWords({{{"2", "3"}, {}, {}}}), "models 2, 3; all boards");
    EXPECT_EQ(inWords({{{"1", "2", "3", "5"}, {"b1.ini"}, {}}}), "models 1 to 3, 5; board b1.ini");
    EXPECT_EQ(inWords({{{}, {}, {"GERMANY"}}}), "all models; all boards; GERMANY");
    EXPECT_EQ(inWords({{{"1"}, {}, {}}, {{"2"}, {"b"}, {"FIJI"}}}),
              "model 1; all boards and model 2; board b; FIJI");
    std::vector<std::string> many(12, "X");
    EXPECT_THAT(inWords({{{}, {}, many}}), HasSubstr("X and 4 more"));
    EXPECT_THAT(inSelections({SetGroup()}), ElementsAre("all"));
    EXPECT_THAT(inSelections({{{"1", "2"}, {}, {"FIJI"}}}),
                ElementsAre("model=1,country=FIJI", "model=2,country=FIJI"));
    // Of a line with several customers.
    EXPECT_EQ(inWords({{{"1 of a.ini", "2 of a.ini", "3 of a.ini"}, {}, {}}}),
              "models 1 to 3 of a.ini; all boards");
    EXPECT_EQ(inWords({{{"2 of a.ini", "2 of b.ini"}, {}, {}}}),
              "models 2 of a.ini, 2 of b.ini; all boards");
    EXPECT_EQ(inWords({{{"2 of a of b.ini"}, {}, {}}}), "model 2 of a of b.ini; all boards");
    EXPECT_THAT(inSelections({{{"1 of a.ini", "1 of b.ini"}, {"b1"}, {}}}),
                ElementsAre("model=1,customer=a.ini,board=b1", "model=1,customer=b.ini,board=b1"));
}

}  // namespace

}  // namespace mlk::tree

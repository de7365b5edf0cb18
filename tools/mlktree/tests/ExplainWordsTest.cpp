#include "tools/mlktree/ExplainWords.h"

#include <gmock/gmock.h>

#include "host/testing/TempDir.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

using Kind = Question::Kind;
using ::testing::ElementsAre;

TEST(ExplainWordsTest, AskForSectionsAndItems) {
    const Question section = questionOf({"PANEL"}, false);
    EXPECT_EQ(section.kind, Kind::SECTION);
    EXPECT_EQ(section.section, "[PANEL]");
    EXPECT_EQ(section.tree, "");
    const Question item = questionOf({"[PANEL]", "m_pPanelName"}, false);
    EXPECT_EQ(item.kind, Kind::ITEM);
    EXPECT_EQ(item.section, "[PANEL]");
    EXPECT_EQ(item.key, "m_pPanelName");
    const Question inTree = questionOf({"PANEL", "m_pPanelName", "line"}, false);
    EXPECT_EQ(inTree.kind, Kind::ITEM);
    EXPECT_EQ(inTree.tree, "line");
}

TEST(ExplainWordsTest, TellTreesAndKeysApart) {
    for (const char* tree : {".", "..", "./line", "/line", "line/"}) {
        const Question question = questionOf({"PANEL", tree}, false);
        EXPECT_EQ(question.kind, Kind::SECTION) << tree;
        EXPECT_EQ(question.tree, tree);
        // With --tree, no word is a tree.
        EXPECT_EQ(questionOf({"PANEL", tree}, true).key, tree);
    }
    const mlk::testing::TempDir dir;
    dir.mkdir("line/tvconfigs");
    dir.mkdir("other");
    EXPECT_EQ(questionOf({"PANEL", dir.path("line")}, false).tree, dir.path("line"));
    // A folder of the name of a key is no tree unless it holds tvconfigs/.
    EXPECT_EQ(questionOf({"PANEL", "m_pPanelName"}, false).key, "m_pPanelName");
}

TEST(ExplainWordsTest, AskForOtherThings) {
    const Question feature = questionOf({"feature", "pvrEnabled", "line"}, false);
    EXPECT_EQ(feature.kind, Kind::FEATURE);
    EXPECT_EQ(feature.name, "pvrEnabled");
    EXPECT_EQ(feature.tree, "line");
    const Question audio = questionOf({"audio", "SPDIF", "PCM"}, false);
    EXPECT_EQ(audio.kind, Kind::AUDIO);
    EXPECT_EQ(audio.section, "[SPDIF]");
    EXPECT_EQ(audio.key, "PCM");
    EXPECT_EQ(audio.tree, "");
    EXPECT_EQ(questionOf({"country", "GERMANY"}, false).kind, Kind::COUNTRY);
    EXPECT_EQ(questionOf({"file", "/tvconfigs/a.ini"}, false).name, "/tvconfigs/a.ini");
    // Sections with such names.
    EXPECT_EQ(questionOf({"[audio]", "x"}, false).section, "[audio]");
    EXPECT_EQ(questionOf({"AUDIO", "x"}, false).section, "[AUDIO]");
}

TEST(ExplainWordsTest, AskForAllThereAre) {
    EXPECT_EQ(questionOf({}, false).kind, Kind::ALL);
    EXPECT_EQ(questionOf({"./line"}, false).kind, Kind::ALL);
    EXPECT_EQ(questionOf({"./line"}, false).tree, "./line");
    EXPECT_EQ(questionOf({"./line"}, true).kind, Kind::SECTION);
    const Question features = questionOf({"feature", "./line"}, false);
    EXPECT_EQ(features.kind, Kind::FEATURE);
    EXPECT_EQ(features.name, "");
    EXPECT_EQ(features.tree, "./line");
    const Question section = questionOf({"audio", "ARC", "./line"}, false);
    EXPECT_EQ(section.section, "[ARC]");
    EXPECT_EQ(section.key, "");
    EXPECT_EQ(section.tree, "./line");
    EXPECT_EQ(questionOf({"audio"}, false).section, "");
    EXPECT_EQ(questionOf({"country"}, false).name, "");
    // The path of a file is no tree.
    EXPECT_EQ(questionOf({"file", "./a"}, false).tree, "");
}

TEST(ExplainWordsTest, SayWhatIsMissingOrTooMuch) {
    const auto problemOf = [](const std::vector<std::string>& words, bool isTreeNamed) {
        try {
            (void)questionOf(words, isTreeNamed);
        } catch (const UsageError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    using ::testing::HasSubstr;
    EXPECT_THAT(problemOf({"file"}, false), HasSubstr("file lacks PATH"));
    EXPECT_THAT(problemOf({"a", "b", "c", "d"}, false), HasSubstr("\"c\" is too much"));
    EXPECT_THAT(problemOf({"a", "b", "c"}, true), HasSubstr("\"c\" is too much, since --tree"));
    EXPECT_THAT(problemOf({"country", "X", "t", "u"}, false), HasSubstr("\"t\" is too much"));
}

TEST(ExplainWordsTest, CompleteByWhatComesBefore) {
    EXPECT_THAT(explainWord({}), ElementsAre(Completion::EXPLAINED, Completion::SECTION));
    EXPECT_THAT(explainWord({"PANEL"}), ElementsAre(Completion::KEY, Completion::FOLDER));
    EXPECT_THAT(explainWord({"PANEL", "x"}), ElementsAre(Completion::FOLDER));
    EXPECT_THAT(explainWord({"feature"}), ElementsAre(Completion::FEATURE));
    EXPECT_THAT(explainWord({"feature", "x"}), ElementsAre(Completion::FOLDER));
    EXPECT_THAT(explainWord({"audio"}), ElementsAre(Completion::SOUND_SECTION));
    EXPECT_THAT(explainWord({"audio", "[ARC]"}), ElementsAre(Completion::SOUND_KEY));
    EXPECT_THAT(explainWord({"country"}), ElementsAre(Completion::COUNTRY));
    EXPECT_THAT(explainWord({"file"}), ElementsAre(Completion::TREE_FILE));
}

}  // namespace

}  // namespace mlk::tree

// What shells offer: the engine with names of a fake tree, and the scripts in the shells.

#include "tools/mlktree/completion/Complete.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/ExplainWords.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using mlk::testing::Process;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Words = std::vector<std::string>;

class FakeNames : public TreeNames {
  public:
    std::vector<Candidate> of(Completion kind, const Arguments& given,
                              const std::string& section) override {
        asked = given.value("--tree") + ":" + section;
        switch (kind) {
            case Completion::MODEL:
                return {{"1", "first.ini"}, {"2", "second.ini"}};
            case Completion::COUNTRY:
                return {{"GERMANY", ""}, {"GREECE", ""}};
            case Completion::PROPERTY:
                return {{"ro.hardware=", "skerry"}};
            case Completion::SECTION:
                return {{"[LiveTV]", ""}, {"[audio]", ""}, {"loose", ""}};
            case Completion::TREE_FILE:
                return {{"tvconfigs/customer.ini", ""}, {"tvconfigs/tv.config", ""}};
            default:
                return {};
        }
    }

    std::string asked;
};

Words offered(const Words& words, FakeNames& names) {
    const Candidates found = candidatesFor(words, names);
    std::istringstream lines(shownCandidates(found, words.back()));
    Words out;
    for (std::string line; std::getline(lines, line);) {
        out.push_back(line.substr(0, line.find('\t')));
    }
    return out;
}

Words offered(const Words& words) {
    FakeNames names;
    return offered(words, names);
}

TEST(CompleteTest, OffersCommands) {
    EXPECT_THAT(offered({"ch"}), ElementsAre("check"));
    EXPECT_THAT(offered({""}), IsSupersetOf({"check", "rules", "completion", "--help"}));
    EXPECT_THAT(offered({""}), Not(Contains("complete")));
    EXPECT_THAT(offered({"--v"}), ElementsAre("--version"));
    EXPECT_THAT(offered({"dance", ""}), IsEmpty());
    EXPECT_THAT(offered({"complete", ""}), IsEmpty());
}

// The rows are those of the sample.
TEST(CompleteTest, OffersWhatPatternsOfAMatrixAccept) {
    const testing::QuietLog quiet;
    const std::string tree = mlk::testing::sourceDir() + "/samples/partitions";
    const auto offeredFor = [&](const std::string& word) {
        std::istringstream lines(runMlktree({"complete", "--", "matrix", tree, word}).out);
        Words out;
        for (std::string line; std::getline(lines, line);) {
            out.push_back(line.substr(0, line.find('\t')));
        }
        return out;
    };
    EXPECT_THAT(offeredFor(""), IsSupersetOf({"feature", "framework", "plan", "PANEL", "SSC"}));
    EXPECT_THAT(offeredFor(""), Not(Contains("m_pPanelName")));
    EXPECT_THAT(offeredFor("m_pPanelN"), ElementsAre("m_pPanelName"));
    EXPECT_THAT(offeredFor("pvrEn"), ElementsAre("pvrEnabled"));
    EXPECT_THAT(offeredFor("[SS"), ElementsAre("[SSC]"));
    EXPECT_THAT(offeredFor("f"), IsSupersetOf({"feature", "framework"}));
    EXPECT_THAT(offeredFor("plan DTV_A"), ElementsAre("plan DTV_ANTENNA"));
    EXPECT_THAT(offeredFor("feature pvrE"), ElementsAre("feature pvrEnabled"));
    EXPECT_THAT(offeredFor("[PANEL] m_pPanelN"), ElementsAre("[PANEL] m_pPanelName"));
    // Each of them is a pattern that fits rows.
    for (const std::string& word : offeredFor("")) {
        EXPECT_EQ(runMlktree({"matrix", tree, word, "--all", "-o", "/dev/null"}).status, 0) << word;
    }
    EXPECT_EQ(runMlktree({"complete", "--", "matrix", tree + "/tvdata", "f"}).status, 0);
}

TEST(CompleteTest, OffersPartsOfSetsToCompare) {
    EXPECT_THAT(offered({"diff", ""}), IsSupersetOf({"model=", "country=", "tree=", "rev:"}));
    EXPECT_THAT(offered({"diff", "model="}), ElementsAre("model=1", "model=2"));
    EXPECT_THAT(offered({"diff", "model=1,co"}), ElementsAre("model=1,country="));
    EXPECT_THAT(offered({"diff", "a", "model=1,country=GR"}),
                ElementsAre("model=1,country=GREECE"));
    EXPECT_THAT(offered({"diff", "model=1,mo"}), IsEmpty());
    EXPECT_THAT(offered({"diff", "a", "b", ""}), IsEmpty());
}

TEST(CompleteTest, OffersOptionsThatAreNotGiven) {
    EXPECT_THAT(offered({"check", "--mo"}), ElementsAre("--model"));
    EXPECT_THAT(offered({"check", "--model", "1", "--mo"}), IsEmpty());
    EXPECT_THAT(offered({"check", "--prop", "a=b", "--pr"}), ElementsAre("--prop"));
    EXPECT_THAT(offered({"check", "--", "--mo"}), Not(Contains("--model")));
    EXPECT_THAT(offered({"check", "--he"}), ElementsAre("--help"));
}

TEST(CompleteTest, OffersValues) {
    EXPECT_THAT(offered({"check", "--format", ""}),
                ElementsAre("text", "json", "sarif", "github", "junit"));
    EXPECT_THAT(offered({"check", "--fail-on", "e"}), ElementsAre("error"));
    EXPECT_THAT(offered({"check", "--format=s"}), ElementsAre("--format=sarif"));
    EXPECT_THAT(offered({"check", "--model", ""}), ElementsAre("1", "2"));
    EXPECT_THAT(offered({"check", "--country", "GR"}), ElementsAre("GREECE"));
    EXPECT_THAT(offered({"check", "--prop", "ro"}), ElementsAre("ro.hardware="));
    EXPECT_THAT(offered({"check", "-o", ""}), ElementsAre(":files"));
    EXPECT_THAT(offered({"check", "--tvdata", "x"}), ElementsAre(":folders"));
    EXPECT_THAT(offered({"check", "--nonsense=", ""}), ElementsAre(":folders"));
}

TEST(CompleteTest, AsksTheTreeThatIsNamed) {
    FakeNames names;
    offered({"check", "--tree", "line", "--model", ""}, names);
    EXPECT_EQ(names.asked, "line:");
}

TEST(CompleteTest, OffersWords) {
    EXPECT_THAT(offered({"check", ""}), ElementsAre(":folders"));
    EXPECT_THAT(offered({"check", "tree", ""}), IsEmpty());
    EXPECT_THAT(offered({"rules", "missing-f"}), ElementsAre("missing-file"));
    EXPECT_THAT(offered({"completion", ""}), ElementsAre("bash", "zsh", "fish"));
}

TEST(CompleteTest, OffersSectionsAsTheyAreTyped) {
    EXPECT_THAT(offered({"explain", "Li"}), ElementsAre("LiveTV"));
    EXPECT_THAT(offered({"explain", "[Li"}), ElementsAre("[LiveTV]"));
    // [audio] is a topic without its brackets.
    EXPECT_THAT(offered({"explain", ""}),
                ElementsAre("feature", "audio", "country", "file", "LiveTV", "[audio]", "loose"));
}

TEST(CompleteTest, OffersPathsOfTheTree) {
    EXPECT_THAT(offered({"explain", "file", "tvconfigs/t"}), ElementsAre("tvconfigs/tv.config"));
    EXPECT_THAT(offered({"explain", "file", "/tvconfigs/c"}),
                ElementsAre("/tvconfigs/customer.ini"));
    EXPECT_THAT(offered({"explain", "file", "other"}), ElementsAre(":files"));
}

TEST(CompleteTest, HandsNothingOnThatIsNoLine) {
    const Candidates found{{{"a\nb", ""}, {"c", "d\ne"}}, false, false};
    EXPECT_EQ(shownCandidates(found, ""), "c\td\\ne\n");
}

// What a shell offers for the last of the words, sorted.
Words inShell(Words argv, const Words& words, const std::string& folder) {
    argv.insert(argv.end(), words.begin(), words.end());
    Process::Options options;
    options.directory = folder;
    options.env = {{"PATH", mlk::testing::binDir() + ":/usr/bin:/bin"}, {"HOME", folder}};
    Process shell(argv, options);
    EXPECT_EQ(shell.wait(), 0) << shell.err();
    Words lines;
    std::istringstream stream(shell.out());
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line.substr(0, line.find('\t')));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

Words inBash(const Words& words, const std::string& folder) {
    return inShell({"bash", "-c", R"(
        . <(mlktree completion bash)
        complete -p mlktree > /dev/null || exit 1
        COMP_WORDS=(mlktree "$@")
        COMP_CWORD=$#
        _mlktree mlktree "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        ((${#COMPREPLY[@]})) && printf '%s\n' "${COMPREPLY[@]}"
        exit 0)",
                    "bash"},
                   words, folder);
}

Words inFish(const Words& words, const std::string& folder) {
    return inShell({"fish", "--no-config", "-c",
                    "mlktree completion fish | source; complete -C \"mlktree $(string join -- ' ' "
                    "(string escape -- $argv[1..-2])) $argv[-1]\""},
                   words, folder);
}

// In a pseudo-terminal zsh would have to draw; here compadd prints what it is given.
Words inZsh(const Words& words, const std::string& folder) {
    return inShell({"zsh", "-f", "-c", R"zsh(
        compdef() { }
        compadd() { local name=${@[-1]}; print -rl -- "${(@P)name}"; }
        _files() { [[ $1 == -/ ]] && print -rl -- *(N/) || print -rl -- *(N); }
        eval "$(mlktree completion zsh)"
        words=(mlktree "$@")
        CURRENT=${#words}
        _mlktree
        exit 0)zsh",
                    "zsh"},
                   words, folder);
}

bool hasShell(const std::string& name) {
    return Process({"sh", "-c", "command -v " + name + " > /dev/null"}).wait() == 0;
}

class ShellTest : public ::testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        if (!hasShell(GetParam())) {
            GTEST_SKIP() << GetParam() << " is not installed";
        }
        copySoundTree(mDir);
    }

    Words complete(const Words& words) const {
        const auto run = GetParam() == "bash" ? inBash : GetParam() == "zsh" ? inZsh : inFish;
        return run(words, mDir.path());
    }

    const mlk::testing::TempDir mDir;
};

TEST_P(ShellTest, CompletesCommandsOptionsAndValues) {
    EXPECT_THAT(complete({"ch"}), ElementsAre("check"));
    EXPECT_THAT(complete({"check", "--mod"}), ElementsAre("--model"));
    EXPECT_THAT(complete({"check", "--format", "s"}), ElementsAre("sarif"));
    EXPECT_THAT(complete({"rules", "missing-f"}), ElementsAre("missing-file"));
}

TEST_P(ShellTest, CompletesWhatTheTreeHas) {
    EXPECT_THAT(complete({"check", "--model", ""}), ElementsAre("1", "2"));
    EXPECT_THAT(complete({"check", "--tree", mDir.path(), "--country", "GER"}),
                ElementsAre("GERMANY"));
    EXPECT_THAT(complete({"check", ".", "--country", "SW"}), ElementsAre("SWEDEN"));
    EXPECT_THAT(complete({"check", "--tree", "/dev/null", "--model", ""}), IsEmpty());
}

TEST_P(ShellTest, CompletesSectionsAndPathsOfTheTree) {
    EXPECT_THAT(complete({"explain", "PAN"}), ElementsAre("PANEL"));
    EXPECT_THAT(complete({"explain", "PANEL", "m_p"}), Contains("m_pPanelName"));
    EXPECT_THAT(complete({"explain", "file", "tvconfigs/cus"}),
                ElementsAre("tvconfigs/customer.ini"));
}

TEST_P(ShellTest, CompletesFolders) {
    EXPECT_THAT(complete({"check", "tvc"}), Contains(::testing::StartsWith("tvconfigs")));
}

INSTANTIATE_TEST_SUITE_P(EachShell, ShellTest, ::testing::Values("bash", "zsh", "fish"),
                         [](const auto& param) { return param.param; });

}  // namespace

}  // namespace mlk::tree

#include "tools/mlktree/CommandLine.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>

#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Help.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

// The one line that a wrong command line gives.
std::string problemOf(const Words& words) {
    const Outcome outcome = runMlktree(words);
    EXPECT_EQ(outcome.status, 2) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("mlktree: "));
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    return outcome.err;
}

TEST(HelpTest, ListsEveryCommand) {
    for (const char* word : {"--help", "-h"}) {
        const Outcome outcome = runMlktree({word});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        for (const Command& command : commands()) {
            const std::string row = "\n  " + std::string(command.name) + " ";
            EXPECT_EQ(outcome.out.find(row) != std::string::npos, !command.isHidden) << row;
        }
    }
}

TEST(HelpTest, NamesEveryOptionOfACommand) {
    for (const Command& command : commands()) {
        const Outcome outcome = runMlktree({std::string(command.name), "--help"});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, StartsWith("mlktree " + std::string(command.name) + " - " +
                                            std::string(command.summary) + "\n\nUsage: mlktree "));
        for (const OptionGroup& group : command.groups) {
            EXPECT_THAT(outcome.out, HasSubstr("\n" + std::string(group.title) + ":\n"));
            for (const Option& option : group.options) {
                EXPECT_THAT(outcome.out, HasSubstr(std::string(option.name)));
                for (const std::string_view choice : option.choices) {
                    EXPECT_THAT(outcome.out, HasSubstr(std::string(choice)));
                }
            }
        }
        EXPECT_FALSE(command.examples.empty()) << command.name;
        for (const Example& example : command.examples) {
            EXPECT_THAT(outcome.out, HasSubstr("\n  " + std::string(example.line) + "  "));
        }
    }
}

TEST(HelpTest, NamesTheDefaultOfEveryOutput) {
    for (const Command& command : commands()) {
        const Option* const output = command.find("--output");
        const bool isMandatory = command.name == "report";
        if (output != nullptr && !isMandatory) {
            EXPECT_EQ(output->otherwise, "-") << command.name;
        }
    }
}

TEST(HelpTest, FitsATerminal) {
    std::string all = generalHelp();
    for (const Command& command : commands()) {
        all += helpOf(command);
    }
    std::istringstream lines(all);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
        EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
    }
}

TEST(HelpTest, WorksBesideWhatElseIsGiven) {
    EXPECT_THAT(runMlktree({"check", "no-such-tree", "-h"}).out, StartsWith("mlktree check - "));
}

TEST(CommandTableTest, IsSound) {
    std::set<std::string_view> names;
    for (const Command& command : commands()) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name;
        EXPECT_NE(command.run, nullptr) << command.name;
        EXPECT_FALSE(command.words.empty()) << command.name;
        EXPECT_EQ(findCommand(command.name), &command);
        std::set<std::string_view> options;
        for (const OptionGroup& group : command.groups) {
            for (const Option& option : group.options) {
                EXPECT_TRUE(options.insert(option.name).second) << option.name;
                EXPECT_EQ(command.find(option.name), &option);
                EXPECT_EQ(option.help.back() != '.', true) << option.help;
            }
        }
    }
}

TEST(VersionTest, IsPrinted) {
    EXPECT_THAT(runMlktree({"--version"}).out, StartsWith("mlktree "));
}

TEST(WrongCommandLineTest, SaysWhatWouldBeRight) {
    EXPECT_THAT(problemOf({}), HasSubstr("which command? mlktree --help lists them"));
    EXPECT_THAT(problemOf({"chekc"}), HasSubstr("no command \"chekc\"; did you mean check?"));
    EXPECT_THAT(problemOf({"dance"}), HasSubstr("\"dance\"; there are check, "));
    EXPECT_THAT(problemOf({"--hepl"}),
                HasSubstr("there is no option \"--hepl\"; there are --help"));
    EXPECT_THAT(problemOf({"--format", "json", "check"}),
                HasSubstr("the command comes before the option \"--format\""));
    EXPECT_THAT(
            problemOf({"check", "--modle", "1"}),
            HasSubstr("no option \"--modle\"; did you mean --model? (see mlktree check --help)"));
    EXPECT_THAT(problemOf({"check", "--modle=1"}), HasSubstr("\"--modle\"; did you mean --model?"));
    EXPECT_THAT(problemOf({"rules", "-z"}), HasSubstr("no option \"-z\"; there are --format"));
    EXPECT_THAT(problemOf({"check", "--model"}), HasSubstr("--model takes a value: N"));
    EXPECT_THAT(problemOf({"check", "--model", "one"}),
                HasSubstr("--model takes the index of a model, a number, not \"one\""));
    EXPECT_THAT(problemOf({"check", "--model", "1", "--model", "2"}),
                HasSubstr("--model is given 2 times"));
    EXPECT_THAT(problemOf({"check", "--format", "jsno"}),
                HasSubstr("--format takes text, json, sarif, github, junit, not \"jsno\"; did you "
                          "mean json?"));
    EXPECT_THAT(problemOf({"check", "--fail-on", "all"}),
                HasSubstr("--fail-on takes error, warning, note, not \"all\""));
    EXPECT_THAT(problemOf({"check", "a", "b"}),
                HasSubstr("check takes one word besides its options; \"b\" is too much"));
    EXPECT_THAT(problemOf({"show", "a", "b"}), HasSubstr("show takes one word besides"));
    EXPECT_THAT(problemOf({"completion", "ksh"}), HasSubstr("bash, zsh or fish, not \"ksh\""));
    EXPECT_THAT(problemOf({"completion"}), HasSubstr("bash, zsh or fish"));
    EXPECT_THAT(problemOf({"rules", "mising-file"}), HasSubstr("did you mean missing-file?"));
    EXPECT_THAT(problemOf({"check", "\033[2J"}), Not(HasSubstr("\033")));
}

TEST(WrongCommandLineTest, SaysWhereTheWordsOfPlanStand) {
    const std::string form = "mlktree: plan takes [TREE] COUNTRY KIND [CABLE]; ";
    const std::string tree = "some/tree";
    EXPECT_EQ(problemOf({"plan", tree, "USA"}), form + "KIND is missing after \"USA\"\n");
    EXPECT_EQ(problemOf({"plan", "USA"}), form + "KIND is missing after \"USA\"\n");
    EXPECT_EQ(problemOf({"plan", tree, "DTV_CABLE"}),
              form + "COUNTRY is missing before \"DTV_CABLE\"\n");
    EXPECT_EQ(problemOf({"plan", "USA", "DTV_CABLE", "HRC", "x", "--tree", "."}),
              form + "\"x\" is too much\n");
    for (const Words& words : {Words{"plan", "GERMANY", "DTV_CABLE", tree},
                               {"plan", "USA", "DTV_CABLE", "HRC", tree},
                               {"plan", "GERMANY", tree, "DTV_CABLE"}}) {
        EXPECT_EQ(problemOf(words), form + "the tree \"some/tree\" comes first\n");
    }
    // Neither --tree nor a tree in front leaves a place for another one.
    for (const Words& words : {Words{"plan", "USA", "DTV_CABLE", "x/y", "--tree", tree},
                               {"plan", tree, "GERMANY", "DTV_CABLE", "x/y"}}) {
        EXPECT_THAT(problemOf(words), HasSubstr("CABLE is AUTO, STD, HRC, IRC, not \"x/y\""));
    }
}

TEST(WrongTreeTest, SaysWhatIsLookedFor) {
    const mlk::testing::TempDir dir;
    EXPECT_THAT(problemOf({"check", dir.path()}), HasSubstr("there is no folder " + dir.path()));
    EXPECT_THAT(problemOf({"check", dir.path(), "--tree", dir.path()}),
                HasSubstr("there are two trees"));
    EXPECT_THAT(problemOf({"check", dir.path("none")}), HasSubstr("no partition tree"));
    dir.mkdir("tvconfigs");
    EXPECT_THAT(problemOf({"check", dir.path(), "--prop", "nothing"}), HasSubstr("KEY=VALUE"));
    dir.write("mlktree.toml", "[[rule]]\nrule = 1\n");
    EXPECT_THAT(problemOf({"check", dir.path()}),
                HasSubstr(dir.path("mlktree.toml") + ":2:8: \"rule\""));
}

TEST(WrongSetTest, SaysWhichThereAre) {
    const mlk::testing::TempDir dir;
    copySoundTree(dir);
    const auto problem = [&](const std::string& option, const std::string& value) {
        return problemOf({"check", dir.path(), option, value});
    };
    EXPECT_THAT(problem("--model", "9"),
                HasSubstr("--model 9: no line of the system file has this index; there are 1, 2"));
    EXPECT_THAT(problem("--board", "b9.ini"),
                HasSubstr("--board b9.ini: there is no file " + dir.path("tvconfigs/board/b9.ini") +
                          "; did you mean b1.ini?"));
    EXPECT_THAT(problem("--board", "board/b1.ini"),
                HasSubstr("there is no file " + dir.path("board/b1.ini")));
    EXPECT_THAT(problem("--customer", "custmer.ini"),
                HasSubstr("--customer custmer.ini: there is no file " +
                          dir.path("tvconfigs/custmer.ini") + "; did you mean customer.ini?"));
    EXPECT_THAT(problem("--customer", "/tvconfigs/custmer.ini"),
                HasSubstr("; did you mean /tvconfigs/customer.ini?"));
    EXPECT_THAT(problem("--customer", "x/y.ini"), EndsWith("no file " + dir.path("x/y.ini\n")));
    EXPECT_THAT(problem("--country", "UK"),
                HasSubstr("--country UK: the service knows no such country; did you mean "
                          "UNITED_KINGDOM?"));
    EXPECT_THAT(problem("--country", "germany"), HasSubstr("did you mean GERMANY?"));
    EXPECT_THAT(problem("--country", "Zzyzx"), EndsWith("knows no such country\n"));
    std::string lines;
    for (int i = 1; i <= 14; ++i) {
        lines += "Model_" + std::to_string(i) + " = \"/tvconfigs/model/first.ini\"\n";
    }
    dir.write("tvconfigs/system/line.ini", lines);
    EXPECT_THAT(problem("--model", "99"), HasSubstr("11, 12 and 2 more"));
}

TEST(CustomerTest, MayBeNamedWithoutItsFolder) {
    const mlk::testing::TempDir dir;
    copySoundTree(dir);
    const auto show = [&](const std::string& customer) {
        return runMlktree({"show", dir.path(), "--customer", customer});
    };
    const std::string text = runMlktree({"show", dir.path()}).out;
    EXPECT_EQ(show("customer.ini").out, text);
    EXPECT_EQ(show("tvconfigs/customer.ini").out, text);
    EXPECT_EQ(show("/tvconfigs/customer.ini").out, text);
    // A file of that name at the top of the tree could be meant as well.
    dir.write("customer.ini", dir.read("tvconfigs/customer.ini"));
    const Outcome both = show("customer.ini");
    EXPECT_EQ(both.status, 2);
    EXPECT_EQ(both.err, "mlktree: --customer customer.ini: there are " + dir.path("customer.ini") +
                                " and " + dir.path("tvconfigs/customer.ini") +
                                "; name one of them by its path, as in tvconfigs/customer.ini\n");
    EXPECT_EQ(show("tvconfigs/customer.ini").out, text);
}

TEST(ParseTest, TellsOptionsAndWordsApart) {
    const Command& check = *findCommand("check");
    const Arguments arguments =
            parse(check, {"--model=3", "tree", "--prop", "a=b", "--prop", "c=d", "-o", "-"});
    EXPECT_EQ(arguments.value("--model"), "3");
    EXPECT_THAT(arguments.values("--prop"), ElementsAre("a=b", "c=d"));
    EXPECT_EQ(arguments.value("--output"), "-");
    EXPECT_THAT(arguments.words(), ElementsAre("tree"));
    EXPECT_FALSE(arguments.has("--board"));
    EXPECT_EQ(arguments.value("--board", "none"), "none");
}

TEST(ParseTest, TakesWordsAsTheyAre) {
    const Command& rules = *findCommand("rules");
    EXPECT_THAT(parse(rules, {"[a,b]"}).words(), ElementsAre("[a,b]"));
    EXPECT_THAT(parse(rules, {"--", "--format"}).words(), ElementsAre("--format"));
    EXPECT_THAT(parse(rules, {"-"}).words(), ElementsAre("-"));
    EXPECT_THAT(parse(rules, {"--format", "json", "--", "a"}).words(), ElementsAre("a"));
    EXPECT_EQ(parse(*findCommand("check"), {"--board", "[x]"}).value("--board"), "[x]");
    EXPECT_EQ(parse(*findCommand("check"), {"--board", ""}).value("--board", "y"), "");
}

TEST(ColourTest, IsAMatterOfTerminalVariableAndOption) {
    Output output(-1);
    std::ostringstream errors;
    Environment plain{output, errors, false, "", false};
    Environment noColor{output, errors, false, "", true};
    Arguments none;
    EXPECT_TRUE(isColoured(none, plain, true));
    EXPECT_FALSE(isColoured(none, plain, false));
    EXPECT_FALSE(isColoured(none, noColor, true));
    Arguments always;
    always.add("--color", "always");
    EXPECT_TRUE(isColoured(always, noColor, false));
    Arguments never;
    never.add("--color", "never");
    EXPECT_FALSE(isColoured(never, plain, true));
}

TEST(RulesCommandTest, ListsAndExplains) {
    const Outcome list = runMlktree({"rules"});
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, HasSubstr("\nFiles that lines name\n  missing-file "));
    const Outcome one = runMlktree({"rules", "missing-file"});
    EXPECT_EQ(one.status, 0);
    EXPECT_THAT(one.out, StartsWith("missing-file - a line names a file that does not exist\n\n"
                                    "Severity: error\n"));
    EXPECT_THAT(one.out, HasSubstr("\nBreaks the rule:\n\n    "));
    EXPECT_THAT(one.out, HasSubstr("\nDoes not:\n\n    "));
    const Outcome json = runMlktree({"rules", "missing-file", "--format", "json"});
    EXPECT_THAT(json.out, StartsWith("{\"rule\":\"missing-file\",\"family\":\"paths\","
                                     "\"severity\":\"error\",\"summary\":\""));
    const std::string all = runMlktree({"rules", "--format", "json"}).out;
    EXPECT_THAT(all, StartsWith("[\n{\"rule\":\""));
    EXPECT_THAT(all, EndsWith("}\n]\n"));
}

TEST(RulesCommandTest, SaysForEachKindOfFileHowToAllow) {
    EXPECT_THAT(runMlktree({"rules", "missing-file"}).out,
                EndsWith("\nTo allow it in one place, write a comment above the line:\n\n"
                         "    .ini, TV features  # mlktree: allow missing-file REASON\n"
                         "    channel plans      // mlktree: allow missing-file REASON\n"
                         "    XML                <!-- mlktree: allow missing-file REASON -->\n\n"
                         "Lists, identity files and properties hold no comment; for them, write "
                         "into\nmlktree.toml:\n\n"
                         "    [[allow]]\n    rule = \"missing-file\"\n    files = \"FILE\"\n"
                         "    reason = \"REASON\"\n"));
    // No comment allows a finding about comments.
    EXPECT_THAT(runMlktree({"rules", "unused-allow"}).out,
                AllOf(Not(HasSubstr("write a comment")), HasSubstr("[[allow]]\n    rule = \"un")));
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            const std::string page = runMlktree({"rules", std::string(family.rules[i].name)}).out;
            std::istringstream lines(page.substr(page.find("\nTo allow it")));
            for (std::string line; std::getline(lines, line);) {
                EXPECT_LE(line.size(), kHelpWidth) << line;
            }
        }
    }
}

TEST(RulesCommandTest, EveryRuleIsExplained) {
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            const Rule& rule = family.rules[i];
            for (const std::string_view part : {rule.summary, rule.why, rule.bad, rule.good}) {
                EXPECT_FALSE(part.empty()) << rule.name;
            }
            EXPECT_NE(rule.bad, rule.good) << rule.name;
        }
    }
}

}  // namespace

}  // namespace mlk::tree

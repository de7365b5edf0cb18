#include "tools/mlktree/Settings.h"

#include <gmock/gmock.h>

#include "host/testing/TempDir.h"
#include "tools/mlktree/SettingsTables.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Settings settingsOf(const std::string& text) {
    const mlk::testing::TempDir dir;
    return readSettings(dir.write("mlktree.toml", text));
}

// What is said about a text, after the path: "line:column: message".
std::string problemOf(const std::string& text) {
    const mlk::testing::TempDir dir;
    const std::string path = dir.write("mlktree.toml", text);
    try {
        readSettings(path);
    } catch (const UsageError& error) {
        const std::string what = error.what();
        EXPECT_EQ(what.rfind(path + ":", 0), 0U) << what;
        return what.substr(path.size() + 1);
    }
    return "no problem";
}

TEST(SettingsTest, AreEmptyWithoutAFile) {
    const mlk::testing::TempDir dir;
    const Settings settings = readSettings(dir.path("mlktree.toml"));
    EXPECT_THAT(settings.keys, IsEmpty());
    EXPECT_THAT(settings.rules, IsEmpty());
    EXPECT_THAT(settingsOf("").allowances, IsEmpty());
}

TEST(SettingsTest, ReadRules) {
    const Settings settings = settingsOf(R"(
[[rule]]
rule = "missing-file"
files = "tvconfigs/model/old_*.ini"
severity = "off"
reason = "these files come from another partition"

[[rule]]
rule = "*"
severity = "note"
)");
    ASSERT_THAT(settings.rules, SizeIs(2));
    EXPECT_EQ(settings.rules[0].rule, "missing-file");
    EXPECT_EQ(settings.rules[0].files, "tvconfigs/model/old_*.ini");
    EXPECT_EQ(settings.rules[0].severity, Severity::OFF);
    EXPECT_EQ(settings.rules[0].reason, "these files come from another partition");
    EXPECT_EQ(settings.rules[0].line, 2U);
    EXPECT_EQ(settings.rules[1].rule, "*");
    EXPECT_EQ(settings.rules[1].files, "**");
    EXPECT_EQ(settings.rules[1].severity, Severity::NOTE);
}

TEST(SettingsTest, ReadAllowances) {
    const Settings settings = settingsOf(R"([[allow]]
rule = "missing-file"
files = "tvconfigs/country/*.txt"
text = "ATLANTIS"
reason = "the country is being founded"
)");
    ASSERT_THAT(settings.allowances, SizeIs(1));
    EXPECT_EQ(settings.allowances[0].rule, "missing-file");
    EXPECT_EQ(settings.allowances[0].text, "ATLANTIS");
    EXPECT_EQ(settings.allowances[0].reason, "the country is being founded");
    EXPECT_EQ(settings.allowances[0].line, 1U);
}

TEST(SettingsTest, ReadKeys) {
    const Settings settings = settingsOf(R"(
[[key]]
section = "[APP]"
key = "Volume"
type = "integer"
least = -10
most = 100
required = true
remark = "of the welcome sound"

[[key]]
section = "APP"
key = "Theme"
type = "choice"
choices = ["dark", "light"]

[[key]]
section = "[OEM_*]"
key = "*"

[[key]]
section = "APP"
key = "Serial"
type = "pattern"
pattern = "[A-Z]{2}[0-9]+"
)");
    ASSERT_THAT(settings.keys, SizeIs(4));
    const OwnKey* volume = settings.find("[APP]", "Volume");
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->type, OwnType::INTEGER);
    EXPECT_EQ(volume->least, -10);
    EXPECT_EQ(volume->most, 100);
    EXPECT_TRUE(volume->isRequired);
    EXPECT_EQ(volume->remark, "of the welcome sound");
    EXPECT_EQ(volume->line, 2U);
    ASSERT_NE(settings.find("[APP]", "Theme"), nullptr);
    EXPECT_THAT(settings.find("[APP]", "Theme")->choices, ElementsAre("dark", "light"));
    EXPECT_EQ(settings.find("[APP]", "Serial")->pattern, "[A-Z]{2}[0-9]+");
    ASSERT_NE(settings.find("[OEM_7]", "anything"), nullptr);
    EXPECT_EQ(settings.find("[OEM_7]", "anything")->type, OwnType::TEXT);
    EXPECT_EQ(settings.find("[APP]", "Vol"), nullptr);
    EXPECT_TRUE(settings.knowsSection("[APP]"));
    EXPECT_TRUE(settings.knowsSection("[OEM_]"));
    EXPECT_FALSE(settings.knowsSection("[PANEL]"));
}

TEST(SettingsTest, FindTheNameBeforeThePattern) {
    const Settings settings = settingsOf(R"(
[[key]]
section = "[A]"
key = "*"
type = "boolean"
[[key]]
section = "[A]"
key = "b"
type = "path"
)");
    EXPECT_EQ(settings.find("[A]", "b")->type, OwnType::PATH);
    EXPECT_EQ(settings.find("[A]", "c")->type, OwnType::BOOLEAN);
}

TEST(SettingsErrorsTest, NamePlaceAndRemedy) {
    struct Row {
        const char* text;
        const char* problem;
    };
    for (const Row& row : {
                 Row{"[[ruel]]\n", "1:3: there is no table \"ruel\"; did you mean rule?"},
                 Row{"x = 1\n",
                     "1:1: there is no table \"x\"; there are [[rule]], [[allow]], "
                     "[[key]]"},
                 Row{"[rule]\nrule = \"tab\"\n", "1:1: write [[rule]] for each of these tables"},
                 Row{"rule = [1]\n", "1:9: write [[rule]] and its keys below"},
                 Row{"[[rule]]\nrule = \"tba\"\nseverity = \"off\"\n",
                     "2:8: there is no rule \"tba\"; did you mean tab?"},
                 Row{"[[rule]]\nrule = 7\n", "2:8: \"rule\" of [[rule]] is a text: put it into"},
                 Row{"[[rule]]\nseverity = \"off\"\n", "1:1: [[rule]] needs \"rule\""},
                 Row{"[[rule]]\nrule = \"tab\"\n", "1:1: [[rule]] needs \"severity\""},
                 Row{"[[rule]]\nrule = \"tab\"\nseverity = \"eror\"\n",
                     "3:12: \"severity\" is one of off, note, warning, error, not \"eror\"; did "
                     "you mean error?"},
                 Row{"[[rule]]\nrule = \"tab\"\nseverity = \"off\"\n",
                     "3:12: a rule is switched off with a reason only"},
                 Row{"[[rule]]\nrule = \"tab\"\nseverity = \"off\"\nreason = \" \"\n",
                     "4:10: the reason is empty"},
                 Row{"[[rule]]\nrule = \"tab\"\nseverity = \"note\"\nfile = \"a\"\n",
                     "4:1: [[rule]] has no key \"file\"; did you mean files?"},
                 Row{"[[rule]]\nrule = \"tab\"\nseverity = \"note\"\nfiles = \"/tvconfigs/a\"\n",
                     "4:9: \"files\" is relative to the tree"},
                 Row{"[[allow]]\nrule = \"*\"\nreason = \"x\"\n", "2:8: there is no rule \"*\""},
                 Row{"[[allow]]\nrule = \"tab\"\n", "1:1: [[allow]] needs \"reason\""},
                 Row{"[[key]]\nkey = \"a\"\n", "1:1: [[key]] needs \"section\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"\"\n", "3:7: the key is empty"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"int\"\n",
                     "4:8: \"type\" is one of text, path, boolean, integer, choice, pattern"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\nleast = 1\n",
                     "4:9: only a key of type \"integer\" has \"least\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"integer\"\nleast = \"1\"\n",
                     "5:9: \"least\" is an integer, without quotes"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"integer\"\nleast = 2\nmost = "
                     "1\n",
                     "5:9: \"least\" is more than \"most\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"choice\"\n",
                     "1:1: [[key]] needs \"choices\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"choice\"\nchoices = []\n",
                     "5:11: \"choices\" is empty"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"choice\"\nchoices = \"a\"\n",
                     "5:11: \"choices\" is a list of texts"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"choice\"\nchoices = [1]\n",
                     "5:12: \"choices\" is a list of texts: put each"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\nchoices = [\"b\"]\n",
                     "4:11: only a key of type \"choice\" has \"choices\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\npattern = \"b\"\n",
                     "4:11: only a key of type \"pattern\" has a \"pattern\""},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"pattern\"\npattern = "
                     "\"[a\"\n",
                     "5:11: \"[a\" is no regular expression"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\nrequired = \"yes\"\n",
                     "4:12: \"required\" is true or false"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a*\"\nrequired = true\n",
                     "4:12: a key with \"*\" or \"?\" cannot be required"},
                 Row{"[[key]]\nsection = \"A\"\nkey = \"a\"\n[[key]]\nsection = \"[A]\"\nkey = "
                     "\"a\"\n",
                     "6:7: line 1 declares [A] a already"},
                 Row{"[[rule]\n", "1:"},
                 Row{"a = \"\xff\"\n", "1:"},
         }) {
        EXPECT_THAT(problemOf(row.text), ::testing::StartsWith(row.problem)) << row.text;
    }
}

// An example without the line of one key.
std::string without(const SettingsKey& key, std::string_view example) {
    std::string text(example);
    const size_t begin = text.find("\n" + std::string(key.name) + " = ");
    if (begin != std::string::npos) {
        text.erase(begin, text.find('\n', begin + 1) - begin);
    }
    return text;
}

TEST(SettingsTablesTest, TheReaderTakesTheExamples) {
    std::string all;
    for (const SettingsTable& table : settingsTables()) {
        EXPECT_EQ(problemOf(std::string(table.example)), "no problem") << table.name;
        all += table.example;
    }
    const Settings settings = settingsOf(all);
    EXPECT_THAT(settings.rules, SizeIs(1));
    EXPECT_THAT(settings.allowances, SizeIs(1));
    EXPECT_THAT(settings.keys, SizeIs(1));
}

TEST(SettingsTablesTest, TheReaderRequiresWhatTheTablesSay) {
    for (const SettingsTable& table : settingsTables()) {
        for (const SettingsKey& key : table.keys) {
            if (key.name == "type") {
                continue;  // decides which of the other keys there may be
            }
            // A rule that is off needs its reason.
            const std::string text = without(key, table.example);
            const std::string problem =
                    problemOf(table.name == "rule" && key.name == "reason"
                                      ? text.substr(0, text.find("\"off\"")) + "\"note\"\n"
                                      : text);
            if (key.isRequired) {
                EXPECT_EQ(problem, "1:1: [[" + std::string(table.name) + "]] needs \"" +
                                           std::string(key.name) + "\"");
            } else {
                EXPECT_EQ(problem, "no problem") << key.name;
            }
        }
    }
}

TEST(SettingsTablesTest, TheReaderKnowsEveryKey) {
    for (const SettingsTable& table : settingsTables()) {
        for (const SettingsKey& key : table.keys) {
            // No key takes a date: what is said names the key, and does not call it unknown.
            const std::string text = without(key, table.example);
            const std::string problem = problemOf(text + std::string(key.name) + " = 2026-11-22\n");
            EXPECT_THAT(problem, HasSubstr("\"" + std::string(key.name) + "\"")) << table.name;
            EXPECT_THAT(problem, ::testing::Not(HasSubstr("has no key"))) << key.name;
        }
    }
}

TEST(SettingsTablesTest, TheCommandTellsEveryKey) {
    const std::string text = runMlktree({"settings"}).out;
    const std::string json = runMlktree({"settings", "--format", "json"}).out;
    for (const SettingsTable& table : settingsTables()) {
        const size_t at = text.find("\n[[" + std::string(table.name) + "]]\n");
        ASSERT_NE(at, std::string::npos) << table.name;
        EXPECT_THAT(json, HasSubstr("{\"name\":\"" + std::string(table.name) + "\""));
        for (const SettingsKey& key : table.keys) {
            EXPECT_NE(text.find("\n  " + std::string(key.name) + " = ", at), std::string::npos);
            EXPECT_THAT(json, HasSubstr("{\"name\":\"" + std::string(key.name) + "\""));
        }
    }
}

TEST(SettingsErrorsTest, RefuseWhatIsNoFileOrTooLarge) {
    const mlk::testing::TempDir dir;
    dir.mkdir("folder");
    EXPECT_THROW(readSettings(dir.path("folder")), UsageError);
    const std::string large = dir.write("large", std::string((1U << 20U) + 1, '#'));
    EXPECT_THROW(readSettings(large), UsageError);
    EXPECT_THAT(
            problemOf("[[key]]\nsection = \"A\"\nkey = \"a\"\ntype = \"pattern\"\npattern = \"" +
                      std::string(1001, '(') + "\"\n"),
            HasSubstr("longer than 1000 bytes"));
    EXPECT_NE(problemOf("a = " + std::string(100000, '[')), "no problem");
}

}  // namespace

}  // namespace mlk::tree

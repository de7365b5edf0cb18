// mlktree check from its words to its output.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/testing/Process.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using mlk::testing::Process;
using Json = nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* kModel = "tvconfigs/model/first.ini";

class CheckTest : public ::testing::Test {
  protected:
    CheckTest() {
        copySoundTree(mDir);
        mSound = mDir.read(kModel);
    }

    // Makes the model name a file that is missing, with a line above.
    void breakModel(const std::string& above = "") {
        std::string text = mSound;
        const std::string line = "AUDIO_CONFIG_PATH     = /tvconfigs/audio/panel.ini\n";
        text.replace(text.find(line), line.size(),
                     above + "AUDIO_CONFIG_PATH     = /tvconfigs/audio/oem.ini\n");
        mDir.write(kModel, text);
    }

    Outcome check(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), {"check", mDir.path()});
        return runMlktree(words);
    }

    Json findings(std::vector<std::string> words = {}) const {
        words.insert(words.end(), {"--format", "json"});
        return Json::parse(check(words).out)["findings"];
    }

    const mlk::testing::TempDir mDir;
    std::string mSound;
};

TEST_F(CheckTest, FindsNothingInASoundTree) {
    const Outcome outcome = check();
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr(" files, "));
    EXPECT_THAT(outcome.out, HasSubstr(" sets"));
}

TEST_F(CheckTest, NamesThePlaceOfAMistake) {
    breakModel();
    const Outcome outcome = check();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, StartsWith("tvconfigs/model/first.ini:29:25: error: there is no file "
                                        "/tvconfigs/audio/oem.ini [missing-file]\n"
                                        "    AUDIO_CONFIG_PATH     = /tvconfigs/audio/oem.ini\n"
                                        "                            ^\n"
                                        "    in model=1\n"));
    const Json found = findings();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0]["rule"], "missing-file");
    EXPECT_EQ(found[0]["file"], kModel);
    EXPECT_EQ(found[0]["line"], 29);
    EXPECT_EQ(found[0]["column"], 25);
}

TEST_F(CheckTest, TakesTheTreeFromItsPlaces) {
    breakModel();
    const std::string expected = check().out;
    EXPECT_EQ(runMlktree({"check", "--tree", mDir.path()}).out, expected);
    EXPECT_EQ(runMlktree({"check"}, mDir.path()).out, expected);
    const Outcome apart = runMlktree({"check", "--tvconfigs", mDir.path("tvconfigs"), "--tvdata",
                                      mDir.path("tvdata"), "--impdata", mDir.path("impdata"),
                                      "--prop", "ro.hardware=chassis"});
    EXPECT_EQ(apart.status, 1) << apart.err;
    EXPECT_THAT(apart.out, HasSubstr("tvconfigs/model/first.ini:29:25: error: "));
}

TEST_F(CheckTest, AValueOfTheCommandLineHasNoLineOfAFile) {
    const std::string key = "persist.vendor.mlk.enstr";
    const std::string place = "data/property/" + key;
    mDir.write(place, "1");
    const auto told = [&](const std::string& value) {
        return runMlktree({"check", mDir.path(), "--prop", key + "=" + value}).out;
    };
    EXPECT_EQ(told("0"), runMlktree({"check", mDir.path()}).out);
    EXPECT_THAT(told("maybe"), AllOf(StartsWith(place + ": error: --prop " + key + ": "),
                                     Not(HasSubstr("\n    "))));
    EXPECT_THAT(told("1\n"), AllOf(StartsWith(place + ": error: --prop " + key + ": the line end "),
                                   HasSubstr("; write \"1\" without one [property-line-end]\n"),
                                   Not(HasSubstr("\n    "))));
    mDir.write(place, "maybe");
    EXPECT_THAT(runMlktree({"check", mDir.path()}).out,
                AllOf(StartsWith(place + ":1:1: error: "), HasSubstr("\n    maybe\n    ^\n")));
}

TEST_F(CheckTest, TakesTheCurrentFolder) {
    breakModel();
    Process::Options options;
    options.directory = mDir.path();
    options.env = {{"MLK_ROOT", ""}};
    Process process({mlk::testing::binDir() + "/mlktree", "check"}, options);
    EXPECT_EQ(process.wait(), 1);
    EXPECT_EQ(process.out(), check().out);
    // The readers' log stays silent, and no colours without a terminal.
    EXPECT_EQ(process.err(), "");
    EXPECT_THAT(process.out(), Not(HasSubstr("\033")));
}

TEST_F(CheckTest, NamesTheFileInTheRightCaseAsWritten) {
    std::string text = mSound;
    const std::string path = "/tvconfigs/audio/panel.ini";
    text.replace(text.find(path), path.size(), "/tvconfigs/audio/Panel.ini");
    mDir.write(kModel, text);
    const std::filesystem::path folder(mDir.path());
    for (const auto& [directory, tree] :
         {std::pair{folder, folder}, std::pair{folder, folder / "."},
          std::pair{folder, std::filesystem::path(".")},
          std::pair{folder.parent_path(), folder.filename()}}) {
        Process::Options options;
        options.directory = directory;
        Process process({mlk::testing::binDir() + "/mlktree", "check", tree}, options);
        EXPECT_EQ(process.wait(), 1);
        EXPECT_THAT(process.out(), HasSubstr("no file /tvconfigs/audio/Panel.ini; case counts, and "
                                             "there is /tvconfigs/audio/panel.ini"))
                << tree;
    }
}

TEST_F(CheckTest, AFileThatALineWithAMistakeNamesIsNotUnused) {
    const std::string right = "OVERSCAN_PATH = /tvconfigs/panel/overscan.ini\n";
    std::string text = mSound;
    const size_t at = text.find(right);
    ASSERT_NE(at, std::string::npos);
    mDir.write("tvconfigs/panel/other.ini", mDir.read("tvconfigs/panel/overscan.ini"));
    text.replace(at, right.size(), "OVERSCAN_PATH /tvconfigs/panel/other.ini\n");
    mDir.write(kModel, text);
    const Json found = findings();
    ASSERT_FALSE(found.empty());
    for (const Json& finding : found) {
        EXPECT_NE(finding["file"], "tvconfigs/panel/other.ini") << finding;
    }
}

TEST_F(CheckTest, ThresholdDecidesTheStatus) {
    mDir.write(kModel, "# mlktree: allow missing-file it is not missing at all\n" + mSound);
    EXPECT_EQ(check().status, 0);
    EXPECT_EQ(check({"--fail-on", "note"}).status, 1);
    breakModel("# mlktree: allow missing-file\n");
    EXPECT_EQ(check({"--fail-on", "error"}).status, 1);
}

TEST_F(CheckTest, CommentsAllow) {
    breakModel("# mlktree: allow missing-file the factory adds it\n");
    const Outcome outcome = check();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, StartsWith("nothing found in "));
    EXPECT_THAT(outcome.out, HasSubstr("; 2 findings allowed\n"));
}

TEST_F(CheckTest, CommentsInXmlAllow) {
    const std::string path = "tvconfigs/tvsysmap/systems.xml";
    std::string text = mDir.read(path);
    const size_t item = text.find("<!--");
    ASSERT_NE(item, std::string::npos);
    text.insert(item, "<!-- mlktree: allow missing-file nothing is missing -->\n");
    mDir.write(path, text);
    const Json found = findings();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0]["rule"], "unused-allow");
    EXPECT_EQ(found[0]["file"], path);
    // Some sets only: the comment may be for another.
    EXPECT_THAT(findings({"--model", "1"}), IsEmpty());
}

TEST_F(CheckTest, SettingsChangeSeverities) {
    breakModel();
    mDir.write("mlktree.toml", "[[rule]]\nrule = \"missing-file\"\nseverity = \"note\"\n");
    EXPECT_EQ(check().status, 0);
    EXPECT_EQ(findings()[0]["severity"], "note");
    mDir.write("mlktree.toml",
               "[[allow]]\nrule = \"missing-file\"\nfiles = \"*.ini\"\n"
               "text = \"AUDIO_CONFIG_PATH     = /tvconfigs/audio/oem.ini\"\nreason = \"later\"\n");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(CheckTest, FindingsOfALineStandInTheOrderOfItsColumns) {
    Finding first;
    first.rule = "z";
    first.place = {"f", 1, 2};
    Finding second;
    second.rule = "a";
    second.place = {"f", 1, 9};
    EXPECT_LT(first, second);
    EXPECT_FALSE(second < first);
}

TEST_F(CheckTest, AllowedFindingsStandInTheOrderOfFilesAndLines) {
    for (const char* file : {kModel, "tvconfigs/model/second.ini"}) {
        mDir.write(file, mDir.read(file) +
                                 "[X]\n# mlktree: allow missing-file it comes later\n"
                                 "b = /tvconfigs/none\n"
                                 "# mlktree: allow no-equals it is a note\nc d\n");
    }
    const Json log = Json::parse(check({"--format", "sarif"}).out);
    std::vector<std::pair<std::string, int>> places;
    std::set<std::string> rules;
    for (const Json& result : log["runs"][0]["results"]) {
        if (result["suppressions"].empty()) {
            continue;
        }
        const Json& place = result["locations"][0]["physicalLocation"];
        places.emplace_back(place["artifactLocation"]["uri"], place["region"]["startLine"]);
        rules.insert(result["ruleId"].get<std::string>());
    }
    EXPECT_THAT(rules, ::testing::IsSupersetOf({"missing-file", "no-equals"}));
    EXPECT_GE(places.size(), 3U);
    EXPECT_THAT(places, ::testing::WhenSorted(::testing::ElementsAreArray(places)));
}

TEST_F(CheckTest, BaselineKnowsTodaysFindings) {
    breakModel();
    const std::string known = mDir.path("known.json");
    const Outcome first = check({"--baseline", known});
    EXPECT_EQ(first.status, 0);
    EXPECT_THAT(first.err, HasSubstr("known.json: 1 finding known from now on\n"));
    EXPECT_THAT(first.out, HasSubstr("; 1 finding allowed; 1 finding known\n"));
    // The line moves, and another mistake comes.
    breakModel("# a remark\n\n");
    EXPECT_EQ(check({"--baseline", known}).status, 0);
    EXPECT_EQ(check({"--baseline", known}).err, "");
    mDir.write(kModel, mDir.read(kModel) + "[X]\na = /tvconfigs/none.ini\tb\n");
    const Outcome second = check({"--baseline", known});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.out, Not(HasSubstr("oem.ini")));
    // Mended: the entry is gone, and a new baseline forgets it.
    mDir.write(kModel, mSound);
    EXPECT_THAT(check({"--baseline", known}).out, HasSubstr("; 0 findings known, 1 known finding "
                                                            "gone\n"));
    // A check of some sets cannot tell what is gone from the others.
    const Outcome some = check({"--baseline", known, "--country", "GERMANY"});
    EXPECT_EQ(some.status, 0) << some.err;
    EXPECT_THAT(some.out, HasSubstr("; 0 findings known\n"));
    EXPECT_EQ(check({"--write-baseline", known}).status, 0);
    EXPECT_EQ(mDir.read("known.json"), "{\"version\":1,\"findings\":[]}\n");
}

TEST_F(CheckTest, RefusesAWrongBaseline) {
    mDir.write("known.json", "x");
    EXPECT_EQ(check({"--baseline", mDir.path("known.json")}).status, 2);
    EXPECT_EQ(check({"--baseline", mDir.path("tvconfigs")}).status, 2);
    EXPECT_EQ(check({"--baseline", mDir.path("no/such/folder")}).status, 2);
    EXPECT_EQ(check({"--baseline", "a", "--write-baseline", "b"}).status, 2);
}

TEST_F(CheckTest, ANewBaselineTakesAllSets) {
    mDir.write("known.json", "{\"version\":1,\"findings\":[]}\n");
    const std::string known = mDir.path("known.json");
    breakModel();
    for (const auto& [option, value] :
         {std::pair("--model", "1"), std::pair("--board", "none"),
          std::pair("--customer", "/tvconfigs/customer.ini"), std::pair("--country", "GERMANY")}) {
        const Outcome refused = check({"--write-baseline", known, option, value});
        EXPECT_EQ(refused.status, 2) << option;
        EXPECT_EQ(refused.out, "") << option;
        EXPECT_THAT(refused.err,
                    HasSubstr("--write-baseline writes the findings of all sets, and " +
                              std::string(option) + " chooses some of them; leave it out\n"));
    }
    EXPECT_THAT(check({"--write-baseline", known, "--country", "GERMANY", "--model", "1"}).err,
                HasSubstr("and --model and --country choose some of them; leave them out\n"));
    EXPECT_EQ(mDir.read("known.json"), "{\"version\":1,\"findings\":[]}\n");
    EXPECT_EQ(check({"--baseline", known, "--model", "1"}).status, 1) << "reading it goes on";
}

TEST_F(CheckTest, AMissingBaselineIsMadeOfAllSets) {
    breakModel();
    const std::string known = mDir.path("known.json");
    const Outcome refused = check({"--baseline", known, "--model", "1"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.err, HasSubstr("there is no file " + known +
                                       ", and a new one has the findings of all "
                                       "sets, and --model chooses some of them; leave it out\n"));
    EXPECT_FALSE(std::filesystem::exists(known));
}

TEST_F(CheckTest, SuggestsTheCountryThatIsMeant) {
    const Outcome misspelt = check({"--country", "GERMNY"});
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_THAT(misspelt.err, HasSubstr("--country GERMNY: the service knows no such country; did "
                                        "you mean GERMANY?"));
    EXPECT_THAT(check({"--country", "ATLANTIS"}).err, HasSubstr("no such country\n"));
}

TEST_F(CheckTest, WritesToAFile) {
    breakModel();
    // What the file had before is gone, even where it was longer.
    const std::string path = mDir.write("out.json", std::string(100'000, 'x'));
    const Outcome outcome = check({"--format", "json", "-o", path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(Json::parse(mDir.read("out.json"))["findings"], SizeIs(1));
    const Outcome refused = check({"-o", mDir.path("no/such/folder")});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("no/such/folder cannot be written: No such file"));
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_THAT(check({"-o", "/dev/full"}).err, HasSubstr("/dev/full cannot be written: No "
                                                              "space left"));
    }
}

TEST_F(CheckTest, WritesNothingIntoTheTree) {
    breakModel();
    const auto contents = [&] {
        std::string all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(mDir.path())) {
            all += entry.path().string() + "\n";
        }
        return all;
    };
    const std::string before = contents();
    check();
    EXPECT_EQ(contents(), before);
}

TEST_F(CheckTest, ColoursIfAsked) {
    breakModel();
    EXPECT_THAT(check({"--color", "always"}).out, HasSubstr("\033[1;31merror:\033[0m"));
    EXPECT_THAT(check({"--color", "never"}).out, Not(HasSubstr("\033")));
}

TEST_F(CheckTest, AnnotationsNameFilesFromTheCurrentFolder) {
    breakModel();
    std::filesystem::create_directory(mDir.path("sub"));
    Process::Options options;
    options.directory = std::filesystem::path(mDir.path()).parent_path();
    const std::string name = std::filesystem::path(mDir.path()).filename();
    Process process({mlk::testing::binDir() + "/mlktree", "check", name, "--format", "github"},
                    options);
    EXPECT_EQ(process.wait(), 1);
    EXPECT_THAT(process.out(), HasSubstr("::error file=" + name + "/" + kModel +
                                         ",line=29,col=25,title=missing-file::there is no file"));
}

TEST_F(CheckTest, EveryFormatPrints) {
    breakModel();
    for (const auto& [name, format] : formats()) {
        const Outcome outcome = check({"--format", std::string(name)});
        EXPECT_EQ(outcome.status, 1) << name;
        EXPECT_THAT(outcome.out, HasSubstr("missing-file")) << name;
    }
}

TEST_F(CheckTest, EndsQuietlyIfNobodyReads) {
    breakModel();
    Process process(
            {"sh", "-c",
             "'" + mlk::testing::binDir() + "/mlktree' check '" + mDir.path() + "' | true"});
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.err(), "");
}

}  // namespace

}  // namespace mlk::tree

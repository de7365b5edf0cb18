#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/common/Text.h"
#include "tools/mlktree/tests/DiffFixture.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using ::testing::HasSubstr;
using testing::TempDir;

TEST_F(DiffTest, TwoSets) {
    const std::string tree = ",tree=" + samplePath();
    const Outcome models = runMlktree({"diff", "model=6" + tree, "model=7" + tree});
    EXPECT_EQ(models.status, 1);
    EXPECT_THAT(models.out, HasSubstr("  [PANEL] m_pPanelName\n    - OSMR-65U120-D2  "));
    EXPECT_THAT(models.out, ::testing::Not(HasSubstr("all boards")));
    const Outcome same = runMlktree({"diff", "--tree", samplePath(), "model=6", "model=6"});
    EXPECT_EQ(same.out, "no difference\n");
    const Outcome countries = runMlktree({"diff", "--tree", samplePath(), "model=1,country=GERMANY",
                                          "model=1,country=FRANCE", "--format", "json"});
    EXPECT_EQ(countries.status, 1) << countries.err;
    // The other side means the same set.
    replace("tvconfigs/model/TRQ65_C3_UK.ini", "OSMR-65U120-D2", "NEW");
    EXPECT_EQ(runMlktree({"diff", "model=7" + tree, mDir.path()}).out, "no difference\n");
    const Outcome changed = runMlktree({"diff", "model=6" + tree, mDir.path()});
    EXPECT_THAT(changed.out, HasSubstr("+ NEW"));
    EXPECT_THAT(changed.out, HasSubstr("1 difference\n"));
    EXPECT_THAT(runMlktree({"diff", "model=6" + tree, mDir.path(), "--format", "markdown"}).out,
                HasSubstr("| name | before | after |\n|---|---|---|\n"));
}

TEST_F(DiffTest, SnapshotsStandForTrees) {
    const TempDir out;
    const std::string snapshot = out.path("old.json");
    ASSERT_EQ(runMlktree({"snapshot", samplePath(), "-o", snapshot}).status, 0);
    EXPECT_EQ(runMlktree({"diff", snapshot, samplePath()}).out, "no difference\n");
    EXPECT_EQ(runMlktree({"diff", samplePath(), snapshot}).status, 0);
    replace(kModel, "BRYL-55U60-C1", "LC999");
    const Outcome outcome = runMlktree({"diff", snapshot, mDir.path(), "--format", "json"});
    const json change = json::parse(outcome.out)["changes"][0];
    EXPECT_EQ(change["a"], json::parse(R"({"value":"BRYL-55U60-C1","file":null,"line":null})"));
    EXPECT_EQ(change["b"]["line"], 29);
    const std::string set = "model=3,board=skerry_b1.ini,country=CHILE,tree=";
    EXPECT_THAT(runMlktree({"diff", set + snapshot, mDir.path()}).out, HasSubstr("+ LC999"));
    EXPECT_EQ(runMlktree({"diff", set + snapshot, samplePath()}).out, "no difference\n");
    const Outcome several = runMlktree({"diff", "model=3,tree=" + snapshot, mDir.path()});
    EXPECT_EQ(several.status, 2);
    EXPECT_THAT(several.err, HasSubstr("fits several sets of the snapshot, model=3,board=skerry_b1"
                                       ".ini,country=ANDORRA and "));
    const Outcome none = runMlktree({"diff", "model=33,tree=" + snapshot, mDir.path()});
    EXPECT_EQ(none.status, 2);
}

TEST_F(DiffTest, ACustomerThatIsGoneReachesItsModels) {
    fs::copy(mDir.path("tvconfigs/customer.ini"), mDir.path("tvconfigs/customer_b.ini"));
    const TempDir out;
    std::vector<std::string> words = {"snapshot",
                                      "--tree",
                                      mDir.path(),
                                      "--board",
                                      "skerry_b1.ini",
                                      "--country",
                                      "CHILE",
                                      "-o",
                                      out.path("one.json"),
                                      "--customer",
                                      "tvconfigs/customer.ini"};
    ASSERT_EQ(runMlktree(words).status, 0);
    words[8] = out.path("two.json");
    words.insert(words.end(), {"--customer", "tvconfigs/customer_b.ini"});
    ASSERT_EQ(runMlktree(words).status, 0);
    words = {"diff", out.path("two.json"), out.path("one.json")};
    EXPECT_THAT(runMlktree(words).out,
                HasSubstr("  tvconfigs/customer_b.ini\n    - TARNQUILL\n"
                          "    in models 1 to 7 of tvconfigs/customer_b.ini"));
    words.insert(words.end(), {"--format", "json"});
    const json difference = json::parse(runMlktree(words).out);
    std::vector<std::string> kinds;
    for (const json& change : difference["changes"]) {
        kinds.push_back(change["kind"]);
        const std::string last = change["sets"].back();
        EXPECT_THAT(last, HasSubstr(",customer=tvconfigs/customer_b.ini")) << change;
    }
    EXPECT_EQ(kinds.size(), 8U) << "seven models and their customer";
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), "customer"), 1);
}

// A second customer of one model, whose file has another panel.
void addCustomer(const TempDir& dir, const std::string& panel) {
    std::string customer = dir.read("tvconfigs/customer.ini");
    const size_t system = customer.find("/tvconfigs/system/");
    customer.replace(system, customer.find_first_of("\"\n", system) - system,
                     "/tvconfigs/system/b.ini");
    dir.write("tvconfigs/customer_b.ini", customer);
    dir.write("tvconfigs/system/b.ini", "Model_3 = \"/tvconfigs/model/b.ini\"\n");
    dir.write("tvconfigs/model/b.ini", dir.read(kModel));
    replaceIn(dir, "tvconfigs/model/b.ini", "BRYL-55U60-C1", panel);
}

TEST_F(DiffTest, ASetMayBeOfAnotherCustomer) {
    addCustomer(mDir, "OF-B");
    const std::string tree = ",tree=" + mDir.path();
    for (const char* const file :
         {"tvconfigs/customer_b.ini", "/tvconfigs/customer_b.ini", "customer_b.ini"}) {
        const std::string set = std::string("model=3,customer=") + file + tree;
        const Outcome outcome =
                runMlktree({"diff", "model=3" + tree, set, "--country", "CHILE"}, mDir.path());
        EXPECT_EQ(outcome.status, 1) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("    + OF-B"));
    }
    // The same of a snapshot with both customers.
    const std::string snapshot = mDir.path("both.json");
    ASSERT_EQ(runMlktree({"snapshot", mDir.path(), "--customer", "tvconfigs/customer.ini",
                          "--customer", "tvconfigs/customer_b.ini", "-o", snapshot})
                      .status,
              0);
    const std::string both = "model=3,board=skerry_b1.ini,country=CHILE,tree=" + snapshot;
    EXPECT_THAT(runMlktree({"diff", both + ",customer=tvconfigs/customer.ini",
                            both + ",customer=/tvconfigs/customer_b.ini"})
                        .out,
                HasSubstr("    - BRYL-55U60-C1\n    + OF-B\n"));
    EXPECT_THAT(runMlktree({"diff", both, both + ",customer=tvconfigs/customer.ini"}).err,
                HasSubstr("fits several sets of the snapshot"));
}

TEST_F(DiffTest, OptionsChooseTheSetsThatAreCompared) {
    replace(kModel, "BRYL-55U60-C1", "LC999");
    replace("tvconfigs/model/TRQ65_C3_UK.ini", "OSMR-65U120-D2", "NEW");
    const std::string snapshot = mDir.path("new.json");
    ASSERT_EQ(runMlktree({"snapshot", mDir.path(), "-o", snapshot}).status, 0);
    for (const std::string& other : {mDir.path(), snapshot}) {
        const auto diffWith = [&](std::vector<std::string> options) {
            options.insert(options.begin(), {"diff", samplePath(), other});
            return runMlktree(options);
        };
        EXPECT_THAT(diffWith({}).out, HasSubstr("2 differences\n"));
        const Outcome three = diffWith({"--model", "3"});
        EXPECT_THAT(three.out, HasSubstr("+ LC999"));
        EXPECT_THAT(three.out, HasSubstr("    in all sets\n\n1 difference\n"));
        EXPECT_EQ(diffWith({"--model", "1"}).out, "no difference\n");
        EXPECT_EQ(diffWith({"--model", "1"}).status, 0);
        EXPECT_EQ(diffWith({"--customer", "tvconfigs/customer.ini"}).out, diffWith({}).out);
        EXPECT_EQ(diffWith({"--customer", "customer.ini"}).out, diffWith({}).out);
        for (const char* const board :
             {"skerry_b2.ini", "/tvconfigs/board/skerry_b2.ini", "tvconfigs/board/skerry_b2.ini"}) {
            EXPECT_THAT(diffWith({"--board", board, "--country", "CHILE"}).out,
                        HasSubstr("2 differences\n"));
        }
        EXPECT_THAT(diffWith({"--model", "33"}).err,
                    HasSubstr("--model 33: neither side has such a set"));
        EXPECT_THAT(diffWith({"--board", "b.ini"}).err,
                    HasSubstr("--board b.ini: neither side has such a set"));
        EXPECT_THAT(diffWith({"--country", "GERMANI"}).err, HasSubstr("did you mean GERMANY?"));
        EXPECT_EQ(diffWith({"--customer", "tvconfigs/customer_b.ini"}).status, 2);
    }
}

TEST_F(DiffTest, OptionsChooseWhatOnlyOneSideHas) {
    const std::string system = "tvconfigs/system/tarnquill_skerry.ini";
    replaceIn(mDir, system, "Model_3 ", "Model_33 ");
    mDir.write("tvconfigs/board/new.ini", "[A]\nb=c\n");
    EXPECT_THAT(diff().out, HasSubstr("4 differences\n")) << "and the highest index";
    EXPECT_THAT(diff({"--model", "33"}).out, HasSubstr("  model 33\n    + "));
    EXPECT_THAT(diff({"--model", "3", "--board", "none"}).out, HasSubstr("  model 3\n    - "))
            << "any tree has sets without a board";
    EXPECT_THAT(diff({"--model", "1", "--board", "skerry_b1.ini"}).out,
                ::testing::AllOf(::testing::StartsWith("Customer\n  highest index\n"),
                                 HasSubstr("\n1 difference\n")));
    EXPECT_THAT(diff({"--model", "1"}).out, HasSubstr("Boards\n  board new.ini\n"));
}

// What a message is about is named as it was typed.
TEST_F(DiffTest, MessagesHaveTheWordsOfTheOperand) {
    const std::string snapshot = mDir.path("s.json");
    ASSERT_EQ(runMlktree({"snapshot", mDir.path(), "-o", snapshot}).status, 0);
    const auto problem = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "diff");
        const Outcome outcome = runMlktree(words, mDir.path());
        EXPECT_EQ(outcome.status, 2);
        return outcome.err;
    };
    EXPECT_EQ(problem({"model=6", "model=9"}),
              "mlktree: " + mDir.path() +
                      ": model=9: no line of the system file has this index; there are 1, 2, 3, "
                      "4, 5, 6, 7\n");
    EXPECT_THAT(problem({"model=x", "model=6"}),
                HasSubstr(": model= takes the index of a model, a number, not \"x\"\n"));
    EXPECT_THAT(problem({"board=b9.ini", "board=none"}),
                HasSubstr(": board=b9.ini: there is no file "));
    EXPECT_THAT(problem({"customer=c.ini", "model=6"}),
                HasSubstr(": customer=c.ini: there is no file "));
    for (const std::string& tree : {std::string(), ",tree=" + snapshot}) {
        const std::string set = "model=6,board=skerry_b1.ini" + tree;
        EXPECT_THAT(problem({set + ",country=GERMANI", set + ",country=CHILE"}),
                    HasSubstr(": country=GERMANI: the service knows no such country; did you mean "
                              "GERMANY?\n"));
    }
    EXPECT_THAT(problem({"country=CHILE", "country=SWEDEN", "--model", "9"}),
                HasSubstr(": --model 9: no line "));
}

TEST_F(DiffTest, OptionsCompleteTwoSets) {
    const std::string tree = ",tree=" + samplePath();
    const std::vector<std::string> words = {"diff", "model=6" + tree, "model=7" + tree};
    const auto diffWith = [&](const std::string& option, const std::string& value) {
        std::vector<std::string> all = words;
        all.insert(all.end(), {option, value});
        return runMlktree(all);
    };
    EXPECT_EQ(diffWith("--board", "skerry_b2.ini").out,
              runMlktree({"diff", words[1] + ",board=skerry_b2.ini",
                          words[2] + ",board=skerry_b2.ini"})
                      .out);
    const Outcome twice = diffWith("--model", "6");
    EXPECT_EQ(twice.status, 2);
    EXPECT_THAT(twice.err, HasSubstr("\" and --model \"6\" both name a model; leave one of them"));
    EXPECT_THAT(runMlktree({"diff", words[1], words[2], "--customer", "a", "--customer", "b"}).err,
                HasSubstr("a set has one customer file; give --customer once"));
}

TEST_F(DiffTest, PropertiesOfTheCommandLineCountOnBothSides) {
    mDir.write("data/property/persist.vendor.mlk.enstr", "false");
    EXPECT_EQ(diff().status, 1);
    EXPECT_THAT(diff().out, HasSubstr("Framework switches\n  strEnabled\n    - true   "
                                      "data/property/persist.vendor.mlk.enstr:1\n"));
    EXPECT_EQ(diff({"--prop", "persist.vendor.mlk.enstr=true"}).status, 0);
}

TEST_F(DiffTest, WritesToNeitherTree) {
    const auto list = [](const std::string& root) {
        std::map<std::string, std::pair<fs::file_time_type, uintmax_t>> all;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            all[entry.path().string()] = {entry.last_write_time(),
                                          entry.is_regular_file() ? entry.file_size() : 0};
        }
        return all;
    };
    const auto before = list(mDir.path());
    (void)diff();
    (void)runMlktree({"diff", "model=1,tree=" + mDir.path(), "model=2,tree=" + mDir.path()});
    (void)runMlktree({"snapshot", mDir.path()});
    EXPECT_EQ(list(mDir.path()), before);
}

/** A command line that cannot be used. */
struct Wrong {
    std::vector<std::string> words;
    std::string message;
};

TEST_F(DiffTest, WrongOperandsSayWhatWouldBeRight) {
    const std::string sample = samplePath();
    const std::string file = mDir.path("tvconfigs/customer.ini");
    const Wrong kWrong[] = {
            {{}, "diff takes two operands, what was and what is"},
            {{sample}, "diff takes two operands, what was and what is"},
            {{sample, "nowhere"}, "there is no file or folder \"nowhere\"; expected is a folder "},
            {{sample, mDir.path("tvconfigs")}, "there is no folder tvconfigs in it"},
            {{sample, file}, file + " is no snapshot of mlktree: it is no JSON"},
            {{"modle=6", "model=6"}, "\"modle=6\" is no part of a set; the parts are model=N, "},
            {{"modle=6", "model=6"}, "did you mean model?"},
            {{"model=6,GERMANY", sample}, "\"GERMANY\" is no part of a set"},
            {{"model=", sample}, "model= has no value"},
            {{"model=6,model=7", sample}, "model= is there twice"},
            {{"model=x,tree=" + sample, sample}, "model= takes the index of a model"},
            {{"model=77,tree=" + sample, sample}, "no line of the system file has this index"},
            {{"board=none.ini,tree=" + sample, sample}, "board=none.ini: there is no file"},
            {{"country=OZ,tree=" + sample, sample}, "country=OZ: the service knows no such"},
            {{"model=6,tree=nowhere", sample}, "there is no file or folder \"nowhere\""},
            {{"rev:HEAD", sample, "--tree", sample + "/.."}, ""},
            {{"model=6", "model=7", "--tree", mDir.path("tvconfigs")},
             "tvconfigs: there is no folder tvconfigs in it; --tree names the tree"},
            {{sample, sample, "-o", ""}, "mlktree: \"\" cannot be written: No such file"},
    };
    for (const Wrong& wrong : kWrong) {
        std::vector<std::string> words = wrong.words;
        words.insert(words.begin(), "diff");
        const Outcome outcome = runMlktree(words, sample);
        EXPECT_EQ(outcome.status, 2) << joined(wrong.words);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(wrong.message)) << joined(wrong.words);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

}  // namespace

}  // namespace mlk::tree

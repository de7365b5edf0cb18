#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <set>

#include "host/testing/HostSet.h"
#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "regional/CountryTable.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/tests/AskedService.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

using nlohmann::json;
using ::testing::HasSubstr;

std::string snapshotOf(const LineAnswers& line) {
    std::string text;
    writeSnapshot(line, [&](std::string_view piece) { text += piece; });
    return text;
}

// The value that a reference or a merger stands for, as the form's description says.
json resolved(const json& all, const json& value) {
    if (value.is_object() && value.contains("$ref")) {
        const std::string target = value["$ref"];
        return resolved(all, all.at(json::json_pointer(target.substr(1))));
    }
    json made = value;
    if (value.is_object() && value.contains("$merge")) {
        json merged = json::object();
        for (const json& part : value["$merge"]) {
            merged.merge_patch(resolved(all, part));
        }
        made.erase("$merge");
        merged.update(made);
        made = merged;
    }
    for (json& part : made) {
        if (part.is_structured()) {
            part = resolved(all, part);
        }
    }
    return made;
}

TEST(SnapshotTest, TellsTheSameOfEverySetWhenItIsReadAgain) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    const std::string text = snapshotOf(*sample.answers);
    const std::unique_ptr<const LineAnswers> read = readSnapshot(text, "sample.json");
    ASSERT_EQ(read->sets.size(), sample.answers->sets.size());
    for (size_t i = 0; i < read->sets.size(); ++i) {
        ASSERT_EQ(nameOf(*read, read->sets[i]), nameOf(*sample.answers, sample.answers->sets[i]));
        if (i % 11 == 0) {
            ASSERT_EQ(toldBy(*read, read->sets[i]),
                      toldBy(*sample.answers, sample.answers->sets[i]));
        }
    }
    EXPECT_THAT(diffLines(*read, *sample.answers).changes, ::testing::IsEmpty());
    EXPECT_THAT(diffLines(*sample.answers, *read).changes, ::testing::IsEmpty());
    EXPECT_EQ(snapshotOf(*readSnapshot(snapshotOf(*read), "again")), snapshotOf(*read));
}

// Any program that knows references and mergers gets the plain form.
TEST(SnapshotTest, HasThePlainFormOnceReferencesAreResolved) {
    const testing::QuietLog quiet;
    const Answered sample(samplePath());
    const json all = json::parse(snapshotOf(*sample.answers));
    const json& sets = all["sets"];
    EXPECT_EQ(sets.size(), sample.line.setCount());
    for (size_t i = 0; i < sets.size(); i += 101) {
        const json set = resolved(all, sets[i]);
        Selection selection;
        selection.model = set["model"];
        selection.board = set["board"];
        selection.country = set["country"];
        const Answered alone(samplePath(), selection);
        const json one = json::parse(snapshotOf(*alone.answers));
        EXPECT_EQ(one["sets"].size(), 1U);
        EXPECT_TRUE(one["shared"].empty());
        EXPECT_TRUE(one["sets"][0] == set) << set.dump().substr(0, 100);
        EXPECT_EQ(one.dump().find("$"), std::string::npos);
    }
}

TEST(SnapshotTest, IsTheSameFromRunToRun) {
    const testing::QuietLog quiet;
    const Outcome first = runMlktree({"snapshot", samplePath()});
    ASSERT_EQ(first.status, 0) << first.err;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(runMlktree({"snapshot", samplePath()}).out, first.out);
    }
    const testing::TempDir dir;
    const Outcome toFile = runMlktree({"snapshot", samplePath(), "-o", dir.path("a.json")});
    EXPECT_EQ(toFile.status, 0);
    EXPECT_EQ(toFile.out, "");
    EXPECT_EQ(dir.read("a.json"), first.out);
}

// Whether all that the example has is so in the whole; arrays and objects may have more there.
bool isPartOf(const json& example, const json& whole) {
    if (!example.is_structured()) {
        return example == whole;
    }
    if (example.type() != whole.type()) {
        return false;
    }
    if (example.is_object()) {
        return std::all_of(example.items().begin(), example.items().end(), [&](const auto& item) {
            return whole.contains(item.key()) && isPartOf(item.value(), whole[item.key()]);
        });
    }
    return std::all_of(example.begin(), example.end(), [&](const json& one) {
        return std::any_of(whole.begin(), whole.end(),
                           [&](const json& other) { return isPartOf(one, other); });
    });
}

TEST(SnapshotTest, HasWhatTheExampleOfTheGuideHas) {
    const testing::QuietLog quiet;
    std::ifstream guide(testing::sourceDir() + "/docs/mlktree.md");
    const std::string text(std::istreambuf_iterator<char>(guide), {});
    const size_t begin = text.find("{\"version\"", text.find("\n## A snapshot\n"));
    ASSERT_NE(begin, std::string::npos);
    const json example = json::parse(text.substr(begin, text.find("```", begin) - begin));
    const json& set = example["sets"][0];
    const Outcome outcome = runMlktree({"snapshot", samplePath(), "--model",
                                        std::to_string(set["model"].get<int>()), "--board",
                                        set["board"], "--country", set["country"]});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const json all = json::parse(outcome.out);
    for (const auto& [name, value] : set.items()) {
        EXPECT_TRUE(isPartOf(value, all["sets"][0][name])) << name << ": " << value;
    }
    EXPECT_TRUE(isPartOf(example, all)) << example;
}

TEST(SnapshotTest, ABoardMayHaveTheFileOfItsModel) {
    const testing::QuietLog quiet;
    const testing::TempDir dir;
    copySoundTree(dir);
    const std::string system = "tvconfigs/system/line.ini";
    dir.write(system,
              "Model_1 = \"/tvconfigs/board/b1.ini\"\n"
              "Model_2 = \"/tvconfigs/board/b1.ini\"\n");
    const Answered answered(dir.path());
    const std::string text = snapshotOf(*answered.answers);
    ASSERT_TRUE(json::accept(text)) << text;
    const std::unique_ptr<const LineAnswers> read = readSnapshot(text, "twice.json");
    EXPECT_THAT(diffLines(*read, *answered.answers).changes, ::testing::IsEmpty());
}

TEST(SnapshotTest, SaysThatThereAreNoSets) {
    const testing::QuietLog quiet;
    const testing::TempDir dir;
    copySoundTree(dir);
    EXPECT_EQ(runMlktree({"snapshot", dir.path()}).err, "");
    // A customer without a system file has no models.
    dir.write("tvconfigs/customer.ini", "CUSTOMER_ID = ACME\n");
    const Outcome outcome = runMlktree({"snapshot", dir.path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "mlktree: there are no sets; mlktree check tells why\n");
    EXPECT_TRUE(json::parse(outcome.out)["sets"].empty());
    const Outcome folder = runMlktree({"snapshot", dir.path(), "--customer", "tvconfigs/system"});
    EXPECT_EQ(folder.status, 2);
    EXPECT_THAT(folder.err, HasSubstr("--customer tvconfigs/system: there is no file "));
}

TEST(SnapshotTest, WritesBytesThatAreNoText) {
    const testing::QuietLog quiet;
    const testing::TempDir dir;
    copySoundTree(dir);
    const std::string model = "tvconfigs/model/first.ini";
    dir.write(model, dir.read(model) + "[\xfe]\n\xff = a\xc3\xa4\x80\n");
    const Answered answered(dir.path());
    const std::string text = snapshotOf(*answered.answers);
    EXPECT_THAT(text, HasSubstr("\"[\\udcfe]\":{\"\\udcff\":\"a\xc3\xa4\\udc80\"}"));
    const std::unique_ptr<const LineAnswers> read = readSnapshot(text, "bytes.json");
    EXPECT_NE(read->find("[\xfe]", "\xff"), kNone);
    EXPECT_THAT(diffLines(*read, *answered.answers).changes, ::testing::IsEmpty());
}

// A snapshot of the sample, asked set by set.
class SnapshotOfServiceTest : public ::testing::Test {
  protected:
    SnapshotOfServiceTest() {
        mSet.copyFrom(samplePath());
        const Outcome outcome = runMlktree({"snapshot", mSet.dir().path()});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        mLine = readSnapshot(outcome.out, "sample.json");
    }

    void run(uint32_t model, uint32_t board);

    testing::QuietLog mQuiet;
    testing::HostSet mSet;
    std::unique_ptr<const LineAnswers> mLine;
    std::set<uint32_t> mFeatures;  // that were compared
    size_t mSets = 0;
};

// One start of the service, in a country whose TV features were not compared yet; then all
// countries. Items and lists are compared in each of them, and what the sets share once.
void SnapshotOfServiceTest::run(uint32_t model, uint32_t board) {
    std::vector<const AnswerSet*> sets;
    const AnswerSet* first = nullptr;
    std::set<std::string> sections;  // that a country changes
    for (const AnswerSet& set : mLine->sets) {
        if (set.model != model || set.board != board) {
            continue;
        }
        sets.push_back(&set);
        const AnswerPieces& pieces = mLine->pieces[set.pieces];
        if (first == nullptr || (mFeatures.count(mLine->pieces[first->pieces].features) > 0 &&
                                 mFeatures.count(pieces.features) == 0)) {
            first = &set;
        }
        for (const AnswerItem& item : mLine->itemPiece(pieces.items[kItemLayers - 1])) {
            sections.insert(std::string(mLine->names[item.name].section));
        }
    }
    const auto countryOf = [this](const AnswerSet& set) {
        return *product::countryNames().find(mLine->countries[set.country]);
    };
    const int32_t index = mLine->models[model].index;
    mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=" + std::to_string(index) + "\n");
    mSet.dir().write("impdata/board_id.bin",
                     "BOARD_ID=" + std::string(mLine->boards[board].file) + "\n");
    mSet.dir().write("tvdata/tvsysmap/country_id.bin",
                     "COUNTRY_ID=" + std::to_string(countryOf(*first)) + "\n");
    AskedService service(mSet);
    service.compare(toldBy(*mLine, *first), countryOf(*first), nameOf(*mLine, *first));
    mFeatures.insert(mLine->pieces[first->pieces].features);
    std::set<uint32_t> plans;
    for (const AnswerSet* const set : sets) {
        const Told told = toldBy(*mLine, *set);
        const std::string where = nameOf(*mLine, *set);
        service.setCountry(index, countryOf(*set));
        service.compareSections(told, {sections.begin(), sections.end()}, where);
        service.compare(told, countryOf(*set), where, {"country", "language"});
        if (plans.insert(set->plans).second && board == 0) {
            service.compare(told, countryOf(*set), where, {"plan"});
        }
        ++mSets;
    }
    EXPECT_GT(service.run(), sets.size() * 4);
}

TEST_F(SnapshotOfServiceTest, AgreesWithTheRunningServiceForEverySet) {
    // What further models add is compared once, without sanitizers.
    for (uint32_t model = 0; model < mLine->models.size(); model += testing::kSanitized ? 3 : 1) {
        for (uint32_t board = 0; board < mLine->boards.size(); ++board) {
            run(model, board);
        }
    }
    if (testing::kSanitized) {
        EXPECT_GT(mSets, 300U);
        return;
    }
    EXPECT_EQ(mSets, mLine->sets.size());
    EXPECT_GT(mSets, 1000U);
    EXPECT_EQ(mFeatures.size(), mLine->features.size() - 1) << "the framework switches are one";
}

}  // namespace

}  // namespace mlk::tree

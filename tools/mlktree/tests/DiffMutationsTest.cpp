// Changes single lines of the sample at random. What diff tells must be what the product's own
// objects answer differently, no more and no less.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>

#include "host/testing/HostSet.h"
#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/tests/AskedService.h"
#include "tools/mlktree/tests/ToldAnswers.h"
#include "tools/mlktree/tests/TreeMutations.h"

namespace mlk::tree {

namespace {

constexpr size_t kMutations = testing::kSanitized ? 27 : 216;
// Several for each start of the service, which takes its time.
constexpr size_t kChangesAtOnce = 9;

constexpr uint32_t kSeed = 20261122;

// The seed is that of the environment, so that a failure can be repeated.
uint32_t seed() {
    const char* const text = std::getenv("MLK_SEED");
    return text != nullptr ? static_cast<uint32_t>(std::atoll(text)) : kSeed;
}

// What Told calls the difference.
std::string askedBy(const Change& change) {
    const std::string& name = change.name;
    const auto startsWith = [&](const std::string& start) {
        return name.compare(0, start.size(), start) == 0;
    };
    switch (change.kind) {
        case ChangeKind::DELAY: {
            const size_t with = name.rfind(" with ");
            return "delay " + (with == std::string::npos
                                       ? name + " "
                                       : name.substr(0, with) + " " + name.substr(with + 6));
        }
        case ChangeKind::COUNTRY:
            return "country " + name.substr(0, name.find(' '));
        case ChangeKind::LANGUAGE:
            return "language languages";
        case ChangeKind::PLAN: {
            // "DTV_CABLE HRC 21 (2)", "DTV_ANTENNA 21", or the kind alone.
            const size_t isCable = name.find("_CABLE ");
            const size_t kind = isCable == std::string::npos ? 0 : isCable + 7;
            return "plan " + name.substr(0, name.find(' ', kind));
        }
        case ChangeKind::CUSTOMER:
            return startsWith("project files ") ? "customer project files" : "customer " + name;
        case ChangeKind::MODEL:
        case ChangeKind::BOARD:
            return startsWith("file of ") ? std::string(nameOf(change.kind)) + " file" : name;
        default:
            return std::string(nameOf(change.kind)) + " " + name;
    }
}

bool isIn(const std::vector<std::string>& names, const std::string& name) {
    return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
}

// What diff says that a set answers differently.
std::set<std::string> toldByDiff(const Difference& difference, const LineAnswers& line,
                                 const AnswerSet& set) {
    std::set<std::string> asked;
    for (const Change& change : difference.changes) {
        for (const SetGroup& group : change.sets) {
            if (isIn(group.models, std::to_string(line.models[set.model].index)) &&
                isIn(group.boards, std::string(line.boards[set.board].name)) &&
                isIn(group.countries, std::string(line.countries[set.country]))) {
                asked.insert(askedBy(change));
            }
        }
    }
    return asked;
}

const AnswerSet* findLike(const LineAnswers& line, const LineAnswers& other, const AnswerSet& set) {
    for (const AnswerSet& one : line.sets) {
        if (nameOf(line, one) == nameOf(other, set)) {
            return &one;
        }
    }
    return nullptr;
}

// Receivers that a tree lacks answer as any other does, so a comparison needs all names.
void addReceivers(Told& told, const Told& like) {
    for (const auto& [name, value] : like) {
        const size_t receiver = name.find(" AVR_");
        if (name.compare(0, 6, "delay ") == 0 && receiver != std::string::npos) {
            const std::string file = name.substr(receiver + 1);
            const bool isThere = std::any_of(told.begin(), told.end(), [&](const auto& one) {
                return one.first.size() > file.size() &&
                       one.first.compare(one.first.size() - file.size(), file.size(), file) == 0;
            });
            if (!isThere) {
                Told added;
                for (const auto& [other, answer] : told) {
                    const size_t end = other.size() - std::min<size_t>(other.size(), 4);
                    if (other.compare(0, 6, "delay ") == 0 && other.compare(end, 4, " ARC") == 0) {
                        added[other.substr(0, end + 1) + file] = answer;
                    }
                }
                told.merge(added);
            }
        }
    }
}

class DiffMutationsTest : public ::testing::Test {
  protected:
    DiffMutationsTest() { mSet.copyFrom(samplePath()); }

    std::string root() const { return mSet.dir().path(); }

    /** Compares for one set of each of some models. */
    void compare(const Answered& before, const Answered& after, const Difference& difference,
                 std::mt19937& random, bool hasReceivers) {
        for (const AnswerModel& model : before.answers->models) {
            if (random() % 2 == 0) {
                continue;
            }
            std::vector<const AnswerSet*> sets;
            for (const AnswerSet& set : before.answers->sets) {
                if (&before.answers->models[set.model] == &model) {
                    sets.push_back(&set);
                }
            }
            const AnswerSet& set = *sets[random() % sets.size()];
            const AnswerSet* const now = findLike(*after.answers, *before.answers, set);
            if (now == nullptr) {
                EXPECT_FALSE(difference.changes.empty());
                continue;
            }
            Told was = toldByProduct(before.line, choiceOf(before.line, *before.answers, set),
                                     hasReceivers);
            Told is = toldByProduct(after.line, choiceOf(after.line, *after.answers, *now),
                                    hasReceivers);
            addReceivers(was, is);
            addReceivers(is, was);
            std::set<std::string> told = toldByDiff(difference, *before.answers, set);
            if (!hasReceivers) {
                for (auto one = told.begin(); one != told.end();) {
                    one = one->find(" AVR_") != std::string::npos ? told.erase(one) : ++one;
                }
            }
            const std::set<std::string> expected = differing(was, is);
            std::set<std::string> wrong;
            std::set_symmetric_difference(told.begin(), told.end(), expected.begin(),
                                          expected.end(), std::inserter(wrong, wrong.end()));
            EXPECT_THAT(wrong, ::testing::IsEmpty()) << nameOf(*before.answers, set);
            mCompared += expected.size();
        }
    }

    testing::QuietLog mQuiet;
    testing::HostSet mSet;
    size_t mCompared = 0;
};

TEST_F(DiffMutationsTest, NameWhatTheProductAnswersDifferently) {
    std::cout << "MLK_SEED=" << seed() << std::endl;
    std::mt19937 random(seed());
    TreeMutations mutations(root(), seed());
    const testing::TempDir original;
    std::filesystem::copy(samplePath(), original.path(), std::filesystem::copy_options::recursive);
    const Answered before(original.path());
    std::set<std::string> effective;
    for (size_t i = 0; i < kMutations && !HasFailure(); ++i) {
        const std::string what = mutations.change();
        SCOPED_TRACE("mutation " + std::to_string(i) + ": " + what);
        const Answered after(root());
        const Difference difference = diffLines(*before.answers, *after.answers);
        const bool isSound = mutations.kind() == "tvconfigs/audio";
        compare(before, after, difference, random, isSound);
        if (!difference.changes.empty()) {
            effective.insert(mutations.kind());
        }
        mutations.undo();
    }
    if (seed() != kSeed || testing::kSanitized) {
        return;
    }
    // Each of these files has lines that count, and was changed several times.
    for (const char* const kind :
         {"tvconfigs/model", "tvconfigs/board", "tvconfigs/system", "tvconfigs/audio",
          "tvconfigs/country", "tvconfigs/language", "tvconfigs/freqtables/dtv",
          "tvconfigs/tvsysmap", "tvconfigs/tv", "customer.ini", "tvconfigs/keys"}) {
        EXPECT_EQ(effective.count(kind), 1U) << kind;
    }
    EXPECT_GT(mCompared, 100U);
}

// The objects that the other test asks answer as the real service does on the same changed trees.
TEST_F(DiffMutationsTest, TheServiceAnswersSo) {
    TreeMutations mutations(root(), seed() + 1);
    size_t compared = 0;
    for (size_t i = 0; i < kMutations / kChangesAtOnce; ++i) {
        if (i % 6 == 0) {
            mSet.copyFrom(samplePath());  // before too little of the tree is left
        }
        std::string what;
        for (size_t change = 0; change < kChangesAtOnce; ++change) {
            what += mutations.change() + "; ";
        }
        SCOPED_TRACE(what);
        std::filesystem::remove(root() + "/tvdata/tvsysmap/country_id.bin");
        Selection selection;
        selection.isOneSet = true;
        const Answered now(root(), selection);
        ASSERT_EQ(now.answers->sets.size(), 1U);
        const AnswerSet& set = now.answers->sets.front();
        const SetChoice choice = onlySetOf(now.line);
        Told told = toldBy(*now.answers, set);
        told.merge(filesTold(*now.answers, now.tree, told));
        EXPECT_EQ(told, toldByProduct(now.line, choice));
        AskedService service(mSet);
        service.compare(told, choice.country, nameOf(*now.answers, set));
        compared += service.run();
    }
    EXPECT_GT(compared, kMutations * 9);
}

}  // namespace

}  // namespace mlk::tree

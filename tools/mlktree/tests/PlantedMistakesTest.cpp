// Plants mistakes in copies of the sample, one at a time, and looks whether each is named.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "host/testing/Process.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Rule.h"
#include "tools/mlktree/tests/PlantedMistakes.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMostFindings = 3;

// A copy of the sample with one mistake.
class PlantedTree {
  public:
    explicit PlantedTree(const PlantedMistake& mistake) {
        fs::copy(mlk::testing::sourceDir() + "/samples/partitions", mDir.path(),
                 fs::copy_options::recursive);
        plant(mistake);
    }

    const std::string& path() const { return mDir.path(); }

    /** The line of a finding; 0 for the file as a whole. */
    size_t lineOf(const PlantedMistake& mistake) const {
        if (mistake.lineWith.empty()) {
            return 0;
        }
        std::istringstream text(mDir.read(placeOf(mistake)));
        size_t number = 0;
        for (std::string line; std::getline(text, line);) {
            ++number;
            if (line.find(mistake.lineWith) != std::string::npos) {
                return number;
            }
        }
        ADD_FAILURE() << "no line of " << placeOf(mistake) << " has " << mistake.lineWith;
        return 0;
    }

    static std::string placeOf(const PlantedMistake& mistake) {
        return mistake.place != nullptr ? mistake.place : mistake.file;
    }

  private:
    void plant(const PlantedMistake& mistake) {
        const std::string path = mDir.path(mistake.file);
        switch (mistake.planting) {
            case Planting::REMOVE:
                EXPECT_TRUE(fs::remove(path)) << path;
                return;
            case Planting::FOLDER:
                EXPECT_TRUE(fs::remove(path)) << path;
                fs::create_directory(path);
                return;
            case Planting::LINK:
                EXPECT_TRUE(fs::remove(path)) << path;
                fs::create_symlink(mistake.to, path);
                return;
            case Planting::UTF16: {
                std::string wide = "\xFF\xFE";
                for (const char c : mDir.read(mistake.file)) {
                    wide += c;
                    wide += '\0';
                }
                mDir.write(mistake.file, wide);
                return;
            }
            case Planting::MOVE:
                fs::rename(path, mDir.path(mistake.to));
                return;
            case Planting::WHOLE:
                mDir.write(mistake.file, mistake.to);
                return;
            case Planting::APPEND:
                mDir.write(mistake.file, mDir.read(mistake.file) + std::string(mistake.to));
                return;
            case Planting::CUT_END:
                fs::resize_file(path, fs::file_size(path) - 1);
                return;
            case Planting::REPLACE:
            case Planting::REPLACE_EACH:
                replace(mistake);
        }
    }

    void replace(const PlantedMistake& mistake) {
        std::string text = mDir.read(mistake.file);
        size_t at = text.find(mistake.from);
        ASSERT_NE(at, std::string::npos) << mistake.file << " lacks " << mistake.from;
        const bool isEach = mistake.planting == Planting::REPLACE_EACH;
        do {
            text.replace(at, mistake.from.size(), mistake.to);
            at = text.find(mistake.from, at + mistake.to.size());
        } while (isEach && at != std::string::npos);
        mDir.write(mistake.file, text);
    }

    const mlk::testing::TempDir mDir;
};

std::vector<Finding> findingsIn(const std::string& root) {
    const Tree tree(root, {});
    const Settings settings = readSettings(root + "/mlktree.toml");
    const TreeProperties properties(root + "/data/property", {});
    const ProductLine line(tree, settings, properties, {});
    std::vector<Finding> findings = examine(line, true).findings;
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) {
                                      return finding.severity < Severity::WARNING;
                                  }),
                   findings.end());
    return findings;
}

std::string listOf(const std::vector<Finding>& findings) {
    std::ostringstream list;
    for (const Finding& finding : findings) {
        list << finding.place.file << ':' << finding.place.line << ": " << finding.message << " ["
             << finding.rule << "]\n";
    }
    return list.str();
}

class PlantedMistakes : public ::testing::TestWithParam<PlantedMistake> {};

TEST_P(PlantedMistakes, AreNamedAtTheirPlace) {
    const PlantedMistake& mistake = GetParam();
    const PlantedTree tree(mistake);
    const std::string file = PlantedTree::placeOf(mistake);
    const size_t line = tree.lineOf(mistake);
    const std::vector<Finding> findings = findingsIn(tree.path());
    const bool isFound = std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.rule == mistake.rule && finding.place.file == file &&
               (finding.place.line == line || mistake.lineWith.empty());
    });
    EXPECT_TRUE(isFound) << file << ':' << line << ": " << mistake.rule << " expected, found:\n"
                         << listOf(findings);
    EXPECT_LE(findings.size(), kMostFindings) << listOf(findings);
}

constexpr size_t kStep = mlk::testing::kSanitized ? 5 : 1;

INSTANTIATE_TEST_SUITE_P(Lines, PlantedMistakes,
                         ::testing::ValuesIn(mlk::testing::everyNth(kStep, plantedMistakes())),
                         [](const auto& param) { return std::string(param.param.name); });
INSTANTIATE_TEST_SUITE_P(Oddities, PlantedMistakes,
                         ::testing::ValuesIn(mlk::testing::everyNth(kStep, plantedOddities())),
                         [](const auto& param) { return std::string(param.param.name); });

class SoundVariations : public ::testing::TestWithParam<PlantedMistake> {};

TEST_P(SoundVariations, GiveNoFinding) {
    const PlantedTree tree(GetParam());
    EXPECT_EQ(listOf(findingsIn(tree.path())), "");
}

INSTANTIATE_TEST_SUITE_P(Sample, SoundVariations, ::testing::ValuesIn(soundVariations()),
                         [](const auto& param) { return std::string(param.param.name); });

TEST(PlantedMistakesTest, SampleItselfHasNone) {
    EXPECT_EQ(listOf(findingsIn(mlk::testing::sourceDir() + "/samples/partitions")), "");
}

TEST(PlantedMistakesTest, RowsNameRules) {
    std::set<std::string> names;
    for (const auto& mistakes : {plantedMistakes(), plantedOddities()}) {
        for (const PlantedMistake& mistake : mistakes) {
            EXPECT_NE(findRule(mistake.rule), nullptr) << mistake.name;
            EXPECT_TRUE(names.insert(mistake.name).second) << mistake.name;
        }
    }
}

// The program as a product's build calls it.
TEST(PlantedMistakesTest, ProgramEndsWithOne) {
    for (const char* const name : {"TypoInKey", "CarriageReturnsInSystemFile", "IndexOfNoModel",
                                   "PlanMissing", "SystemFileMissing"}) {
        const auto mistake = std::find_if(
                plantedMistakes().begin(), plantedMistakes().end(),
                [&](const PlantedMistake& each) { return each.name == std::string(name); });
        ASSERT_NE(mistake, plantedMistakes().end()) << name;
        const PlantedTree tree(*mistake);
        mlk::testing::Process program({mlk::testing::binDir() + "/mlktree", "check", tree.path()});
        EXPECT_EQ(program.wait(), 1) << name;
        const std::string place =
                PlantedTree::placeOf(*mistake) + ":" + std::to_string(tree.lineOf(*mistake)) + ":";
        EXPECT_NE(program.out().find(place), std::string::npos) << place << '\n' << program.out();
        EXPECT_NE(program.out().find(std::string("[") + mistake->rule + "]"), std::string::npos)
                << program.out();
    }
}

}  // namespace

}  // namespace mlk::tree

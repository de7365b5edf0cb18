// Every rule has a folder of its name in tests/rules: "bad" is laid over the sound tree "base" and
// breaks the rule, "good", if there is one, is laid over it likewise and breaks none. A file
// "removed" in either lists files of the base that are missing, one a line; "expected" beside them
// has the findings of the bad tree.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

fs::path folderOfRules() {
    const char* const source = std::getenv("MLK_SOURCE_DIR");
    return fs::path(source != nullptr ? source : ".") / "tools/mlktree/tests/rules";
}

std::string textOf(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

void layOver(const fs::path& overlay, const fs::path& tree) {
    fs::copy(overlay, tree,
             fs::copy_options::recursive | fs::copy_options::overwrite_existing |
                     fs::copy_options::copy_symlinks);
    std::istringstream removed(textOf(overlay / "removed"));
    for (std::string path; std::getline(removed, path);) {
        EXPECT_GT(fs::remove_all(tree / path), 0U) << path << " is not in the base";
    }
    fs::remove(tree / "removed");
}

// The findings, one a line, with related places indented.
// Notes of other rules than this one are left out: a sound tree may have them.
std::string findingsOf(const std::string& root, const std::string& rule) {
    const Tree tree(root, {});
    const Settings settings = readSettings(root + "/mlktree.toml");
    const TreeProperties properties(root + "/data/property", {});
    const ProductLine line(tree, settings, properties, {});
    std::ostringstream out;
    for (const Finding& finding : examine(line, true).findings) {
        if (finding.severity == Severity::NOTE && finding.rule != rule) {
            continue;
        }
        const Place& place = finding.place;
        out << place.file << ':' << place.line << ':' << place.column << ": "
            << nameOf(finding.severity) << ": " << finding.message << " [" << finding.rule << "]";
        for (const std::string& set : finding.sets) {
            out << " {" << set << "}";
        }
        out << '\n';
        for (const Related& related : finding.related) {
            out << "    " << related.place.file << ':' << related.place.line << ": "
                << related.message << '\n';
        }
    }
    return out.str();
}

std::vector<std::string> namesOfRules() {
    std::vector<std::string> names;
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            names.emplace_back(family.rules[i].name);
        }
    }
    return names;
}

class RuleTrees : public ::testing::TestWithParam<std::string> {
  protected:
    std::string findingsWith(const std::string& overlay) const {
        const mlk::testing::TempDir dir;
        fs::copy(folderOfRules() / "base", dir.path(), fs::copy_options::recursive);
        if (!overlay.empty()) {
            layOver(folderOfRules() / GetParam() / overlay, dir.path());
        }
        return findingsOf(dir.path(), GetParam());
    }
};

// To accept what is found now: MLK_ACCEPT=1 writes the files "expected". Read them before a commit.
TEST_P(RuleTrees, BadTreeHasItsFindings) {
    const fs::path expected = folderOfRules() / GetParam() / "expected";
    const std::string findings = findingsWith("bad");
    EXPECT_NE(findings.find("[" + GetParam() + "]"), std::string::npos) << findings;
    if (std::getenv("MLK_ACCEPT") != nullptr) {
        std::ofstream(expected) << findings;
    }
    EXPECT_EQ(findings, textOf(expected));
}

TEST_P(RuleTrees, GoodTreeHasNoFinding) {
    if (fs::exists(folderOfRules() / GetParam() / "good")) {
        EXPECT_EQ(findingsWith("good"), "");
    }
}

// The address sanitizer sees each rule; all of them take the same way through threads.
constexpr size_t kStep = mlk::testing::kThreadSanitizer ? 5 : 1;

INSTANTIATE_TEST_SUITE_P(EachRule, RuleTrees,
                         ::testing::ValuesIn(mlk::testing::everyNth(kStep, namesOfRules())),
                         [](const auto& param) {
                             std::string name = param.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(RuleTreesTest, BaseIsSound) {
    EXPECT_EQ(findingsOf((folderOfRules() / "base").string(), ""), "");
}

TEST(RuleTreesTest, EveryFolderBelongsToARule) {
    for (const auto& entry : fs::directory_iterator(folderOfRules())) {
        const std::string name = entry.path().filename();
        EXPECT_TRUE(name == "base" || findRule(name) != nullptr) << name;
    }
}

}  // namespace

}  // namespace mlk::tree

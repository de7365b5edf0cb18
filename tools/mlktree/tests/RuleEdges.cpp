#include "tools/mlktree/tests/RuleEdges.h"

#include <gtest/gtest.h>

#include "tools/mlktree/Examination.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

using mlk::testing::TempDir;

namespace {

void replace(const TempDir& dir, const std::string& file, const std::string& old,
             const std::string& text) {
    std::string content = dir.read(file);
    const size_t at = content.find(old);
    ASSERT_NE(at, std::string::npos) << file << " has no " << old;
    dir.write(file, content.replace(at, old.size(), text));
}

void append(const TempDir& dir, const std::string& file, const std::string& text) {
    dir.write(file, dir.read(file) + text);
}

}  // namespace

Edit replaced(const std::string& file, const std::string& old, const std::string& text) {
    return [=](const TempDir& dir) { replace(dir, file, old, text); };
}

Edit appended(const std::string& file, const std::string& text) {
    return [=](const TempDir& dir) { append(dir, file, text); };
}

Edit written(const std::string& file, const std::string& text) {
    return [=](const TempDir& dir) { dir.write(file, text); };
}

Edit all(const std::vector<Edit>& edits) {
    return [=](const TempDir& dir) {
        for (const Edit& edit : edits) {
            edit(dir);
        }
    };
}

void PrintTo(const Edge& edge, std::ostream* out) {
    *out << edge.name;
}

std::string placesOf(const TempDir& dir, const std::string& rule, const std::string& given) {
    const Tree tree(dir.path(), {});
    const Settings settings = readSettings(dir.path("mlktree.toml"));
    const TreeProperties properties(
            dir.path("data/property"),
            given.empty() ? std::vector<std::string>() : std::vector<std::string>{given});
    const ProductLine line(tree, settings, properties, {});
    std::string places;
    for (const Finding& found : examine(line, true).findings) {
        if (found.rule != rule) {
            continue;
        }
        places += (places.empty() ? "" : " ") + found.place.file + ":" +
                  std::to_string(found.place.line);
        for (const Related& related : found.related) {
            places += "(" + std::to_string(related.place.line) + ")";
        }
    }
    return places;
}

void expectPlaces(const Edge& edge) {
    const TempDir dir;
    copySoundTree(dir);
    ASSERT_NO_FATAL_FAILURE(edge.edit(dir));
    EXPECT_EQ(placesOf(dir, edge.rule), edge.places);
}

}  // namespace mlk::tree

#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "host/testing/TempDir.h"

namespace mlk::tree {

/** A change of a tree. */
using Edit = std::function<void(const mlk::testing::TempDir&)>;

/** The first `old` of the file becomes `text`; the test fails if it lacks it. */
Edit replaced(const std::string& file, const std::string& old, const std::string& text);

/** The file goes on with `text`. */
Edit appended(const std::string& file, const std::string& text);

/** The file has this text alone. */
Edit written(const std::string& file, const std::string& text);

/** All of these, in their order. */
Edit all(const std::vector<Edit>& edits);

/** A change of the sound tree "base", and where the rule has findings then. */
struct Edge {
    const char* name;
    const char* rule;
    Edit edit;
    std::string places; /**< as placesOf() gives them; "" for none */
};

void PrintTo(const Edge& edge, std::ostream* out);

/**
 * The places of a rule's findings in a tree: "file:line" with the lines of related places, as in
 * "a.ini:3(1) a.ini:4". `given` is a property of the command line, "KEY=VALUE".
 */
std::string placesOf(const mlk::testing::TempDir& dir, const std::string& rule,
                     const std::string& given = "");

/** Makes the change and compares the places. */
void expectPlaces(const Edge& edge);

}  // namespace mlk::tree

#pragma once

#include <string_view>

#include "tools/mlktree/Reporter.h"

namespace mlk::tree {

/** A line that has a name of a section or a key. */
struct NamedLine {
    const FileLines* file = nullptr;
    const ReadLine* line = nullptr;
    std::string_view name;
};

/**
 * Reports two names that are nearly alike, of which one file has the one and one file the other.
 *
 * The finding stands at the name that is probably misspelt: the one that fewer files of the line
 * have, else the one with a word that no other name has. If that tells nothing, it stands at the
 * first one and says that either may be wrong.
 */
void reportRivals(const ProductLine& line, Reporter& reporter, const NamedLine& first,
                  const NamedLine& second);

}  // namespace mlk::tree

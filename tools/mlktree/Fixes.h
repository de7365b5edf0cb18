#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** A line that has one right form, and the form that it has. */
struct MendedLine {
    size_t number; /**< from 1 */
    std::string before;
    std::string after;
};

/** A file of the tree with the lines that can be mended. */
struct MendedFile {
    std::string path; /**< relative to the tree */
    std::vector<MendedLine> lines;
    bool endsLastLine = false; /**< the last line gets the line feed that it lacks */
    bool dropsLastEnd = false; /**< the last line loses its line feed, which counts */
    std::string text;          /**< the whole file, mended */
};

/**
 * Finds what has only one right answer, of what `mlktree check` finds: byte order marks, carriage
 * returns that stay, blanks in entries of lists and around the "=" of TV features, tabs before "=",
 * spaces that are no blanks, characters that nobody sees, indented comments, countries in the wrong
 * case or with a blank or "-" in place of "_", the line feed that the last line of a TV feature
 * file lacks, and the one that ends the value of a property.
 *
 * What the service reads right it still reads after a mend: see mendedLine(); and a line that it
 * does not read, such as one with a tab in its key, stays if it would replace another one.
 *
 * @return the files with something to mend, in the order of their paths
 * @throw UsageError if a temporary file cannot be written
 */
std::vector<MendedFile> mend(const ProductLine& line);

/** The changes of a file as a unified diff, with three lines around each. */
std::string diffOf(const MendedFile& file, const std::vector<std::string_view>& former);

}  // namespace mlk::tree

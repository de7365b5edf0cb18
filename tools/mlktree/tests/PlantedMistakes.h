#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/** How a mistake changes its file. */
enum class Planting {
    REPLACE,      /**< the first `from` becomes `to` */
    REPLACE_EACH, /**< every `from` becomes `to` */
    WHOLE,        /**< the file has the text `to` */
    APPEND,       /**< `to` stands at the end */
    CUT_END,      /**< the last byte is missing */
    REMOVE,       /**< there is no such file */
    MOVE,         /**< the file has the path `to` */
    FOLDER,       /**< a folder has the path */
    LINK,         /**< a link to `to` has the path */
    UTF16,        /**< the file has two bytes a character */
};

/** One mistake in a copy of samples/partitions, and where the checker shall find it. */
struct PlantedMistake {
    const char* name; /**< for the test: letters and digits */
    const char* file; /**< relative to the tree */
    Planting planting;
    std::string_view from;
    std::string_view to;
    const char* rule;
    const char* place;         /**< file of the finding; null for `file` */
    std::string_view lineWith; /**< the finding's line is the first that has it; empty: line 0 */
};

/** For messages of tests. */
inline void PrintTo(const PlantedMistake& mistake, std::ostream* out) {
    *out << mistake.name;
}

/** Mistakes in what lines say. */
const std::vector<PlantedMistake>& plantedMistakes();

/** What editors, merges and habits from elsewhere leave in files. */
const std::vector<PlantedMistake>& plantedOddities();

/** What looks odd and is right, so that nothing is found. */
const std::vector<PlantedMistake>& soundVariations();

}  // namespace mlk::tree

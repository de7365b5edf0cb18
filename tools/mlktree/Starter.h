#pragma once

#include <string>
#include <vector>

namespace mlk::tree {

/** A file of a new product line. */
struct StarterFile {
    const char* path; /**< relative to the tree; "{MODEL}" stands for the model's name */
    const char* text; /**< "{MODEL}" and "{MAKER}" stand for the names */
};

/**
 * The files of the smallest product line that the service runs on and that `mlktree check` finds
 * nothing in: one model, one country, one channel plan. Comments explain each file whose format has
 * comments; the file README.md explains the others.
 */
std::vector<StarterFile> starterFiles();

// Parts of it, each in a file of its own.
std::vector<StarterFile> starterModel();    /**< the model and what leads to it */
std::vector<StarterFile> starterRegional(); /**< country, languages, channel plan, TV system */

/** What the names stand for. */
struct StarterNames {
    std::string maker;
    std::string model;
};

/** A text with the names in their places. */
std::string filledIn(std::string text, const StarterNames& names);

/**
 * Writes the files into a folder, which is made if it does not exist. If a file cannot be written,
 * what was made is removed.
 *
 * @return the paths of the files, relative to the folder
 * @throw UsageError if the folder holds something, or a file cannot be written
 */
std::vector<std::string> writeStarter(const std::string& folder, const StarterNames& names);

}  // namespace mlk::tree

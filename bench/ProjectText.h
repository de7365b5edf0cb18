#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace mlk::bench {

/**
 * One item of a project file as its reader finds it: without quotes and comments, but with the
 * partition name at the start.
 */
struct Item {
    std::string category;  // with brackets
    std::string key;
    std::string value;
};

/**
 * A generated project file like those of a product line (sections of about ten items, aligned
 * values, comments, quotes, paths into the partitions) and its content. The same in every run.
 *
 * No key occurs twice and no comment follows a section name, so that readers of other INI dialects
 * find the same number of items.
 */
struct ProjectText {
    std::string text;
    std::vector<Item> items;  // in the order of the file
    size_t lines = 0;
};

/** Generates a file with that number of lines, at least 100. */
ProjectText projectOfLines(size_t lines);

/** Generates a file with that number of items, at least 100. */
ProjectText projectOfItems(size_t items);

/** Whether a value is the path of a file on a partition, like most answers. */
bool isPath(const std::string& value);

}  // namespace mlk::bench

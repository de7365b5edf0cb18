#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace mlk::bench {

/// One item of a project file, as its reader finds it: quotes and remarks gone, a leading partition
/// name still in place.
struct Item {
    std::string category;  // with brackets
    std::string key;
    std::string value;
};

/// A project file like those of a product line (sections of some ten items, aligned values,
/// remarks, quotes, paths into the partitions) and what is in it. The same every time.
///
/// No key stands twice and no remark behind a section name, so that readers of other INI dialects
/// find as many items in it.
struct ProjectText {
    std::string text;
    std::vector<Item> items;  // in the order of the file
    size_t lines = 0;
};

/// A file of exactly so many lines, at least 100.
ProjectText projectOfLines(size_t lines);

/// A file of exactly so many items, at least 100.
ProjectText projectOfItems(size_t items);

/// Whether a value names a file of a partition, as the answers to most getters do.
bool isPath(const std::string& value);

}  // namespace mlk::bench

#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

using nlohmann::json;

/** The text that packed() has made into this. */
std::string unpacked(std::string_view text);

/** The part of a text between two others. */
std::string between(const std::string& text, const std::string& begin, const std::string& end);

/** The page of `mlktree report` for a tree, read as its script reads it. */
class ReadReport {
  public:
    explicit ReadReport(const std::string& tree);

    /** The text of a number; bytes that are no UTF-8 are as they were. */
    std::string text(const json& id) const;
    /** The path of a file by its number; empty for -1. */
    std::string pathOf(const json& id) const;
    /** A file by its path; the test fails if the report has none. */
    const json& file(const std::string& path) const;
    /** The file that a value of an item names; empty for none. */
    std::string fileOf(const std::string& value) const;
    /** "[SECTION] KEY" to value and place of every item of a set. */
    std::map<std::string, std::string> itemsOf(size_t set) const;

    /** The numbers of a column of differences. */
    static std::vector<int64_t> column(const json& differences);

    std::string page;
    std::string summaryText;
    json summary;
    json data;
};

}  // namespace mlk::tree

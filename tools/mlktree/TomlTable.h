#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::tree {

/**
 * One table of a TOML file, read key by key. Whatever is wrong throws UsageError with file, line
 * and column. Must not outlive the file's tables.
 */
class TomlTable {
  public:
    /**
     * @param path  the file, for messages
     * @param name  of the table, for messages: "[[rule]]"
     */
    TomlTable(std::string path, std::string name, const toml::table& table)
        : mPath(std::move(path)), mName(std::move(name)), mTable(table) {}

    /** The line of the table's heading. */
    size_t line() const { return mTable.source().begin.line; }

    bool has(std::string_view key) const { return mTable.contains(key); }
    /** A text; throws if it is missing. */
    std::string text(std::string_view key) const;
    /** A text; the default if it is missing. */
    std::string text(std::string_view key, std::string_view otherwise) const;
    std::vector<std::string> texts(std::string_view key) const;
    std::optional<int64_t> integer(std::string_view key) const;
    bool boolean(std::string_view key) const;

    /** Throws if the table has a key that is none of these. */
    void allowOnly(const std::vector<std::string_view>& keys) const;

    /** Throws an error at a key's value, or at the table if it has no such key. */
    [[noreturn]] void refuse(std::string_view key, const std::string& message) const;

  private:
    const toml::node& at(std::string_view key) const;

    std::string mPath;
    std::string mName;
    const toml::table& mTable;
};

/** Throws UsageError "path:line:column: message". */
[[noreturn]] void refuseAt(const std::string& path, const toml::source_region& place,
                           const std::string& message);

}  // namespace mlk::tree

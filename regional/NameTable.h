#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <shared_mutex>
#include <string>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** One row of a table of names. */
struct NamedValue {
    std::string_view name;
    int32_t value = 0;
};

/** Returns the rows in byte order of their names, as a NameTable requires. */
template <size_t N>
constexpr std::array<NamedValue, N> sortedByName(std::array<NamedValue, N> rows) {
    for (size_t end = 1; end < N; ++end) {
        const NamedValue row = rows[end];
        size_t at = end;
        for (; at > 0 && row.name < rows[at - 1].name; --at) {
            rows[at] = rows[at - 1];
        }
        rows[at] = row;
    }
    return rows;
}

/**
 * Maps names to values: fixed rows, and unknown names that were found in files.
 *
 * A file may name a country or a modulation that this software does not know. Such a name gets the
 * value 0 and stays in the table: find() and firstNameOf() know it. The table keeps each name once
 * and at most kMostAdded of them, so that no file makes the process grow without bound.
 *
 * Thread-safe; looking up a name of the fixed rows takes no lock.
 */
class NameTable {
  public:
    /** Limit of added names; further unknown names have the value 0 but are not kept. */
    static constexpr size_t kMostAdded = 4096;

    /** @param rows  in byte order of their names; must outlive the table */
    template <size_t N>
    explicit NameTable(const std::array<NamedValue, N>& rows) : mRows(rows.data()), mCount(N) {}
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;

    /** Returns the value of a name. Adds an unknown name with the value 0. */
    int32_t valueOf(std::string_view name);

    /** Returns the value of a fixed or added name; nothing if the name is unknown. */
    std::optional<int32_t> find(std::string_view name) const;

    /**
     * Gives the first name in byte order that has a value.
     *
     * @param name  set to the name; untouched if no name has the value
     * @return false if no name has the value
     */
    bool firstNameOf(int32_t value, std::string& name) const;

  private:
    friend struct RegionalPeer;  // tests

    const NamedValue* rowOf(std::string_view name) const;

    const NamedValue* const mRows;
    const size_t mCount;
    mutable std::shared_mutex mMutex;
    std::set<std::string, std::less<>> mAdded;  // guarded by mMutex; each has the value 0
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

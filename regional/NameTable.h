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

/** The rows in byte order of their names, which is how a NameTable wants them. */
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
 * Names and what they stand for: fixed rows, and the unknown names that files brought along.
 *
 * A file may name a country or a modulation that this software does not know. Such a name counts as
 * 0 and belongs to the table from then on, for as long as the process lives: it is found, and it
 * takes part in the order of names. Each is kept once, and no more than kMostAdded of them, so that
 * no file and no number of readings makes the process grow without bound.
 *
 * Any operation from any thread at any time; a name of the fixed rows takes no lock.
 */
class NameTable {
  public:
    static constexpr size_t kMostAdded = 4096;

    /** @param rows  in byte order of their names; have to outlive the table */
    template <size_t N>
    explicit NameTable(const std::array<NamedValue, N>& rows) : mRows(rows.data()), mCount(N) {}
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;

    /** Value of a name. An unknown one is added with the value 0. */
    int32_t valueOf(std::string_view name);

    /** Value of a name, added ones included; nothing, and no addition, when it is unknown. */
    std::optional<int32_t> find(std::string_view name) const;

    /**
     * The first name in byte order that has a value.
     *
     * @param name  set to it; untouched when no name has the value
     * @return false when no name has the value
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

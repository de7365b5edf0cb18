#include "regional/CountryTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr std::array<NamedValue, kCountryNames.size()> numbered() {
    std::array<NamedValue, kCountryNames.size()> rows{};
    for (size_t position = 0; position < rows.size(); ++position) {
        rows[position] = {kCountryNames[position], countryAt(position)};
    }
    return rows;
}

constexpr auto kRows = sortedByName(numbered());

}  // namespace

NameTable countryNames() {
    return NameTable(kRows);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "tools/mlkctl/CountryNames.h"

#include "regional/CountryTable.h"

namespace mlk::ctl {

namespace {

NumberNames makeNames() {
    using namespace ::vendor::morlak::mlkconfigs::V1_0::implementation;  // the countries' names
    NumberNames names{"a country's name", {}};
    for (size_t position = 0; position < kCountryNames.size(); ++position) {
        names.rows.emplace_back(kCountryNames[position], countryAt(position));
    }
    return names;
}

}  // namespace

const NumberNames& countryNames() {
    static const NumberNames names = makeNames();
    return names;
}

}  // namespace mlk::ctl

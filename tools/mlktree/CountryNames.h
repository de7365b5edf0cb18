#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "regional/CountryTable.h"

namespace mlk::tree {

using vendor::morlak::mlkconfigs::V1_0::implementation::_tv_country;

/** The country that a name in a file has; nothing if the service does not know the name. */
std::optional<_tv_country> countryOf(std::string_view name);

/** The name that a wrong name of a country probably stands for; empty if that cannot be told. */
std::string_view countryMeantBy(std::string_view name);

/** The country that --country names. @throw UsageError if the service knows no such country */
_tv_country countryOfOption(const std::string& name);

/**
 * The countries that the wrong ones of some names probably stand for. Of very many wrong names the
 * first thousand are looked at.
 */
std::set<std::string_view> countriesMeantBy(const std::vector<std::string_view>& names);

}  // namespace mlk::tree

#pragma once

#include "tools/mlkctl/ShowRows.h"

/**
 * Facts about the country of a set. No method of the interface returns the country: it is read from
 * the file that stores it, which the service itself delivers.
 */
namespace mlk::ctl {

/** The country's name, as setCountryId takes it. */
ShowQuestion countryName();

/** The country's number. */
ShowQuestion countryNumber();

/**
 * The country's TV system, according to the project's maps. This process reads them, so it has to
 * see the same partitions as the service.
 */
ShowQuestion countryTvSystem();

/** The number of channels in each plan of the country that has any: "DTV_CABLE HRC" and the like.
 */
ShowQuestion countryChannels();

}  // namespace mlk::ctl

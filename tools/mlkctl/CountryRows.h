#pragma once

#include "tools/mlkctl/ShowRows.h"

/// What belongs to the country that a set stands in. The interface has no method that tells the
/// country: it is read from the file that the service keeps it in, by the service's own delivery of
/// files.
namespace mlk::ctl {

/// Its name, as setCountryId takes it.
ShowQuestion countryName();

/// Its number.
ShowQuestion countryNumber();

/// Its TV system, by the maps of the project. They are read by this process, so it has to see the
/// same partitions as the service.
ShowQuestion countryTvSystem();

/// The number of channels in each of its plans that has any: "DTV_CABLE HRC" and the like.
ShowQuestion countryChannels();

}  // namespace mlk::ctl

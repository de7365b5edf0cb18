#pragma once

#include "tools/mlkctl/Parameter.h"

namespace mlk::ctl {

/// The names that a country's number may be given by: those that the service's files use.
const NumberNames& countryNames();

/// The parameter "country" of the methods that have one: a country's number or its name.
inline Parameter countryParameter() {
    return {"country", countryNames()};
}

}  // namespace mlk::ctl

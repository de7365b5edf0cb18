#pragma once

#include "tools/mlkctl/Parameter.h"

namespace mlk::ctl {

/** The names of countries, spelt as in the service's files, which stand for their numbers. */
const NumberNames& countryNames();

/** The parameter "country" of the methods that have one: a country's number or its name. */
inline Parameter countryParameter() {
    return {"country", countryNames()};
}

}  // namespace mlk::ctl

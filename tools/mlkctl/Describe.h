#pragma once

#include <string>

#include "tools/mlkctl/Interface.h"

/**
 * What the interfaces' definitions say, for a person to read: lines of at most 80 columns, each
 * with its newline.
 */
namespace mlk::ctl {

/** All interfaces, with their short names and what they are about. */
std::string describeInterfaces();

/** An interface: what it is about, and its methods with their arguments and summaries. */
std::string describe(const Interface& interface);

/**
 * A method: arguments with types, ranges and enumerators, result, when there is no answer, and the
 * items, properties and files that stand for the result.
 */
std::string describe(const Interface& interface, const Method& method);

}  // namespace mlk::ctl

#pragma once

#include <string>
#include <vector>

#include "tools/mlkctl/Method.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

/** Whether a printed answer holds nothing: an empty text or list, 0, false, no bytes, no success.
 */
bool isEmptyAnswer(const std::string& answer, Form form);

/**
 * Calls a method as Services::call does. If the answer is empty and its section is written without
 * brackets, asks for the section with brackets, too, and takes that answer unless it is empty; the
 * arguments have brackets then. A section that is in the project without brackets is never asked
 * for with them.
 */
std::string callWithSection(Services& services, const Interface& interface, const Method& method,
                            std::vector<Argument>* arguments, Form form);

/**
 * Says on standard error what the user may have got wrong, after a call was answered: an argument
 * out of its range; if the answer is empty, a path that begins with a partition's name and not with
 * its mount point, a section or a key with a near name, and an allocator of shared memory that does
 * not run. Asks the service for that. Throws no Failure.
 */
void hint(const Method& method, const std::vector<Argument>& arguments, const std::string& answer,
          Form form, Environment& environment);

}  // namespace mlk::ctl

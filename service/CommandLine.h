#pragma once

#include <optional>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Answers the arguments of the process; `argv` is as main has it. Without arguments, as init starts
 * the service, returns nothing, and the caller goes on. "--help" and "-h", whatever follows them,
 * print the help on standard output. Anything else is refused with a line on standard error,
 * because a service that ignored it would run with settings that its caller did not mean. Returns
 * the exit status then: 0, 1 if the help could not be written, 2 for wrong arguments.
 */
std::optional<int> answerArguments(int argc, const char* const* argv);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "projectconfigs/ReaderWriting.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How many texts for clients may be written at once. Each has a thread of its own, and blocks at
 * most one thread of the pool: at least four of the pool's ten threads stay free.
 */
inline constexpr int kWriters = 6;

/** How long a caller of writeToClient waits for the text to be written. */
inline constexpr std::chrono::milliseconds kCallerPatience(1000);

/**
 * Writes `text` to a descriptor that a client has sent: a pipe, a socket, a file or a terminal; see
 * writeToReader. Returns when the text is written, at the latest after kCallerPatience: another
 * thread then goes on writing to the slow reader. Gives the text up at once if kWriters texts are
 * being written already. Any number of threads may call. The descriptor stays the caller's.
 *
 * Calls `done` once with the result, before or after the return and on any thread. `done` must not
 * throw, and must not refer to objects of the caller, who may have returned.
 */
void writeToClient(int descriptor, std::string text, std::function<void(const Written&)> done);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

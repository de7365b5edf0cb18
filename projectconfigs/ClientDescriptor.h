#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "projectconfigs/ReaderWriting.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * How many texts for clients may be under way at once. Each has a thread of its own while it is,
 * and holds at most one thread of the pool: four of the pool's ten are left whatever the other ends
 * do.
 */
inline constexpr int kWriters = 6;

/** How long a caller of writeToClient waits for the text to be written. */
inline constexpr std::chrono::milliseconds kCallerPatience(1000);

/**
 * Writes `text` to a descriptor that a client has sent: a pipe, a socket, a file or a terminal
 * (writeToReader says how). Returns when that is done, at the latest after kCallerPatience: writing
 * to a slow reader then goes on without the caller. When kWriters texts are under way already, this
 * one is given up at once. Any number of threads; the descriptor is the caller's again afterwards.
 *
 * `done` is called once with what became of the text, before or after the return and on any thread;
 * it must not throw, and must not refer to what may go before.
 */
void writeToClient(int descriptor, std::string text, std::function<void(const Written&)> done);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

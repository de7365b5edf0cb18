#pragma once

#include <cstdint>
#include <string>

namespace mlk::host {

/**
 * Returns the number of bytes that the system can allocate without swapping, as the
 * kernel estimates it in /proc/meminfo ("MemAvailable:  1234 kB"). The largest possible number when
 * the table cannot be read or lacks the line. Thread-safe.
 */
uint64_t availableMemory(const std::string& table = "/proc/meminfo");

}  // namespace mlk::host

#pragma once

#include <cstdint>
#include <string>

namespace mlk::host {

/// How many bytes of memory the system can give out before it has to take them from somebody, as
/// the kernel estimates it in its table of memory ("MemAvailable:  1234 kB"). The largest number
/// there is when the table cannot be read or does not tell. Any thread may call it.
uint64_t availableMemory(const std::string& table = "/proc/meminfo");

}  // namespace mlk::host

#include "host/memory/AvailableMemory.h"

#include <fstream>
#include <limits>

namespace mlk::host {

uint64_t availableMemory(const std::string& table) {
    constexpr uint64_t kUnknown = std::numeric_limits<uint64_t>::max();
    std::ifstream lines(table);
    std::string name;
    uint64_t kilobytes = 0;
    std::string unit;
    while (lines >> name >> kilobytes && std::getline(lines, unit)) {
        if (name == "MemAvailable:") {
            return kilobytes > kUnknown / 1024 ? kUnknown : kilobytes * 1024;
        }
    }
    return kUnknown;
}

}  // namespace mlk::host

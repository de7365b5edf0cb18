#pragma once

#include <sys/types.h>

#include <fstream>
#include <string>

namespace mlk::testing {

/**
 * The state that the kernel shows for a thread of this process: 'S' while it sleeps, '?' if there
 * is no such thread.
 */
inline char stateOf(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(file, text);
    const size_t end = text.rfind(") ");
    return end == std::string::npos ? '?' : text[end + 2];
}

}  // namespace mlk::testing

#pragma once

#include <sys/types.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace mlk::testing {

/** The letter in a thread's file "stat", 'S' while it sleeps; '?' if there is no such thread. */
inline char stateIn(const std::string& statFile) {
    std::ifstream file(statFile);
    std::string text;
    std::getline(file, text);
    const size_t end = text.rfind(") ");
    return end == std::string::npos ? '?' : text[end + 2];
}

/** The state of a thread of this process. */
inline char stateOf(pid_t thread) {
    return stateIn("/proc/self/task/" + std::to_string(thread) + "/stat");
}

/** Whether all threads of a process sleep: each has begun, and waits for something. */
inline bool allSleep(pid_t process) {
    std::error_code error;
    const std::filesystem::directory_iterator tasks("/proc/" + std::to_string(process) + "/task",
                                                    error);
    return !error && std::all_of(begin(tasks), end(tasks), [](const auto& task) {
        return stateIn(task.path().string() + "/stat") == 'S';
    });
}

}  // namespace mlk::testing

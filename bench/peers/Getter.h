// The getter as the peers have it: nothing is asked, whether it is known and its value are
// answered.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/ProductLine.h"

namespace mlk::bench {

/// A path in the runtime folder, where the servers listen and say that they are ready.
inline std::string inRuntimeFolder(const char* name) {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (folder == nullptr) throw std::runtime_error("no runtime folder");
    return std::string(folder) + "/" + name;
}

/// Says that the server can be connected to, to who waits for the entry.
inline void sayReady(const char* entry) {
    const int file = open(inRuntimeFolder(entry).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0) throw std::runtime_error(entry);
    (void)close(file);
}

/// Throws std::runtime_error unless it is the answer.
inline void checkAnswer(bool known, const std::string& value) {
    if (!known || value != kPanelName) throw std::runtime_error("the answer is wrong");
}

}  // namespace mlk::bench

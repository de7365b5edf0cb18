// The getter of the peers: the request is empty; the reply has a truth value and a text.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "bench/ProductLine.h"

namespace mlk::bench {

/** Returns a path in the runtime folder, where servers listen and report readiness. */
inline std::string inRuntimeFolder(const char* name) {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (folder == nullptr) {
        throw std::runtime_error("no runtime folder");
    }
    return std::string(folder) + "/" + name;
}

/** Reports that the server accepts connections by making its entry. */
inline void sayReady(const char* entry) {
    const int file = open(inRuntimeFolder(entry).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error(entry);
    }
    (void)close(file);
}

/** Throws std::runtime_error unless this is the expected answer. */
inline void checkAnswer(bool known, const std::string& value) {
    if (!known || value != kPanelName) {
        throw std::runtime_error("the answer is wrong");
    }
}

}  // namespace mlk::bench

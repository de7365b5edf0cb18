// Stream sockets by their paths, and messages of known sizes on them.
#pragma once

#include <android-base/unique_fd.h>

#include <cstddef>
#include <string>

namespace mlk::bench {

/// A socket that listens there; what is at the path appears only when it does. Throws
/// std::runtime_error.
android::base::unique_fd listenOn(const std::string& path);

/// Throws std::runtime_error.
android::base::unique_fd connectTo(const std::string& path);

/// Sends or receives exactly so many bytes; false when the other end is gone.
bool sendAll(int socket, const char* bytes, size_t size);
bool receiveAll(int socket, char* bytes, size_t size);

}  // namespace mlk::bench

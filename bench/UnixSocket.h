// Unix sockets, and messages of known sizes.
#pragma once

#include <android-base/unique_fd.h>

#include <sys/socket.h>

#include <cstddef>
#include <string>

namespace mlk::bench {

/**
 * Makes a socket of that type, a stream by default, that listens at the path. The path appears only
 * once the socket listens. Throws std::runtime_error.
 */
android::base::unique_fd listenOn(const std::string& path, int type = SOCK_STREAM);

/** Connects to the path; throws std::runtime_error. */
android::base::unique_fd connectTo(const std::string& path, int type = SOCK_STREAM);

/** Sends or receives exactly `size` bytes; false if the other end is closed. */
bool sendAll(int socket, const char* bytes, size_t size);
bool receiveAll(int socket, char* bytes, size_t size);

}  // namespace mlk::bench

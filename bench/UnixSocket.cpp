#include "bench/UnixSocket.h"

#include <sys/un.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace mlk::bench {

using android::base::unique_fd;

namespace {

constexpr int kBacklog = 128;

[[noreturn]] void fail(const std::string& path) {
    throw std::runtime_error(path + ": " + strerror(errno));
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error(path + ": too long");
    }
    path.copy(address.sun_path, path.size());
    return address;
}

}  // namespace

unique_fd listenOn(const std::string& path, int type) {
    const std::string temporary = path + ".new";
    const sockaddr_un address = addressOf(temporary);
    unique_fd socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(socket.get(), kBacklog) != 0 || rename(temporary.c_str(), path.c_str()) != 0) {
        fail(path);
    }
    return socket;
}

unique_fd connectTo(const std::string& path, int type) {
    const sockaddr_un address = addressOf(path);
    unique_fd socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        fail(path);
    }
    return socket;
}

bool sendAll(int socket, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t received = recv(socket, bytes, size, 0);
        if (received <= 0) {
            return false;
        }
        bytes += received;
        size -= static_cast<size_t>(received);
    }
    return true;
}

}  // namespace mlk::bench

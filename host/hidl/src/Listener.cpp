#include "Listener.h"

#include <fcntl.h>
#include <log/log.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>
#include <utility>

#include "ConnectionShares.h"
#include "Limits.h"
#include "RuntimeFolder.h"
#include "ServerConnection.h"
#include "Socket.h"
#include "Stalls.h"
#include "Wire.h"
#include "host/log/LogClient.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// After this many clients the thread checks for other work.
constexpr int kAtOnce = 32;
// How long the thread pauses when it can neither accept nor refuse a client; without the pause the
// listener would wake it again at once.
constexpr int kRestMilliseconds = 10;

unique_fd anyDescriptor() {
    return unique_fd(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

// 0 when the file does not exist.
uint64_t inodeOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

}  // namespace

Listener::Listener(unique_fd socket, std::string path, const sp<BHwBinder>& object)
    : mSocket(std::move(socket)),
      mPath(std::move(path)),
      mFile(inodeOf(mPath)),
      mObject(object),
      mServer(randomNumber()),
      mSpare(anyDescriptor()) {
    // The first connection would create it; creating it now keeps the process's descriptors
    // constant.
    (void)Stalls::instance();
}

EventSource::Next Listener::onEvents(uint32_t, ThreadPool& pool) {
    for (int i = 0; i < kAtOnce; ++i) {
        unique_fd socket(accept4(mSocket.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket.ok()) {
            mRefusing = false;
            lookForName();
            welcome(std::move(socket), pool);
        } else if (errno == EAGAIN) {
            break;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            refuseOne();
            break;
        }
    }
    return Next::WAIT_FOR_INPUT;
}

void Listener::welcome(unique_fd socket, ThreadPool& pool) const {
    if (!peerIsTrusted(socket.get())) {
        ALOGE("refused a connection from another user");
        return;
    }
    const pid_t client = peerProcess(socket.get());
    const ::mlk::host::LogClient saidForClient(client);
    try {
        auto place = ConnectionShares::instance().take(client, socket.get(), descriptorLimit());
        if (!place) {
            return;
        }
        const Hello hello{Hello::kMagic, Hello::kVersion, mServer};
        if (::send(socket.get(), &hello, sizeof(hello), MSG_DONTWAIT | MSG_NOSIGNAL) !=
            static_cast<ssize_t>(sizeof(hello))) {
            return;
        }
        pool.add(std::make_shared<ServerConnection>(std::move(socket), mObject, std::move(place)),
                 true);
    } catch (const std::exception& exception) {
        ALOGE("cannot take a connection: %s", exception.what());
    }
}

void Listener::lookForName() {
    if (mNameIsLost || mFile == 0) {
        return;
    }
    const uint64_t file = inodeOf(mPath);
    if (file == 0 || file == mFile) {
        return;
    }
    mNameIsLost = true;
    const unique_fd taken(open(mPath.c_str(), O_PATH | O_CLOEXEC));
    const pid_t other = taken.ok() ? listenerOf(taken.get()).value_or(0) : 0;
    if (other == getpid()) {
        return;
    }
    const std::string process = other == 0 ? "another process" : "process " + std::to_string(other);
    ALOGE("%s: %s has taken the name over; new clients do not reach this process", mPath.c_str(),
          process.c_str());
}

void Listener::refuseOne() {
    // No descriptor is left. A waiting client would wake a thread over and over, so the listener
    // accepts it with the spare descriptor and closes the connection.
    if (!mRefusing) {
        ALOGE("no descriptors are left: refusing clients; %s",
              ConnectionShares::instance().largest().c_str());
    }
    mRefusing = true;
    mSpare.reset();
    unique_fd socket(accept4(mSocket.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.ok()) {
        (void)poll(nullptr, 0, kRestMilliseconds);
    }
    socket.reset();
    mSpare = anyDescriptor();
}

}  // namespace android::hardware::transport

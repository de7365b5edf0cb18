#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Native.h"
#include "RawClient.h"
#include "host/hidl/src/RuntimeFolder.h"
#include "host/hidl/src/Socket.h"

namespace mlk::test {

/** One connection of a client to a bad server. */
class BadServer {
  public:
    explicit BadServer(int socket) : mSocket(socket) {}

    void send(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors = {}) const {
        ::android::hardware::transport::Sending sending;
        sending.pieces = {{const_cast<uint8_t*>(bytes.data()), bytes.size()}};
        sending.descriptors = descriptors;
        (void)::android::hardware::transport::sendPieces(mSocket, &sending, 0);
    }
    void send(const RawMessage& message) const { send(message.bytes(), message.descriptors); }
    void hello(uint32_t magic = Hello::kMagic, uint32_t version = Hello::kVersion) const {
        const Hello hello{magic, version, 1};
        const auto* bytes = reinterpret_cast<const uint8_t*>(&hello);
        send({bytes, bytes + sizeof(hello)});
    }
    /** Sends a hello that never ends: a byte a second while the client waits. */
    void helloByteByByte() const {
        const Hello hello{Hello::kMagic, Hello::kVersion, 1};
        const auto* bytes = reinterpret_cast<const uint8_t*>(&hello);
        for (size_t i = 0; i < sizeof(hello); ++i) {
            send({bytes + i, bytes + i + 1});
            pollfd state{mSocket, POLLRDHUP, 0};
            if (poll(&state, 1, 1000) != 0) {
                return;
            }
        }
    }
    /** Waits for a whole call. */
    void takeCall() const {
        ::android::hardware::transport::MessageReader reader(
                ::android::hardware::transport::kMaxCallBody);
        (void)reader.read(mSocket, 0, 0);
    }
    /** Waits until the client has gone. */
    void waitForEnd() const {
        pollfd state{mSocket, POLLRDHUP, 0};
        (void)poll(&state, 1, 30 * 1000);
    }

  private:
    const int mSocket;
};

/**
 * Registers the name, runs the function for each connection, and closes the connection afterwards.
 * Implements the protocol by hand, so that it can break it.
 */
class BadService {
  public:
    explicit BadService(std::function<void(const BadServer&)> work,
                        const std::string& interface = IEverything::descriptor,
                        const std::string& instance = "default")
        : mWork(std::move(work)) {
        const ::android::hardware::transport::RuntimeFolder folder =
                ::android::hardware::transport::findRuntimeFolder();
        EXPECT_EQ(::android::hardware::transport::listenOn(folder, interface + "." + instance,
                                                           &mListener),
                  0);
        mThread = std::thread([this] { run(); });
    }
    ~BadService() {
        mEnd.in.reset();
        mThread.join();
    }
    BadService(const BadService&) = delete;
    BadService& operator=(const BadService&) = delete;

  private:
    void run() {
        while (true) {
            pollfd events[] = {{mListener.get(), POLLIN, 0}, {mEnd.out.get(), POLLIN, 0}};
            (void)poll(events, 2, -1);
            if (events[1].revents != 0) {
                return;
            }
            const unique_fd socket(accept4(mListener.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (socket.ok()) {
                mWork(BadServer(socket.get()));
            }
        }
    }

    const std::function<void(const BadServer&)> mWork;
    unique_fd mListener;
    Pipe mEnd;
    std::thread mThread;
};

}  // namespace mlk::test

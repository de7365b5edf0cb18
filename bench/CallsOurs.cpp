// Calls to the product, and the size of its messages.

#include <android-base/unique_fd.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "bench/Calls.h"
#include "bench/ProductLine.h"
#include "bench/Started.h"
#include "bench/UnixSocket.h"

namespace mlk::bench {

namespace {

using android::sp;
using android::base::unique_fd;
using vendor::morlak::mlkconfigs::V1_0::IMlkProjectConfigs;
using vendor::morlak::mlkconfigs::V1_0::OptionalString;

class OurCaller : public Caller {
  public:
    OurCaller() : mService(IMlkProjectConfigs::getService()) {
        if (mService == nullptr) {
            throw std::runtime_error("the service does not answer");
        }
        call();
        if (mLast != std::strlen(kPanelName)) {
            throw std::runtime_error("the answer is wrong");
        }
    }

    void call() override {
        const auto result = mService->getPanelName(
                [this](const OptionalString& answer) { mLast = answer.value.size(); });
        if (!result.isOk()) {
            throw std::runtime_error("a call failed");
        }
    }

  private:
    const sp<IMlkProjectConfigs> mService;
    size_t mLast = 0;
};

constexpr const char* kName = "/vendor.morlak.mlkconfigs@1.0::IMlkProjectConfigs.default";

// Relays packets between a client and the service and counts the bytes.
class Relay {
  public:
    Relay(const std::string& folder, std::string service)
        : mService(std::move(service)), mListener(listenOn(folder + kName, SOCK_SEQPACKET)) {
        if (pipe(mEnd.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        mThread = std::thread([this] { run(); });
    }
    ~Relay() {
        (void)close(mEnd[1]);
        mThread.join();
        (void)close(mEnd[0]);
    }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    Payload passed() const { return {mRequests.load(), mReplies.load()}; }

  private:
    struct Connection {
        unique_fd client;
        unique_fd service;
    };

    void run() {
        std::vector<Connection> connections;
        while (true) {
            std::vector<pollfd> events = {{mEnd[0], POLLIN, 0}, {mListener.get(), POLLIN, 0}};
            for (const Connection& one : connections) {
                events.push_back({one.client.get(), POLLIN, 0});
                events.push_back({one.service.get(), POLLIN, 0});
            }
            if (poll(events.data(), events.size(), -1) < 0 || events[0].revents != 0) {
                return;
            }
            for (size_t i = connections.size(); i-- > 0;) {
                const Connection& one = connections[i];
                const bool open = (events[2 * i + 2].revents == 0 ||
                                   pass(one.client.get(), one.service.get(), &mRequests)) &&
                                  (events[2 * i + 3].revents == 0 ||
                                   pass(one.service.get(), one.client.get(), &mReplies));
                if (!open) {
                    connections.erase(connections.begin() + static_cast<ptrdiff_t>(i));
                }
            }
            if (events[1].revents != 0) {
                unique_fd client(accept4(mListener.get(), nullptr, nullptr, SOCK_CLOEXEC));
                connections.push_back(
                        {std::move(client), connectTo(mService + kName, SOCK_SEQPACKET)});
            }
        }
    }

    static bool pass(int from, int to, std::atomic<size_t>* passed) {
        std::array<char, 65536> bytes;
        const ssize_t size = recv(from, bytes.data(), bytes.size(), 0);
        if (size <= 0) {
            return false;
        }
        // Counts first: the caller may read the counter as soon as the bytes arrive.
        *passed += static_cast<size_t>(size);
        return send(to, bytes.data(), static_cast<size_t>(size), MSG_NOSIGNAL) == size;
    }

    const std::string mService;
    const unique_fd mListener;
    std::array<int, 2> mEnd{};
    std::atomic<size_t> mRequests{0};
    std::atomic<size_t> mReplies{0};
    std::thread mThread;
};

}  // namespace

CallContestant ours() {
    return {"ours",
            {"vendor.morlak.mlconfigs@1.0-service"},
            serviceNames(),
            [](const Payload&) -> std::unique_ptr<Caller> {
                return std::make_unique<OurCaller>();
            }};
}

Payload payloadOfOurs() {
    constexpr size_t kCalls = 10;
    const testing::TempDir folder;
    const std::string runtime = getenv("MLK_RUNTIME_DIR");
    const Relay relay(folder.path(), runtime);
    (void)setenv("MLK_RUNTIME_DIR", folder.path().c_str(), 1);
    Payload sum;
    {
        OurCaller caller;
        const Payload before = relay.passed();
        for (size_t i = 0; i < kCalls; ++i) {
            caller.call();
        }
        const Payload after = relay.passed();
        sum = {after.request - before.request, after.reply - before.reply};
    }
    (void)setenv("MLK_RUNTIME_DIR", runtime.c_str(), 1);
    return {sum.request / kCalls, sum.reply / kCalls};
}

}  // namespace mlk::bench

#include <cstdlib>
#include <stdexcept>

#include "bench/Calls.h"
#include "bench/UnixSocket.h"

namespace mlk::bench {

namespace {

class PingPongCaller : public Caller {
  public:
    explicit PingPongCaller(const Payload& payload)
        : mSocket(connectTo(std::string(getenv("MLK_RUNTIME_DIR")) + "/pingpong")),
          mRequest(payload.request, 'q'),
          mReply(payload.reply) {}

    void call() override {
        if (!sendAll(mSocket.get(), mRequest.data(), mRequest.size()) ||
            !receiveAll(mSocket.get(), mReply.data(), mReply.size())) {
            throw std::runtime_error("the ping-pong server is gone");
        }
    }

  private:
    const android::base::unique_fd mSocket;
    const std::vector<char> mRequest;
    std::vector<char> mReply;
};

}  // namespace

CallContestant pingPong(const Payload& payload, size_t threads) {
    std::vector<std::string> server = {"bench_pingpong", std::to_string(payload.request),
                                       std::to_string(payload.reply)};
    if (threads != 0) {
        server.push_back(std::to_string(threads));
    }
    return {"limit",
            std::move(server),
            {"pingpong"},
            [](const Payload& sizes) -> std::unique_ptr<Caller> {
                return std::make_unique<PingPongCaller>(sizes);
            }};
}

}  // namespace mlk::bench

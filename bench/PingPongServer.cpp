// The server of the cheapest possible call: bench_pingpong REQUEST REPLY [THREADS] receives REQUEST
// bytes and sends REPLY bytes, at "pingpong" in the runtime folder. It has one thread per
// connection or, with THREADS, that many for all connections: each answers any of them.

#include <sys/epoll.h>
#include <sys/socket.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "bench/UnixSocket.h"

namespace {

using android::base::unique_fd;

class Exchange {
  public:
    Exchange(size_t request, size_t reply) : mQuestion(request), mAnswer(reply, 'a') {}

    // Answers one request; false if the connection has ended.
    bool serve(int connection) {
        return mlk::bench::receiveAll(connection, mQuestion.data(), mQuestion.size()) &&
               mlk::bench::sendAll(connection, mAnswer.data(), mAnswer.size());
    }

  private:
    std::vector<char> mQuestion;
    const std::vector<char> mAnswer;
};

// Answers the connections of an epoll instance in turn. A client has at most one request under way,
// so each event is one request.
void serveAll(int epoll, size_t request, size_t reply) {
    Exchange exchange(request, reply);
    while (true) {
        epoll_event event{};
        if (epoll_wait(epoll, &event, 1, -1) == 1 && !exchange.serve(event.data.fd)) {
            (void)epoll_ctl(epoll, EPOLL_CTL_DEL, event.data.fd, nullptr);
        }
    }
}

unique_fd startThreads(size_t threads, size_t request, size_t reply) {
    unique_fd epoll(epoll_create1(EPOLL_CLOEXEC));
    for (size_t i = 0; i < threads; ++i) {
        std::thread(serveAll, epoll.get(), request, reply).detach();
    }
    return epoll;
}

}  // namespace

int main(int argc, char** argv) {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (argc < 3 || argc > 4 || folder == nullptr) {
        return 2;
    }
    const size_t request = std::stoul(argv[1]);
    const size_t reply = std::stoul(argv[2]);
    const size_t threads = argc == 4 ? std::stoul(argv[3]) : 0;
    const unique_fd epoll = startThreads(threads, request, reply);
    const unique_fd listener = mlk::bench::listenOn(std::string(folder) + "/pingpong");
    while (true) {
        unique_fd connection(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection.ok()) {
            return 1;
        }
        if (threads != 0) {
            // Edge-triggered: no thread waits for a connection again after it has answered.
            epoll_event event{};
            event.events = EPOLLIN | EPOLLET;
            event.data.fd = connection.release();
            (void)epoll_ctl(epoll.get(), EPOLL_CTL_ADD, event.data.fd, &event);
            continue;
        }
        std::thread([one = std::move(connection), request, reply] {
            Exchange exchange(request, reply);
            while (exchange.serve(one.get())) {
            }
        }).detach();
    }
}

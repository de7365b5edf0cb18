// The server of the cheapest possible call: bench_pingpong REQUEST REPLY receives REQUEST bytes and
// sends REPLY bytes, one thread per connection, at "pingpong" in the runtime folder.

#include <sys/socket.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "bench/UnixSocket.h"

namespace {

using android::base::unique_fd;

void serve(const unique_fd& connection, size_t request, size_t reply) {
    std::vector<char> question(request);
    const std::vector<char> answer(reply, 'a');
    while (mlk::bench::receiveAll(connection.get(), question.data(), request) &&
           mlk::bench::sendAll(connection.get(), answer.data(), reply)) {
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* const folder = getenv("MLK_RUNTIME_DIR");
    if (argc != 3 || folder == nullptr) {
        return 2;
    }
    const size_t request = std::stoul(argv[1]);
    const size_t reply = std::stoul(argv[2]);
    const unique_fd listener = mlk::bench::listenOn(std::string(folder) + "/pingpong");
    while (true) {
        unique_fd connection(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection.ok()) {
            return 1;
        }
        std::thread([one = std::move(connection), request, reply] {
            serve(one, request, reply);
        }).detach();
    }
}

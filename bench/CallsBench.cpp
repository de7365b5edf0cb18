// Compares calls to the product with the cheapest possible calls.

#include "bench/Calls.h"

int main(int argc, char** argv) {
    using namespace mlk::bench;
    const auto payload = [] {
        const Started service = startServer(ours());
        return payloadOfOurs();
    };
    const auto contestants = [](const Payload& sizes) {
        return std::vector<CallContestant>{pingPong(sizes), ours()};
    };
    const auto crowded = [](const Payload& sizes) {
        constexpr size_t kThreads = 10;  // as many as the service has
        return std::vector<CallContestant>{pingPong(sizes, kThreads), ours()};
    };
    return callsMain(argc, argv, {contestants, crowded, payload, 20000, {1, 2, 4, 8, 16, 64}});
}

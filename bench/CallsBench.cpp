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
    return callsMain(argc, argv, {contestants, payload, 20000, {1, 2, 4, 8, 16, 64}});
}

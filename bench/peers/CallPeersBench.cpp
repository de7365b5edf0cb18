#include "bench/peers/CallPeers.h"

int main(int argc, char** argv) {
    using namespace mlk::bench;
    const auto contestants = [](const Payload&) {
        return std::vector<CallContestant>{sdBus(), sdBusDaemon(), grpc(), capnProto()};
    };
    return callsMain(argc, argv, {contestants, contestants, [] { return Payload(); }, 4000, {}});
}

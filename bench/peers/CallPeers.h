// Those that a user would pick for calls in place of ours.
#pragma once

#include "bench/Calls.h"

namespace mlk::bench {

/// sd-bus, a socket a client.
CallContestant sdBus();

/// sd-bus, through a private bus daemon.
CallContestant sdBusDaemon();

/// gRPC over a Unix socket, with the synchronous server and stub.
CallContestant grpc();

/// Cap'n Proto over a Unix socket.
CallContestant capnProto();

}  // namespace mlk::bench

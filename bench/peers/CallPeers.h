// Alternatives to our calls.
#pragma once

#include "bench/Calls.h"

namespace mlk::bench {

/** sd-bus, one socket per client. */
CallContestant sdBus();

/** sd-bus, through a private bus daemon. */
CallContestant sdBusDaemon();

/** gRPC over a Unix socket, with the synchronous server and stub. */
CallContestant grpc();

/** Cap'n Proto over a Unix socket. */
CallContestant capnProto();

}  // namespace mlk::bench

// The getter of getter.capnp on a Unix socket.

#include <capnp/ez-rpc.h>
#include <getter.capnp.h>
#include <kj/exception.h>

#include <cstdio>

#include "bench/peers/Getter.h"

namespace {

class Getter : public bench::Getter::Server {
    kj::Promise<void> getPanelName(GetPanelNameContext context) override {
        auto answer = context.getResults();
        answer.setKnown(true);
        answer.setValue(mlk::bench::kPanelName);
        return kj::READY_NOW;
    }
};

}  // namespace

int main() {
    try {
        capnp::EzRpcServer server(kj::heap<Getter>(),
                                  "unix:" + mlk::bench::inRuntimeFolder("capnp"));
        (void)server.getPort().wait(server.getWaitScope());
        mlk::bench::sayReady("capnp-ready");
        kj::NEVER_DONE.wait(server.getWaitScope());
    } catch (const kj::Exception& error) {
        fprintf(stderr, "bench_capnp_server: %s\n", error.getDescription().cStr());
    }
    return 1;
}

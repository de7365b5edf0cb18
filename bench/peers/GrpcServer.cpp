// The getter of getter.proto on a Unix socket.

#include <getter.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <cstdio>

#include "bench/peers/Getter.h"

namespace {

class Getter : public bench::Getter::Service {
    grpc::Status GetPanelName(grpc::ServerContext* /*context*/, const bench::Question* /*question*/,
                              bench::Answer* answer) override {
        answer->set_known(true);
        answer->set_value(mlk::bench::kPanelName);
        return grpc::Status::OK;
    }
};

}  // namespace

int main() {
    try {
        Getter getter;
        grpc::ServerBuilder builder;
        builder.AddListeningPort("unix:" + mlk::bench::inRuntimeFolder("grpc"),
                                 grpc::InsecureServerCredentials());
        builder.RegisterService(&getter);
        const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
        if (server == nullptr) {
            return 1;
        }
        mlk::bench::sayReady("grpc-ready");
        server->Wait();
        return 0;
    } catch (const std::exception& error) {
        fprintf(stderr, "bench_grpc_server: %s\n", error.what());
        return 1;
    }
}

#include <getter.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include "bench/peers/CallPeers.h"
#include "bench/peers/Getter.h"

namespace mlk::bench {

namespace {

class GrpcCaller : public Caller {
  public:
    GrpcCaller() {
        call();
        checkAnswer(mAnswer.known(), mAnswer.value());
    }

    void call() override {
        ::grpc::ClientContext context;
        if (!mStub->GetPanelName(&context, mQuestion, &mAnswer).ok()) {
            throw std::runtime_error("gRPC: a call failed");
        }
    }

  private:
    const std::unique_ptr<::bench::Getter::Stub> mStub =
            ::bench::Getter::NewStub(::grpc::CreateChannel("unix:" + inRuntimeFolder("grpc"),
                                                           ::grpc::InsecureChannelCredentials()));
    const ::bench::Question mQuestion;
    ::bench::Answer mAnswer;
};

}  // namespace

CallContestant grpc() {
    return {"gRPC",
            {"bench_grpc_server"},
            {"grpc-ready"},
            [](const Payload&) -> std::unique_ptr<Caller> {
                return std::make_unique<GrpcCaller>();
            }};
}

}  // namespace mlk::bench

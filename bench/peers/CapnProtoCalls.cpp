#include <capnp/ez-rpc.h>
#include <getter.capnp.h>
#include <kj/exception.h>

#include "bench/peers/CallPeers.h"
#include "bench/peers/Getter.h"

namespace mlk::bench {

namespace {

class CapnProtoCaller : public Caller {
  public:
    CapnProtoCaller() {
        call();
        checkAnswer(mKnown, mValue);
    }
    // The destructors of the members may throw.
    ~CapnProtoCaller() noexcept override {}
    CapnProtoCaller(const CapnProtoCaller&) = delete;
    CapnProtoCaller& operator=(const CapnProtoCaller&) = delete;

    // Throws kj::Exception, a std::exception.
    void call() override {
        auto answer = mGetter.getPanelNameRequest().send().wait(mClient.getWaitScope());
        mKnown = answer.getKnown();
        mValue = answer.getValue().cStr();
    }

  private:
    capnp::EzRpcClient mClient{"unix:" + inRuntimeFolder("capnp")};
    ::bench::Getter::Client mGetter = mClient.getMain<::bench::Getter>();
    bool mKnown = false;
    std::string mValue;
};

}  // namespace

CallContestant capnProto() {
    return {"Cap'n Proto",
            {"bench_capnp_server"},
            {"capnp-ready"},
            [](const Payload&) -> std::unique_ptr<Caller> {
                return std::make_unique<CapnProtoCaller>();
            }};
}

}  // namespace mlk::bench

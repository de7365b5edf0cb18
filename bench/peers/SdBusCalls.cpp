#include "bench/peers/CallPeers.h"
#include "bench/peers/SdBus.h"

namespace mlk::bench {

namespace {

class SdBusCaller : public Caller {
  public:
    SdBusCaller(sd_bus* bus, const char* destination) : mBus(bus), mDestination(destination) {
        call();
        checkAnswer(mKnown != 0, mValue);
    }
    ~SdBusCaller() override { sd_bus_unref(mBus); }
    SdBusCaller(const SdBusCaller&) = delete;
    SdBusCaller& operator=(const SdBusCaller&) = delete;

    void call() override {
        sd_bus_message* reply = nullptr;
        check(sd_bus_call_method(mBus, mDestination, kBusPath, kBusInterface, "GetPanelName",
                                 nullptr, &reply, ""));
        const char* value = nullptr;
        check(sd_bus_message_read(reply, "bs", &mKnown, &value));
        mValue = value;
        sd_bus_message_unref(reply);
    }

  private:
    sd_bus* const mBus;
    const char* const mDestination;
    int mKnown = 0;
    std::string mValue;
};

}  // namespace

CallContestant sdBus() {
    return {"sd-bus",
            {"bench_sdbus_server", "peer"},
            {kPeerSocket},
            [](const Payload&) -> std::unique_ptr<Caller> {
                return std::make_unique<SdBusCaller>(connectToPeer(), nullptr);
            }};
}

CallContestant sdBusDaemon() {
    return {"sd-bus+daemon",
            {"bench_sdbus_server", "daemon"},
            {kBusReady},
            [](const Payload&) -> std::unique_ptr<Caller> {
                return std::make_unique<SdBusCaller>(connectToBus(), kBusName);
            }};
}

}  // namespace mlk::bench

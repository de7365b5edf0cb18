// A service of fakes for the end-to-end tests.
//
//   mlkctl_test_server [INTERFACE]...   registers these, or all three, and serves them
//
// IMlkProjectConfigs::getPowerOnMode is refused by the stub; a file named "/die" kills the process.

#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>
#include <unistd.h>
#include <vendor/morlak/mlkconfigs/1.0/BnHwMlkProjectConfigs.h>

#include <cstdlib>

#include "tools/mlkctl/tests/FakeServices.h"

namespace {

using ::android::hardware::Parcel;
using namespace mlk::ctl;  // the fakes

constexpr uint32_t kGetPowerOnMode = 21;

class Stub : public V1_0::BnHwMlkProjectConfigs {
  public:
    using BnHwMlkProjectConfigs::BnHwMlkProjectConfigs;

    ::android::status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                   TransactCallback callback) override {
        if (code == kGetPowerOnMode) return ::android::BAD_VALUE;
        return BnHwMlkProjectConfigs::onTransact(code, data, reply, flags, callback);
    }
};

template <typename I>
void registerIf(bool wanted, const ::android::sp<I>& service) {
    if (wanted && service->registerAsService() != ::android::OK) _exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    ::android::hardware::configureRpcThreadpool(4, true);
    auto& stubs = ::android::hardware::details::getBnConstructorMap();
    stubs.erase(V1_0::IMlkProjectConfigs::descriptor);
    stubs.set(V1_0::IMlkProjectConfigs::descriptor, [](void* implementation) {
        return ::android::sp<::android::hardware::IBinder>(
                new Stub(static_cast<V1_0::IMlkProjectConfigs*>(implementation)));
    });

    const std::set<std::string> names(argv + 1, argv + argc);
    const auto wanted = [&](const char* name) { return names.empty() || names.count(name) != 0; };
    Script script;
    script.memory = "in shared memory";
    script.exitFile = "/die";
    registerIf(wanted("IMlkProjectConfigs"), makeFakeProject(script));
    registerIf(wanted("IMlkTvConfigs"), makeFakeTv(script));
    registerIf(wanted("IMlkFrameworkConfigs"), makeFakeFramework(script));
    ::android::hardware::joinRpcThreadpool();
}

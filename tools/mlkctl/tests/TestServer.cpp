// A service of fakes for the end-to-end tests.
//
//   mlkctl_test_server [--unsound] [INTERFACE]...   registers these, or all three, and serves them
//   mlkctl_test_server --idle                       is a client instead: connects to a service
//   until
//                                                   it is refused, prints the number of
//                                                   connections, and holds them until its input
//                                                   ends
//
// IMlkProjectConfigs::getPowerOnMode is refused by the stub; a file named "/die" kills the process.
// With --unsound, getProjectId and getHBBTVEnabled answer with truth values of 2.

#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>
#include <unistd.h>
#include <vendor/morlak/mlkconfigs/1.0/BnHwMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/mlkctl/tests/FakeServices.h"

namespace {

using ::android::hardware::Parcel;
using namespace mlk::ctl;  // the fakes

constexpr uint32_t kGetProjectId = 3;
constexpr uint32_t kGetPowerOnMode = 21;
constexpr uint32_t kGetHbbtvEnabled = 27;

bool gUnsound = false;

// An answer whose bytes are all 2, as only a hostile server sends it.
template <typename Answer>
::android::status_t sendUnsound(Parcel* reply,
                                const ::android::hardware::IBinder::TransactCallback& callback) {
    static const std::vector<uint8_t> bytes(sizeof(Answer), 2);
    size_t handle = 0;
    ::android::status_t status =
            ::android::hardware::writeToParcel(::android::hardware::Status::ok(), reply);
    if (status == ::android::OK) {
        status = reply->writeBuffer(bytes.data(), bytes.size(), &handle);
    }
    if (status == ::android::OK) {
        callback(*reply);
    }
    return status;
}

class Stub : public V1_0::BnHwMlkProjectConfigs {
  public:
    using BnHwMlkProjectConfigs::BnHwMlkProjectConfigs;

    ::android::status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                   TransactCallback callback) override {
        if (code == kGetPowerOnMode) {
            return ::android::BAD_VALUE;
        }
        if (gUnsound && code == kGetProjectId) {
            return sendUnsound<V1_0::OptionalInt32>(reply, callback);
        }
        if (gUnsound && code == kGetHbbtvEnabled) {
            return sendUnsound<V1_0::OptionalBool>(reply, callback);
        }
        return BnHwMlkProjectConfigs::onTransact(code, data, reply, flags, callback);
    }
};

template <typename I>
void registerIf(bool wanted, const ::android::sp<I>& service) {
    if (wanted && service->registerAsService() != ::android::OK) {
        _exit(1);
    }
}

void holdIdleConnections() {
    std::vector<::android::sp<V1_0::IMlkTvConfigs>> connections;
    while (auto one = V1_0::IMlkTvConfigs::getService()) {
        connections.push_back(std::move(one));
    }
    (void)printf("%zu connections\n", connections.size());
    (void)fflush(stdout);
    char byte = 0;
    while (read(STDIN_FILENO, &byte, 1) > 0) {
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && argv[1] == std::string_view("--idle")) {
        holdIdleConnections();
        return 0;
    }
    ::android::hardware::configureRpcThreadpool(4, true);
    auto& stubs = ::android::hardware::details::getBnConstructorMap();
    stubs.erase(V1_0::IMlkProjectConfigs::descriptor);
    stubs.set(V1_0::IMlkProjectConfigs::descriptor, [](void* implementation) {
        return ::android::sp<::android::hardware::IBinder>(
                new Stub(static_cast<V1_0::IMlkProjectConfigs*>(implementation)));
    });

    std::set<std::string> names(argv + 1, argv + argc);
    gUnsound = names.erase("--unsound") != 0;
    const auto wanted = [&](const char* name) { return names.empty() || names.count(name) != 0; };
    Script script;
    script.memory = "in shared memory";
    script.exitFile = "/die";
    registerIf(wanted("IMlkProjectConfigs"), makeFakeProject(script));
    registerIf(wanted("IMlkTvConfigs"), makeFakeTv(script));
    registerIf(wanted("IMlkFrameworkConfigs"), makeFakeFramework(script));
    ::android::hardware::joinRpcThreadpool();
}

// Calls of every method of the three services, and of those that every interface has, through the
// stubs and the transport that serve clients. CallScript.h says what an input is.

#include <fcntl.h>
#include <hidl/HidlTransportSupport.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "host/memory/AshmemAllocator.h"
#include "host/memory/SharedBlock.h"
#include "host/testing/HostSet.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/MlkProjectConfigsStub.h"
#include "service/Services.h"
#include "service/tests/fuzz/CallScript.h"
#include "tvconfigs/MlkTvConfigs.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;
using mlk::test::RawClient;

namespace {

constexpr size_t kThreads = 4;
// More than the process needs; inputs that leak descriptors reach it.
constexpr int kMostDescriptors = 200;

// A copy of the sample's set; it is removed when the process ends.
mlk::testing::HostSet& set() {
    static mlk::testing::HostSet theSet;
    return theSet;
}

// The services on the set, in this process, and a client of each.
class Server {
  public:
    Server() {
        set().copyFrom(MLK_SAMPLES_DIR "/partitions");
        // Nobody reads the log.
        set().setProperty("persist.vendor.mlk.configs.debug", "0");
        android::hardware::configureRpcThreadpool(kThreads, false /* callerWillJoin */);
        installMlkProjectConfigsStub();
        mServices.reset(new Services({[] { return new MlkProjectConfigs; },
                                      [](const char* path) { return new MlkTvConfigs(path); },
                                      [] { return new MlkFrameworkConfigs; }}));
        const android::sp<android::hidl::allocator::V1_0::IAllocator> allocator =
                new mlk::host::AshmemAllocator;
        fuzzing::require(allocator->registerAsService(mlk::host::kAshmem) == android::OK,
                         "the allocator is registered");
        mAllocator = allocator;
        connect();
    }

    void connect() {
        mClients.clear();
        for (const std::string& service : fuzzing::services()) {
            mClients.push_back(std::make_unique<RawClient>(set().runtime(), service));
            fuzzing::require(mClients.back()->hello(), "a client is welcome");
        }
    }
    RawClient& client(size_t service) { return *mClients[service]; }

  private:
    std::unique_ptr<const Services> mServices;
    android::sp<android::hidl::allocator::V1_0::IAllocator> mAllocator;
    std::vector<std::unique_ptr<RawClient>> mClients;
};

Server& server() {
    // Never ends: the pool's threads run as long as the process.
    static auto* const theServer = new Server;
    return *theServer;
}

// Descriptors that clients send: one that accepts all bytes, one that accepts none, and one end of
// a connection whose other end is closed.
std::vector<int> descriptors() {
    int ends[2];
    fuzzing::require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "sockets");
    close(ends[1]);
    return {open("/dev/null", O_WRONLY | O_CLOEXEC), open("/dev/null", O_RDONLY | O_CLOEXEC),
            ends[0]};
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<int> kDescriptors = descriptors();
    fuzzing::ScriptReader script(data, size, set().dir().path(), kDescriptors);
    while (const auto call = script.next()) {
        RawClient& client = server().client(call->service);
        fuzzing::require(client.send(call->message), "a call can be sent");
        // A call without the descriptors that it claims may be refused as malformed.
        const bool isAnswered = call->isOneway || client.replyStatus().has_value();
        fuzzing::require(isAnswered || !call->isWhole, "a call is answered");
        if (!call->isWhole) {
            server().connect();
        }
    }
    const int lowest = dup(kDescriptors[0]);
    fuzzing::require(lowest < kMostDescriptors, "no descriptors are left behind");
    close(lowest);
    return 0;
}

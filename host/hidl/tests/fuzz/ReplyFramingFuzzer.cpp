// Feeds a client with bytes and descriptors as a server's reply. The first byte of an input is the
// index of the call in calls(), the second the number of descriptors that are sent with the reply;
// the rest is the reply.

#include <fcntl.h>
#include <hidl/HidlTransportSupport.h>
#include <sys/socket.h>
#include <unistd.h>

#include <mlk/test/everything/1.0/BpHwEverything.h>

#include "Calls.h"
#include "host/hidl/src/RemoteBinder.h"
#include "host/hidl/src/Socket.h"
#include "host/testing/fuzz/Fuzzing.h"

namespace fuzzing = mlk::fuzzing;
namespace transport = android::hardware::transport;
using android::base::unique_fd;
using mlk::test::IEverything;

namespace {

constexpr size_t kMostDescriptors = 8;
constexpr int kMostOpen = 100;
// The number of bytes that a socket buffers without a reader.
constexpr size_t kMostBytes = size_t{64} * 1024;

std::vector<int> makeDescriptors() {
    std::vector<int> made;
    for (size_t i = 0; i < kMostDescriptors; ++i) {
        unique_fd near;
        unique_fd far;
        fuzzing::require(transport::connectedPair(&near, &far) == android::OK, "sockets");
        made.push_back(i % 2 == 0 ? near.release() : open("/dev/null", O_RDWR | O_CLOEXEC));
    }
    return made;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<int> kDescriptors = makeDescriptors();
    if (size < 3 || size > kMostBytes) {
        return 0;
    }
    unique_fd near;
    unique_fd far;
    fuzzing::require(transport::connectedPair(&near, &far) == android::OK, "sockets");
    transport::Sending reply;
    reply.pieces = {{const_cast<uint8_t*>(data) + 2, size - 2}};
    const auto first = kDescriptors.begin();
    reply.descriptors.assign(first, first + data[1] % static_cast<int>(kMostDescriptors));
    // The reply is sent before the call.
    fuzzing::require(transport::sendPieces(far.get(), &reply, 0) == 0, "a reply can be sent");
    (void)shutdown(far.get(), SHUT_WR);
    {
        const android::sp<android::hardware::IBinder> remote =
                transport::RemoteBinder::fromConnection(std::move(near));
        const android::sp<IEverything> proxy =
                new mlk::test::everything::V1_0::BpHwEverything(remote);
        const auto& calls = mlk::test::calls();
        calls[data[0] % calls.size()](*proxy);
    }
    const int lowest = dup(STDERR_FILENO);
    fuzzing::require(lowest < kMostOpen, "no descriptor leaks");
    close(lowest);
    return 0;
}

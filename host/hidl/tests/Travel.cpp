#include "Travel.h"

#include <thread>

#include "host/hidl/src/MessageReader.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/Wire.h"

namespace mlk::test {

namespace transport = ::android::hardware::transport;
using ::android::status_t;
using ::android::hardware::Parcel;

status_t travel(const Parcel& sent, Parcel* arrived) {
    transport::unique_fd here;
    transport::unique_fd there;
    if (transport::connectedPair(&here, &there) != ::android::OK) {
        return ::android::NO_INIT;
    }
    transport::OutgoingMessage message;
    const status_t encoded =
            message.encode(sent, transport::MessageType::CALL, 1, transport::kMaxCallBody);
    if (encoded != ::android::OK) {
        return encoded;
    }
    // The message may be larger than the socket's buffer.
    std::thread sender([&] { (void)transport::sendPieces(here.get(), &message.sending(), 0); });
    transport::MessageReader reader(transport::kMaxCallBody);
    const auto result = reader.read(there.get(), 0, 0);
    sender.join();
    if (result != transport::MessageReader::Result::MESSAGE) {
        return ::android::NOT_ENOUGH_DATA;
    }
    return arrived->adopt(reader.take());
}

}  // namespace mlk::test

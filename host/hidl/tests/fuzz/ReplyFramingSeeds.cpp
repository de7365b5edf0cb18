// Writes inputs for the fuzzer of replies: the replies of every method, and malformed ones.
// Argument: the folder.

#include <sys/socket.h>

#include <mlk/test/everything/1.0/BpHwEverything.h>

#include <initializer_list>
#include <string>

#include "Calls.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/Wire.h"
#include "host/testing/fuzz/Fuzzing.h"

using namespace mlk::test;
namespace fuzzing = mlk::fuzzing;
namespace transport = android::hardware::transport;
using android::sp;
using android::status_t;
using android::wp;
using android::hardware::IBinder;
using android::hardware::Parcel;

namespace {

// A message in the form in which it is sent, after the two bytes that begin an input.
std::string inputOf(size_t call, transport::OutgoingMessage& message) {
    transport::Sending& sending = message.sending();
    std::string input = {static_cast<char>(call), static_cast<char>(sending.descriptors.size())};
    for (const iovec& piece : sending.pieces) {
        input.append(static_cast<const char*>(piece.iov_base), piece.iov_len);
    }
    return input;
}

// Sits between a proxy and the stub and records the replies.
class Recorder : public IBinder {
  public:
    Recorder(const sp<IBinder>& stub, size_t call) : mStub(stub), mCall(call) {}

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                      TransactCallback /* callback */) override {
        const auto record = [&](Parcel& parcel) {
            transport::OutgoingMessage message;
            fuzzing::require(message.encode(parcel, transport::MessageType::REPLY, android::OK,
                                            transport::kMaxReplyBody) == android::OK,
                             "a reply can travel");
            mInput = inputOf(mCall, message);
        };
        (void)mStub->transact(code, data, reply, flags, record);
        // The reply's buffers are destroyed by now.
        return android::UNKNOWN_ERROR;
    }
    status_t linkToDeath(const sp<DeathRecipient>&) override { return android::INVALID_OPERATION; }
    status_t unlinkToDeath(const wp<DeathRecipient>&) override {
        return android::INVALID_OPERATION;
    }
    const std::string& input() const { return mInput; }

  private:
    const sp<IBinder> mStub;
    const size_t mCall;
    std::string mInput;
};

}  // namespace

int main(int argc, char** argv) {
    fuzzing::require(argc == 2, "the argument is a folder");
    const std::string folder = argv[1];
    const sp<IEverything> service = new TameEverything;
    const sp<IBinder> stub = android::hardware::toBinder(service);
    for (size_t i = 0; i < calls().size(); ++i) {
        const sp<Recorder> recorder = new Recorder(stub, i);
        const sp<IEverything> proxy = new everything::V1_0::BpHwEverything(recorder);
        calls()[i](*proxy);
        fuzzing::writeFile(folder + "/call." + std::to_string(i), recorder->input());
    }
    for (const status_t status :
         std::initializer_list<status_t>{android::BAD_VALUE, android::DEAD_OBJECT, 1}) {
        transport::OutgoingMessage message;
        message.encodeStatus(status);
        fuzzing::writeFile(folder + "/status." + std::to_string(status), inputOf(0, message));
    }
    return 0;
}

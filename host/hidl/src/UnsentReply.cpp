#include "UnsentReply.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace android::hardware::transport {

bool UnsentReply::keep(const Sending& message) {
    const size_t size = message.left();
    if (!mStall.keep(size, message.begun ? 0 : message.descriptors.size())) {
        return false;
    }
    mSize = size;
    mBytes.reset(new (std::nothrow) uint8_t[size]);
    if (mBytes == nullptr) {
        drop();
        return false;
    }
    size_t filled = 0;
    for (size_t i = message.next; i < message.pieces.size(); ++i) {
        const iovec& piece = message.pieces[i];
        memcpy(mBytes.get() + filled, piece.iov_base, piece.iov_len);
        filled += piece.iov_len;
    }
    mSending.pieces.push_back({mBytes.get(), size});
    mSending.begun = message.begun;
    mSending.announced = message.announced;
    if (message.begun) {
        return true;
    }
    for (const int descriptor : message.descriptors) {
        // It has an owner before the vector grows, for which memory may be missing.
        unique_fd copy(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
        mDescriptors.push_back(std::move(copy));
        mSending.descriptors.push_back(mDescriptors.back().get());
        if (!mDescriptors.back().ok()) {
            drop();
            return false;
        }
    }
    return true;
}

bool UnsentReply::flush() {
    if (empty()) {
        return true;
    }
    const size_t before = mSending.left();
    const int error = sendPieces(mSocket, &mSending, MSG_DONTWAIT);
    if (error == 0) {
        drop();
        return true;
    }
    if (error != EAGAIN) {
        return false;
    }
    if (mSending.left() == before) {
        return true;
    }
    // They were sent with the first byte.
    if (!mDescriptors.empty()) {
        mDescriptors.clear();
        if (!mStall.keep(mSize, 0)) {
            return false;
        }
    }
    mStall.progress();
    return true;
}

void UnsentReply::drop() {
    mStall.end();
    mSize = 0;
    mBytes.reset();
    mSending.clear();
    mDescriptors.clear();
}

}  // namespace android::hardware::transport

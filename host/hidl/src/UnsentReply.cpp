#include "UnsentReply.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>

#include "Wire.h"

namespace android::hardware::transport {

namespace {

// What all connections may keep together: the largest reply once.
constexpr uint64_t kMaxKept = kMaxReplyBody + sizeof(Header);

std::atomic<uint64_t>& kept() {
    static std::atomic<uint64_t> bytes{0};
    return bytes;
}

}  // namespace

bool UnsentReply::keep(const Sending& message) {
    const size_t size = message.left();
    if (kept().fetch_add(size) + size > kMaxKept) {
        kept().fetch_sub(size);
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
    if (message.begun) return true;
    for (const int descriptor : message.descriptors) {
        mDescriptors.emplace_back(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
        mSending.descriptors.push_back(mDescriptors.back().get());
        if (!mDescriptors.back().ok()) {
            drop();
            return false;
        }
    }
    return true;
}

bool UnsentReply::flush(int socket) {
    if (empty()) return true;
    const int error = sendPieces(socket, &mSending, MSG_DONTWAIT);
    if (mSending.begun) mDescriptors.clear();
    if (error == 0) drop();
    return error == 0 || error == EAGAIN;
}

void UnsentReply::drop() {
    kept().fetch_sub(mSize);
    mSize = 0;
    mBytes.reset();
    mSending.clear();
    mDescriptors.clear();
}

}  // namespace android::hardware::transport

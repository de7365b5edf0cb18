#include "MessageReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

#include "Socket.h"

namespace android::hardware::transport {

namespace {
constexpr size_t kFirstCapacity = 4096;
}  // namespace

MessageReader::Result MessageReader::inspect() {
    if (mTotal == 0) {
        if (mFilled < sizeof(Header)) {
            return Result::AGAIN;
        }
        const Header& header = mMessage.header();
        if (header.magic != Header::kMagic || header.bodySize > mBodyLimit ||
            header.bodySize % 8 != 0 || header.fdCount > kMaxDescriptors) {
            return Result::RUBBISH;
        }
        mTotal = sizeof(Header) + static_cast<size_t>(header.bodySize);
        if (!mMessage.reserve(mTotal, mFilled)) {
            return Result::RUBBISH;
        }
    }
    // A descriptor arrives no later than the bytes it was sent with, and no sender sends more than
    // a message declares. Surplus descriptors belong to the bytes that follow, if there are any.
    const size_t wanted = mMessage.header().fdCount;
    if (mMessage.descriptors.size() > wanted && mFilled <= mTotal) {
        return Result::RUBBISH;
    }
    return mFilled < mTotal ? Result::AGAIN : Result::MESSAGE;
}

bool MessageReader::hasResult() {
    return inspect() != Result::AGAIN;
}

void MessageReader::trim() {
    const size_t needed = mFilled == 0 ? 0 : std::max({mFilled, mTotal, kFirstCapacity});
    if (mMessage.capacity <= needed) {
        return;
    }
    IncomingMessage fitting;
    fitting.descriptors = std::move(mMessage.descriptors);
    if (needed != 0 && !fitting.reserveExactly(needed)) {
        mMessage.descriptors = std::move(fitting.descriptors);
        return;
    }
    if (mFilled != 0) {
        memcpy(fitting.bytes.get(), mMessage.bytes.get(), mFilled);
    }
    const IncomingMessage larger = std::move(mMessage);  // its memory serves the next one
    mMessage = std::move(fitting);
}

MessageReader::Result MessageReader::read(int socket, int flagsFirst, int flagsRest) {
    if (!mMessage.reserve(kFirstCapacity, mFilled)) {
        return Result::RUBBISH;
    }
    while (true) {
        const Result state = inspect();
        if (state != Result::AGAIN) {
            return state;
        }
        const int flags = mFilled == 0 ? flagsFirst : flagsRest;
        const ssize_t got = receiveBytes(socket, mMessage.bytes.get() + mFilled,
                                         mMessage.capacity - mFilled, &mMessage.descriptors, flags);
        if (got == 0) {
            return Result::CLOSED;
        }
        if (got < 0) {
            return errno == EAGAIN ? Result::AGAIN : Result::CLOSED;
        }
        mFilled += static_cast<size_t>(got);
        // No message has more. Surplus descriptors belong to the next message, which has arrived.
        const size_t most =
                mTotal == 0 && mFilled < sizeof(Header) ? kMaxDescriptors : 2 * kMaxDescriptors;
        if (mMessage.descriptors.size() > most) {
            return Result::RUBBISH;
        }
    }
}

IncomingMessage MessageReader::take() {
    IncomingMessage taken = std::move(mMessage);
    const size_t total = std::exchange(mTotal, 0);
    const size_t rest = std::exchange(mFilled, 0) - total;
    const size_t belonging = std::min<size_t>(taken.header().fdCount, taken.descriptors.size());
    if (rest == 0 && belonging == taken.descriptors.size()) {
        return taken;
    }
    const auto others = taken.descriptors.begin() + static_cast<ptrdiff_t>(belonging);
    mMessage.descriptors.assign(std::make_move_iterator(others),
                                std::make_move_iterator(taken.descriptors.end()));
    taken.descriptors.resize(belonging);
    if (rest != 0) {
        if (!mMessage.reserve(std::max(rest, kFirstCapacity), 0)) {
            throw std::bad_alloc();
        }
        memcpy(mMessage.bytes.get(), taken.bytes.get() + total, rest);
        mFilled = rest;
    }
    return taken;
}

}  // namespace android::hardware::transport

#include "MessageReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "Socket.h"

namespace android::hardware::transport {

namespace {
constexpr size_t kFirstCapacity = 4096;
// A buffer that grew beyond this for one message is not kept for the next.
constexpr size_t kKeptCapacity = size_t{64} * 1024;
}  // namespace

void MessageReader::reserve(size_t capacity) {
    if (mMessage.capacity >= capacity) return;
    std::unique_ptr<uint8_t[]> larger(new uint8_t[capacity]);
    if (mFilled != 0) memcpy(larger.get(), mMessage.bytes.get(), mFilled);
    mMessage.bytes = std::move(larger);
    mMessage.capacity = capacity;
}

MessageReader::Result MessageReader::inspect() {
    if (mTotal == 0) {
        if (mFilled < sizeof(Header)) return Result::AGAIN;
        const Header& header = mMessage.header();
        if (header.magic != Header::kMagic || header.bodySize > mBodyLimit ||
            header.bodySize % 8 != 0 || header.fdCount > kMaxDescriptors) {
            return Result::RUBBISH;
        }
        mTotal = sizeof(Header) + static_cast<size_t>(header.bodySize);
        reserve(mTotal);
    }
    if (mFilled < mTotal) return Result::AGAIN;
    const size_t wanted = mMessage.header().fdCount;
    // Descriptors arrive no later than the bytes they were sent with, and nobody sends more than a
    // message says: what is left over belongs to the bytes behind it, if there are any.
    if (mMessage.descriptors.size() < wanted) return Result::RUBBISH;
    if (mMessage.descriptors.size() > wanted && mFilled == mTotal) return Result::RUBBISH;
    return Result::MESSAGE;
}

MessageReader::Result MessageReader::read(int socket, int flagsFirst, int flagsRest) {
    reserve(kFirstCapacity);
    while (true) {
        const Result state = inspect();
        if (state != Result::AGAIN) return state;
        const int flags = mFilled == 0 ? flagsFirst : flagsRest;
        const ssize_t got = receiveBytes(socket, mMessage.bytes.get() + mFilled,
                                         mMessage.capacity - mFilled, &mMessage.descriptors, flags);
        if (got == 0) return Result::CLOSED;
        if (got < 0) return errno == EAGAIN ? Result::AGAIN : Result::CLOSED;
        if (mMessage.descriptors.size() > 2 * kMaxDescriptors) return Result::RUBBISH;
        mFilled += static_cast<size_t>(got);
    }
}

IncomingMessage MessageReader::take() {
    IncomingMessage taken = std::move(mMessage);
    mMessage = {};
    const size_t rest = mFilled - mTotal;
    const auto belonging = static_cast<ptrdiff_t>(taken.header().fdCount);
    mMessage.descriptors.assign(std::make_move_iterator(taken.descriptors.begin() + belonging),
                                std::make_move_iterator(taken.descriptors.end()));
    taken.descriptors.resize(static_cast<size_t>(belonging));
    mFilled = 0;
    if (rest != 0) {
        reserve(std::max(rest, kFirstCapacity));
        memcpy(mMessage.bytes.get(), taken.bytes.get() + mTotal, rest);
        mFilled = rest;
    }
    mTotal = 0;
    return taken;
}

void MessageReader::reuse(IncomingMessage message) {
    if (mMessage.bytes != nullptr || message.capacity > kKeptCapacity) return;
    mMessage.bytes = std::move(message.bytes);
    mMessage.capacity = message.capacity;
}

}  // namespace android::hardware::transport

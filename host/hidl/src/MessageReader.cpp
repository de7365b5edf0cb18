#include "MessageReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "Socket.h"

namespace android::hardware::transport {

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
    if (mFilled > mTotal || mMessage.descriptors.size() > mMessage.header().fdCount) {
        return Result::RUBBISH;
    }
    return mFilled < mTotal ? Result::AGAIN : Result::MESSAGE;
}

void MessageReader::trim() {
    const size_t needed = std::max(mFilled, mTotal);
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
    Result state = mFilled == 0 ? Result::AGAIN : inspect();
    while (state == Result::AGAIN) {
        const size_t end = mTotal != 0 ? mTotal : kMostPacketBytes;
        if (!mMessage.reserve(end, mFilled)) {
            return Result::RUBBISH;
        }
        const bool isFirst = mFilled == 0 && !mExpectsDescriptors;
        const ssize_t got = receiveBytes(socket, mMessage.bytes.get() + mFilled, end - mFilled,
                                         isFirst ? nullptr : &mMessage.descriptors,
                                         isFirst ? flagsFirst : flagsRest);
        if (got < 0 && errno == EAGAIN) {
            return Result::AGAIN;
        }
        if (got <= 0) {
            return errno == EMSGSIZE && got < 0 ? Result::RUBBISH : Result::CLOSED;
        }
        mFilled += static_cast<size_t>(got);
        // No message has more, whatever its header says.
        if (mMessage.descriptors.size() > kMaxDescriptors) {
            return Result::RUBBISH;
        }
        state = inspect();
        if (state != Result::MESSAGE || mMessage.header().type != MessageType::DESCRIPTORS) {
            continue;
        }
        const bool isRepeated = mExpectsDescriptors;
        (void)take();
        mExpectsDescriptors = true;
        if (isRepeated) {
            return Result::AGAIN;
        }
        state = Result::AGAIN;
    }
    return state;
}

IncomingMessage MessageReader::take() {
    mFilled = 0;
    mTotal = 0;
    mExpectsDescriptors = false;
    return std::move(mMessage);
}

}  // namespace android::hardware::transport

#include "tools/mlkctl/LineInput.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace mlk::ctl {

bool LineInput::hasLine() {
    const size_t newline = mBuffer.find('\n', mSearched);
    mSearched = newline == std::string::npos ? mBuffer.size() : newline;
    return newline != std::string::npos;
}

bool LineInput::fill() {
    constexpr size_t kPiece = size_t{64} * 1024;
    mBuffer.erase(0, mBegin);
    mSearched -= mBegin;
    mBegin = 0;
    const size_t kept = mBuffer.size();
    mBuffer.resize(kept + kPiece);
    ssize_t got = read(mDescriptor, mBuffer.data() + kept, kPiece);
    while (got < 0 && (errno == EINTR || errno == EAGAIN)) {
        // Another process that shares the pipe may have made it non-blocking.
        pollfd input{mDescriptor, POLLIN, 0};
        if (errno == EAGAIN) {
            (void)poll(&input, 1, -1);
        }
        got = read(mDescriptor, mBuffer.data() + kept, kPiece);
    }
    mBuffer.resize(kept + static_cast<size_t>(got < 0 ? 0 : got));
    if (got < 0) {
        throw std::system_error(errno, std::generic_category(), "standard input");
    }
    return got > 0;
}

LineInput::Next LineInput::next(std::string_view* line) {
    bool more = true;
    while (more && !hasLine()) {
        if (mBuffer.size() - mBegin > mLimit) {
            mSkipping = true;
            mBegin = mSearched = mBuffer.size();
        }
        more = fill();
    }
    // Without a newline, the rest of the input is the last line, unless it is empty.
    const size_t end = mSearched;
    const bool skipped = mSkipping;
    if (!more && end == mBegin && !skipped) {
        return Next::END;
    }
    *line = std::string_view(mBuffer).substr(mBegin, end - mBegin);
    mBegin = mSearched = more ? end + 1 : end;
    mSkipping = false;
    return skipped || line->size() > mLimit ? Next::TOO_LONG : Next::LINE;
}

}  // namespace mlk::ctl

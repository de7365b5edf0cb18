#include "tools/common/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tools/common/Text.h"

namespace mlk {

Output::Output(int descriptor) : mDescriptor(descriptor), mIsTerminal(isatty(descriptor) != 0) {}

void Output::bytes(std::string_view text) {
    if (mIsTerminal) {
        write(forTerminal(text));
    } else {
        write(text);
    }
}

void Output::write(std::string_view text) {
    constexpr size_t kPiece = size_t{64} * 1024;
    mPending += text;
    if (mPending.size() >= kPiece) {
        flush();
    }
}

void Output::line(std::string_view text) {
    write(text);
    write("\n");
}

void Output::flush() {
    size_t done = 0;
    while (done < mPending.size()) {
        const ssize_t written = TEMP_FAILURE_RETRY(
                ::write(mDescriptor, mPending.data() + done, mPending.size() - done));
        if (written < 0 && errno == EAGAIN) {
            // Another process that shares the pipe has made it non-blocking.
            pollfd space{mDescriptor, POLLOUT, 0};
            (void)poll(&space, 1, -1);
            continue;
        }
        if (written < 0) {
            throw std::system_error(errno, std::generic_category(), "standard output");
        }
        done += static_cast<size_t>(written);
    }
    mPending.clear();
}

}  // namespace mlk

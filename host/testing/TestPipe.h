#pragma once

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <string>
#include <system_error>

namespace mlk::testing {

/** A pipe of one page, as a client of the service sends it. */
class TestPipe {
  public:
    static constexpr size_t kSize = 4096;

    TestPipe() {
        if (!::android::base::Pipe(&mRead, &mWrite) ||
            fcntl(mWrite.get(), F_SETPIPE_SZ, kSize) != kSize) {
            throw std::system_error(errno, std::generic_category(), "a pipe");
        }
    }

    /** Fills the pipe, which must be empty. */
    TestPipe& fill() {
        const std::array<char, kSize> bytes{};
        if (write(mWrite.get(), bytes.data(), bytes.size()) != kSize) {
            throw std::system_error(errno, std::generic_category(), "a pipe's bytes");
        }
        return *this;
    }

    /** Returns the next bytes, at most `size`; empty when all writers have closed the pipe. */
    std::string read(size_t size = kSize) const {
        std::string text(size, '\0');
        const ssize_t got = ::read(mRead.get(), text.data(), text.size());
        text.resize(got > 0 ? static_cast<size_t>(got) : 0);
        return text;
    }

    /**
     * Whether, within half a minute, the pipe has something to read or all writers have closed it.
     */
    bool isReadable() const {
        constexpr int kLimit = 30'000;
        pollfd input{mRead.get(), POLLIN, 0};
        return poll(&input, 1, kLimit) == 1;
    }

    /** The writing end; the pipe keeps owning it. */
    int writeEnd() const { return mWrite.get(); }
    void closeRead() { mRead.reset(); }
    void closeWrite() { mWrite.reset(); }

  private:
    ::android::base::unique_fd mRead;
    ::android::base::unique_fd mWrite;
};

}  // namespace mlk::testing

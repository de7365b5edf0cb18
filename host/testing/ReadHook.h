#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace mlk::testing {

/**
 * While it lives, each read(2) of the thread that made it comes to a function of the test, which
 * can give less than was asked, fail, throw, or change the file in between:
 *
 *     ReadHook hook([](int descriptor, void* bytes, size_t size) {
 *         return ReadHook::calls() == 2 ? ReadHook::fail(EIO)
 *                                       : ReadHook::read(descriptor, bytes, size);
 *     });
 *
 * For tests of code that is part of the test program. Only one at a time in a thread.
 */
class ReadHook {
  public:
    using Read = std::function<ssize_t(int descriptor, void* bytes, size_t size)>;

    explicit ReadHook(Read read);
    ~ReadHook();
    ReadHook(const ReadHook&) = delete;
    ReadHook& operator=(const ReadHook&) = delete;

    /** The number of reads so far, including the one that the function handles. */
    static int calls();

    /** Calls read(2). */
    static ssize_t read(int descriptor, void* bytes, size_t size);

    /** A read that fails with this errno. */
    static ssize_t fail(int error);
};

}  // namespace mlk::testing

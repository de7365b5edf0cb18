// Handles, pipes and blocks of memory for tests.
#pragma once

#include <android-base/unique_fd.h>
#include <hidl/HidlSupport.h>

#include <string>
#include <vector>

namespace mlk::test {

using ::android::base::unique_fd;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_memory;

/** Makes a handle that owns its descriptors. */
hidl_handle handleOf(std::vector<unique_fd> descriptors, const std::vector<int>& numbers = {});

struct Pipe {
    Pipe();
    unique_fd out;  // bytes written to `in` arrive here
    unique_fd in;
};

/** A memfd with this text. */
unique_fd fileWith(const std::string& text);
/** Shared memory, named "ashmem", that owns its descriptor and contains this text. */
hidl_memory memoryWith(const std::string& text);

/** Returns the whole content of the file. */
std::string contentOf(int file);
/** Reads until the other end of the pipe is closed everywhere, or `most` bytes have arrived. */
std::string readFrom(int pipe, size_t most);

/** The open descriptors of this process that a program would inherit. */
std::vector<int> inheritable();

}  // namespace mlk::test

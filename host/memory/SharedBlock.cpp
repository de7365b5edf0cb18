#include "host/memory/SharedBlock.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <cerrno>
#include <limits>
#include <utility>

namespace mlk::host {

using ::android::base::unique_fd;

namespace {

bool reserve(int block, uint64_t size) {
    return TEMP_FAILURE_RETRY(fallocate(block, 0, 0, static_cast<off_t>(size))) == 0;
}

}  // namespace

unique_fd createSharedBlock(uint64_t size) {
    if (size > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) {
        errno = EFBIG;
        return {};
    }
    unique_fd block(memfd_create(kAshmem, MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const bool made =
            block.ok() && reserve(block.get(), size) &&
            fcntl(block.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0;
    return made ? std::move(block) : unique_fd();
}

}  // namespace mlk::host

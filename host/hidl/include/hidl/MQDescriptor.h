#pragma once

#include <cstdint>

namespace android::hardware {

/** The kinds of fast message queues. Generated code names the first. */
enum MQFlavor : uint32_t {
    kSynchronizedReadWrite = 0x01,
    kUnsynchronizedWrite = 0x02,
};

/**
 * The description of a fast message queue. The host's runtime has no queues and cannot send their
 * descriptions. The class exists because all generated code checks its size.
 */
template <typename T, MQFlavor flavor>
class MQDescriptor {
  private:
    [[maybe_unused]] uint64_t mReserved[4];
};

}  // namespace android::hardware

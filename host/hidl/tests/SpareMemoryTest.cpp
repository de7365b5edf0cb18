// The memory that a thread keeps for the next message or parcel.
#include <gtest/gtest.h>
#include <hwbinder/Parcel.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/hidl/src/Wire.h"

namespace mlk::test {
namespace {

using ::android::hardware::Parcel;
using ::android::hardware::transport::IncomingMessage;

TEST(SpareMemoryTest, LargeMessagesAreGivenBack) {
    constexpr size_t kMostKept = size_t{64} * 1024;
    for (const size_t size : {size_t{5000}, kMostKept, kMostKept + 1, size_t{1} << 20U}) {
        const uint8_t* bytes = nullptr;
        {
            IncomingMessage message;
            ASSERT_TRUE(message.reserve(size, 0));
            bytes = message.bytes.get();
        }
        IncomingMessage next;
        ASSERT_TRUE(next.reserve(1, 0));
        EXPECT_LE(next.capacity, kMostKept) << size;
        // The next message reuses memory of a usual size without another allocation.
        EXPECT_TRUE(size > kMostKept || bytes == next.bytes.get()) << size;
    }
}

TEST(SpareMemoryTest, LargeParcelsAreGivenBack) {
    constexpr size_t kMostKept = size_t{16} * 1024;
    const std::string block(1, 'b');
    size_t handle = 0;
    {
        Parcel parcel;
        for (size_t i = 0; i < kMostKept; ++i) {
            (void)parcel.writeInt32(1);
        }
    }
    EXPECT_LE(Parcel().data().capacity(), kMostKept);
    {
        Parcel parcel;
        for (int i = 0; i < 1000; ++i) {
            (void)parcel.writeBuffer(block.data(), 1, &handle);
        }
    }
    EXPECT_LE(Parcel().objects().capacity() * sizeof(Parcel::Object), kMostKept);
}

TEST(SpareMemoryTest, FewParcelsAreKept) {
    constexpr size_t kMostKept = 4;
    constexpr size_t kSize = 4000;
    const auto parcels = [] {
        std::vector<std::unique_ptr<Parcel>> made;
        for (size_t i = 0; i < 3 * kMostKept; ++i) {
            made.push_back(std::make_unique<Parcel>());
        }
        return made;
    };
    for (const auto& parcel : parcels()) {
        for (size_t i = 0; i < kSize / 4; ++i) {
            (void)parcel->writeInt32(1);
        }
    }
    size_t used = 0;
    for (const auto& parcel : parcels()) {
        used += parcel->data().capacity() >= kSize ? 1 : 0;
    }
    EXPECT_EQ(used, kMostKept);
}

}  // namespace
}  // namespace mlk::test

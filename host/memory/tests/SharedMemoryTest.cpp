// Sends blocks from the allocator's process through this one to a third.

#include <android/hidl/memory/1.0/IMapper.h>
#include <gtest/gtest.h>
#include <hidlmemory/mapping.h>

#include <algorithm>
#include <vector>

#include "host/memory/tests/Allocations.h"
#include "host/memory/tests/AllocatorProcess.h"
#include "host/testing/Process.h"

namespace mlk::host {
namespace {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::mapMemory;
using ::android::hidl::allocator::V1_0::IAllocator;
using ::android::hidl::memory::V1_0::IMapper;
using ::android::hidl::memory::V1_0::IMemory;
using ::mlk::testing::Process;

// A pattern that differs between pages and between blocks.
uint8_t patternAt(size_t index, uint64_t size) {
    return static_cast<uint8_t>(index * 31 + index / 4096 + size);
}

class SharedMemory : public ::testing::TestWithParam<uint64_t> {
  protected:
    AllocatorProcess mAllocator;
    Process mInverter{{INVERTER_PROGRAM}};
};

TEST_P(SharedMemory, IsTheSameInAllProcesses) {
    const uint64_t size = GetParam();
    const sp<IAllocator> allocator = mAllocator.service();
    ASSERT_NE(allocator, nullptr);
    const auto memory = allocate(*allocator, size);
    ASSERT_TRUE(memory.has_value());
    EXPECT_EQ(memory->name(), "ashmem");
    EXPECT_EQ(memory->size(), size);

    const sp<IMemory> mapped = mapMemory(*memory);
    ASSERT_NE(mapped, nullptr);
    ASSERT_EQ(mapped->getSize(), size);
    uint8_t* const bytes = bytesOf(mapped);
    EXPECT_TRUE(std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; }));
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = patternAt(i, size);
    }

    ASSERT_TRUE(mInverter.waitForOut("ready\n"));
    const sp<IMapper> inverter = IMapper::getService("inverter");
    ASSERT_NE(inverter, nullptr);
    const sp<IMemory> theirs = inverter->mapMemory(*memory);
    ASSERT_NE(theirs, nullptr);
    EXPECT_EQ(theirs->getSize(), size);
    size_t wrong = 0;
    for (size_t i = 0; i < size; ++i) {
        wrong += bytes[i] == static_cast<uint8_t>(~patternAt(i, size)) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0U);
}

INSTANTIATE_TEST_SUITE_P(Sizes, SharedMemory,
                         ::testing::Values(1, 4096, 4097, uint64_t{64} * 1024 * 1024));

using SharedMemoryRefusal = SharedMemory;

TEST_P(SharedMemoryRefusal, IsSeenByTheProcessThatGetsAWrongSize) {
    const sp<IAllocator> allocator = mAllocator.service();
    ASSERT_NE(allocator, nullptr);
    const auto memory = allocate(*allocator, 4096);
    ASSERT_TRUE(memory.has_value());
    ASSERT_TRUE(mInverter.waitForOut("ready\n"));
    const sp<IMapper> inverter = IMapper::getService("inverter");
    ASSERT_NE(inverter, nullptr);
    const hidl_memory claim("ashmem", memory->handle(), GetParam());
    const auto mapped = inverter->mapMemory(claim);
    ASSERT_TRUE(mapped.isOk());
    EXPECT_EQ(static_cast<sp<IMemory>>(mapped), nullptr);
    EXPECT_TRUE(mInverter.waitForErr("cannot map memory of "));
    EXPECT_TRUE(inverter->ping().isOk());
}

INSTANTIATE_TEST_SUITE_P(Sizes, SharedMemoryRefusal,
                         ::testing::Values(0, 4097, uint64_t{1} << 63, ~uint64_t{0}));

TEST(SharedMemoryLife, OutlivesTheAllocator) {
    AllocatorProcess process;
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    const auto memory = allocate(*allocator, 4096);
    ASSERT_TRUE(memory.has_value());
    process.process().kill(SIGKILL);
    process.process().wait();
    const sp<IMemory> mapped = mapMemory(*memory);
    ASSERT_NE(mapped, nullptr);
    bytesOf(mapped)[4095] = 'x';
    EXPECT_EQ(bytesOf(mapMemory(*memory))[4095], 'x');
}

}  // namespace
}  // namespace mlk::host

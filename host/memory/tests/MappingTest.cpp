#include <android/log.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <hidlmemory/mapping.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "host/memory/AshmemMapper.h"
#include "host/memory/SharedBlock.h"
#include "host/memory/tests/Allocations.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/TempDir.h"

namespace mlk::host {
namespace {

using ::android::sp;
using ::android::base::unique_fd;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::mapMemory;
using ::android::hardware::Return;
using ::android::hidl::memory::V1_0::IMemory;
using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr int kSealed = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

unique_fd memfd(off_t size, int seals) {
    unique_fd block(memfd_create("test", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    EXPECT_EQ(ftruncate(block.get(), size), 0);
    EXPECT_EQ(fcntl(block.get(), F_ADD_SEALS, seals), 0);
    return block;
}

// Memory with these descriptors, which it owns, and this size, as any sender could send it.
hidl_memory memoryOf(std::vector<unique_fd> descriptors, uint64_t size,
                     const hidl_string& name = "ashmem") {
    native_handle_t* handle = native_handle_create(static_cast<int>(descriptors.size()), 0);
    for (size_t i = 0; i < descriptors.size(); ++i) {
        (&handle->data[0])[i] = descriptors[i].release();
    }
    hidl_memory referring(name, handle, size);
    hidl_memory memory(referring);
    native_handle_close(handle);
    native_handle_delete(handle);
    return memory;
}

hidl_memory memoryOf(unique_fd descriptor, uint64_t size, const hidl_string& name = "ashmem") {
    std::vector<unique_fd> descriptors;
    descriptors.push_back(std::move(descriptor));
    return memoryOf(std::move(descriptors), size, name);
}

size_t countMappingsOf(const std::string& file) {
    std::ifstream maps("/proc/self/maps");
    size_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        count += line.find(file) == std::string::npos ? 0 : 1;
    }
    return count;
}

TEST(MapMemory, SharesTheBytesWithAllWhoMapTheBlock) {
    const hidl_memory memory = memoryOf(createSharedBlock(4097), 4097);
    const sp<IMemory> one = mapMemory(memory);
    const sp<IMemory> other = mapMemory(hidl_memory(memory));
    ASSERT_NE(one, nullptr);
    ASSERT_NE(other, nullptr);
    ASSERT_NE(bytesOf(one), bytesOf(other));
    EXPECT_EQ(one->getSize(), 4097U);
    EXPECT_TRUE(std::all_of(bytesOf(one), bytesOf(one) + 4097, [](uint8_t b) { return b == 0; }));
    EXPECT_TRUE(one->update().isOk());
    bytesOf(one)[0] = 'a';
    bytesOf(one)[4096] = 'z';
    EXPECT_TRUE(one->commit().isOk());
    EXPECT_TRUE(other->read().isOk());
    EXPECT_EQ(bytesOf(other)[0], 'a');
    EXPECT_EQ(bytesOf(other)[4096], 'z');
    EXPECT_TRUE(other->commit().isOk());
}

TEST(MapMemory, StaysMappedUntilTheLastReferenceGoes) {
    const std::string name = "memfd:ashmem";
    ASSERT_EQ(countMappingsOf(name), 0U);
    sp<IMemory> mapped = mapMemory(memoryOf(createSharedBlock(100), 100));
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(countMappingsOf(name), 1U);
    sp<IMemory> second = mapped;
    mapped.clear();
    bytesOf(second)[99] = 'x';
    EXPECT_EQ(countMappingsOf(name), 1U);
    second.clear();
    EXPECT_EQ(countMappingsOf(name), 0U);
}

TEST(MapMemory, MapsWhatItSaysOfALargerBlock) {
    const sp<IMemory> mapped = mapMemory(memoryOf(createSharedBlock(8192), 10));
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(mapped->getSize(), 10U);
}

TEST(MapMemory, HoldsNoDescriptor) {
    const auto before = ::mlk::testing::descriptorsOf(getpid());
    const sp<IMemory> mapped = mapMemory(memoryOf(createSharedBlock(100), 100));
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before);
}

TEST(MapMemory, TakesAnnouncementsOfRangesInTheBlock) {
    constexpr uint64_t kLargest = std::numeric_limits<uint64_t>::max();
    struct Range {
        uint64_t start;
        uint64_t length;
        bool lies;
    };
    const Range ranges[] = {{0, 100, true},       {0, 0, true},         {100, 0, true},
                            {99, 1, true},        {0, 101, false},      {100, 1, false},
                            {101, 0, false},      {kLargest, 1, false}, {1, kLargest, false},
                            {kLargest, 0, false}, {50, 51, false}};
    const sp<IMemory> mapped = mapMemory(memoryOf(createSharedBlock(100), 100));
    ASSERT_NE(mapped, nullptr);
    for (const Range& range : ranges) {
        const Return<void> update = mapped->updateRange(range.start, range.length);
        const Return<void> read = mapped->readRange(range.start, range.length);
        EXPECT_EQ(update.isOk(), range.lies) << range.start << " " << range.length;
        EXPECT_EQ(read.isOk(), range.lies) << range.start << " " << range.length;
        if (!range.lies) {
            EXPECT_EQ(update.description(),
                      "Status(EX_ILLEGAL_ARGUMENT): 'the range does not lie in the block'");
        }
    }
}

struct Refusal {
    const char* what;
    std::function<hidl_memory()> make;
    const char* line;
};

const Refusal kRefusals[] = {
        {"empty", [] { return hidl_memory(); }, "cannot map memory of kind \"\": it is empty"},
        {"without a handle", [] { return hidl_memory("ashmem", nullptr, 100); },
         "cannot map memory of kind \"ashmem\": it is empty"},
        {"of another kind", [] { return memoryOf(createSharedBlock(100), 100, "hardware_buffer"); },
         "cannot map memory of kind \"hardware_buffer\": there is no mapper for its kind"},
        {"of no kind", [] { return memoryOf(createSharedBlock(100), 100, ""); },
         "cannot map memory of kind \"\": there is no mapper for its kind"},
        {"without a descriptor", [] { return memoryOf(std::vector<unique_fd>(), 100); },
         "cannot map memory of 100 bytes: it has 0 descriptors instead of one"},
        {"with two descriptors",
         [] {
             std::vector<unique_fd> two;
             two.push_back(createSharedBlock(100));
             two.push_back(createSharedBlock(100));
             return memoryOf(std::move(two), 100);
         },
         "cannot map memory of 100 bytes: it has 2 descriptors instead of one"},
        {"of size 0", [] { return memoryOf(createSharedBlock(100), 0); },
         "cannot map memory of 0 bytes: it is empty"},
        {"larger than its block", [] { return memoryOf(createSharedBlock(100), 101); },
         "cannot map memory of 101 bytes: its block has only 100 bytes"},
        {"of the largest size",
         [] { return memoryOf(createSharedBlock(4096), std::numeric_limits<uint64_t>::max()); },
         "cannot map memory of 18446744073709551615 bytes: its block has only 4096 bytes"},
        {"not sealed", [] { return memoryOf(memfd(4096, 0), 4096); },
         "cannot map memory of 4096 bytes: it is not sealed: its owner could shrink it"},
        {"sealed against growing only", [] { return memoryOf(memfd(4096, F_SEAL_GROW), 4096); },
         "cannot map memory of 4096 bytes: it is not sealed: its owner could shrink it"},
        {"a pipe",
         [] {
             int ends[2] = {-1, -1};
             EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
             close(ends[1]);
             return memoryOf(unique_fd(ends[0]), 100);
         },
         "cannot map memory of 100 bytes: its descriptor is no shared memory: Invalid argument"},
        {"not to be written", [] { return memoryOf(memfd(4096, kSealed | F_SEAL_WRITE), 4096); },
         "cannot map memory of 4096 bytes: mmap: Operation not permitted"},
};

TEST(MapMemory, RefusesWithOneLineWhatCannotBeMappedSafely) {
    for (const Refusal& refusal : kRefusals) {
        const LogCapture log;
        EXPECT_EQ(mapMemory(refusal.make()), nullptr) << refusal.what;
        EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidlmemory"), ElementsAre(refusal.line))
                << refusal.what;
    }
}

TEST(MapMemory, RefusesAFileThatIsNotMemory) {
    const TempDir dir;
    const std::string path = dir.write("file", std::string(4096, 'x'));
    const LogCapture log;
    EXPECT_EQ(mapMemory(memoryOf(unique_fd(open(path.c_str(), O_RDWR | O_CLOEXEC)), 4096)),
              nullptr);
    // When the folder is in memory, its files have seals.
    EXPECT_THAT(
            log.texts(ANDROID_LOG_ERROR, "hidlmemory"),
            ElementsAre(AnyOf(StartsWith("cannot map memory of 4096 bytes: its descriptor is no "
                                         "shared memory: "),
                              "cannot map memory of 4096 bytes: it is not sealed: its owner "
                              "could shrink it")));
}

TEST(MapMemory, RefusesADescriptorThatIsNone) {
    native_handle_t* handle = native_handle_create(1, 0);
    handle->data[0] = -1;
    const LogCapture log;
    EXPECT_EQ(mapMemory(hidl_memory("ashmem", handle, 100)), nullptr);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidlmemory"),
                ElementsAre("cannot map memory of 100 bytes: its descriptor is no shared memory: "
                            "Bad file descriptor"));
    native_handle_delete(handle);
}

TEST(MapMemory, RefusesABlockThatMayOnlyBeRead) {
    const unique_fd block = memfd(4096, kSealed);
    const std::string path = "/proc/self/fd/" + std::to_string(block.get());
    const LogCapture log;
    EXPECT_EQ(mapMemory(memoryOf(unique_fd(open(path.c_str(), O_RDONLY | O_CLOEXEC)), 4096)),
              nullptr);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidlmemory"),
                ElementsAre("cannot map memory of 4096 bytes: mmap: Permission denied"));
}

TEST(AshmemMapper, RefusesMemoryWithoutAHandle) {
    const LogCapture log;
    const sp<AshmemMapper> mapper = new AshmemMapper;
    const Return<sp<IMemory>> mapped = mapper->mapMemory(hidl_memory());
    ASSERT_TRUE(mapped.isOk());
    EXPECT_EQ(static_cast<sp<IMemory>>(mapped), nullptr);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "hidlmemory"),
                ElementsAre("cannot map memory of 0 bytes: it has 0 descriptors instead of one"));
}

}  // namespace
}  // namespace mlk::host

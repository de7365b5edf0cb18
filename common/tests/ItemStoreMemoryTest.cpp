// How much memory a store takes, and when.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include "common/ItemStore.h"
#include "host/testing/Sanitizers.h"

namespace {

thread_local ptrdiff_t sAllocated = 0;

}  // namespace

// Replaces the operators of this program to count the memory of each thread. The thread sanitizer
// has operators of its own, which cannot be replaced.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define MLK_SANITIZER_OPERATORS
#endif
#endif
#ifndef MLK_SANITIZER_OPERATORS
void* operator new(size_t size) {
    void* const memory = malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    sAllocated += static_cast<ptrdiff_t>(malloc_usable_size(memory));
    return memory;
}
void operator delete(void* memory) noexcept {
    sAllocated -= static_cast<ptrdiff_t>(malloc_usable_size(memory));
    free(memory);
}
void operator delete(void* memory, size_t /* size */) noexcept {
    operator delete(memory);
}
#endif

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

/** Bytes that this thread has allocated and not freed since the object was made. */
class Allocated {
  public:
    ptrdiff_t kept() const { return sAllocated - mBefore; }

  private:
    const ptrdiff_t mBefore = sAllocated;
};

class ItemStoreMemoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (mlk::testing::kThreadSanitizer) {
            GTEST_SKIP() << "the thread sanitizer counts memory itself";
        }
    }
};

TEST_F(ItemStoreMemoryTest, ClearedStoreUsesItsMemoryAgain) {
    ItemStore store;
    const auto fill = [&store] {
        const std::string value(30, 'v');
        std::string key = "key of twenty bytes.";
        for (int i = 0; i < 20'000; ++i) {
            key[0] = static_cast<char>(i & 0x7f);
            key[1] = static_cast<char>(i >> 7);
            store.insert(store.section(key.substr(0, 1)), key, value);
        }
        ASSERT_EQ(store.size(), 20'000U);
        ASSERT_EQ(store.inOrder().size(), 20'000U);
    };
    fill();
    const Allocated afterFirst;
    for (int round = 0; round < 5; ++round) {
        store.clear();
        fill();
    }
    // A walk frees the memory that it sorts in; the store itself needs no more.
    EXPECT_EQ(afterFirst.kept(), 0);
}

TEST_F(ItemStoreMemoryTest, ReplacedValueUsesItsMemoryAgain) {
    ItemStore store;
    const ItemStore::Item item = store.insert(store.section("[S]"), "key", "0123456789").item;
    const std::string large(5000, 'l');
    store.replace(item, large);
    const Allocated afterFirst;
    for (int i = 0; i < 1000; ++i) {
        store.replace(item, i % 2 == 0 ? "short" : large);
        ASSERT_EQ(store.valueOf(item), i % 2 == 0 ? "short" : large);
    }
    store.replace(item, std::string(10'000, 'd'));  // twice the value that it got memory for
    EXPECT_EQ(afterFirst.kept(), 0);
    EXPECT_EQ(store.keyOf(item), "key");
}

TEST_F(ItemStoreMemoryTest, ReplacingAfterMakingRoomAllocatesNothing) {
    constexpr size_t kItems = 100;
    const std::string value(1000, 'v');
    ItemStore store;
    for (size_t i = 0; i < kItems; ++i) {
        const auto item = store.insert(store.section("[S]"), std::to_string(i), "short").item;
        store.makeRoom(item, value.size());
        EXPECT_EQ(store.keyOf(item), std::to_string(i));
        EXPECT_EQ(store.valueOf(item), "short");
    }
    const Allocated before;
    for (ItemStore::Item item = 0; item < kItems; ++item) {
        store.makeRoom(item, value.size());  // has it already
        store.replace(item, value);
        store.makeRoom(item, 3);  // never less
        store.replace(item, value);
    }
    EXPECT_EQ(before.kept(), 0);
    EXPECT_EQ(store.valueOf(0), value);
    EXPECT_EQ(store.valueOf(kItems - 1), value);
}

TEST_F(ItemStoreMemoryTest, SpaceIsReservedForAFileOfAReasonableSizeOnly) {
    ItemStore store;
    const Allocated before;
    store.expect(400'000);
    const ptrdiff_t forASmallFile = before.kept();
    EXPECT_GT(forASmallFile, 10'000 * 20) << "for items of 40 bytes";
    store.expect(SIZE_MAX);  // a file may claim anything
    EXPECT_LT(before.kept(), 16 << 20);
    const Allocated filled;
    for (int i = 0; i < 10'000; ++i) {
        store.insert(store.section("[S]"), std::to_string(i), "");
    }
    EXPECT_LT(filled.kept(), 10'000 * 40) << "only texts are added";
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

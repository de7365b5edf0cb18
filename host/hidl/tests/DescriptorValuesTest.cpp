// hidl_handle and hidl_memory: which object closes which descriptor.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>

#include <string>
#include <utility>
#include <vector>

#include "Native.h"

namespace mlk::test {
namespace {

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

hidl_handle fileHandle(const std::string& text) {
    std::vector<unique_fd> files;
    files.push_back(fileWith(text));
    return handleOf(std::move(files), {5});
}

TEST(HidlHandleTest, NoHandle) {
    const hidl_handle handle;
    EXPECT_EQ(handle.getNativeHandle(), nullptr);
    hidl_handle copy = fileHandle("former");
    copy = handle;
    EXPECT_EQ(copy.getNativeHandle(), nullptr);
    EXPECT_EQ(::android::hardware::toString(handle), "no handle");
}

TEST(HidlHandleTest, OwnerClosesAndReferenceDoesNot) {
    int descriptor;
    {
        const hidl_handle owner = fileHandle("x");
        descriptor = owner->data[0];
        {
            const hidl_handle reference(owner.getNativeHandle());
            EXPECT_EQ(owner.getNativeHandle(), reference.getNativeHandle());
        }
        EXPECT_TRUE(isOpen(descriptor));
        EXPECT_EQ(::android::hardware::toString(owner), "handle of 1 descriptors");
    }
    EXPECT_FALSE(isOpen(descriptor));
}

TEST(HidlHandleTest, CopyHasDescriptorsOfItsOwn) {
    hidl_handle copy;
    {
        const hidl_handle original = fileHandle("kept");
        copy = original;
        EXPECT_NE(copy->data[0], original->data[0]);
        const hidl_handle& itself = copy;
        copy = itself;
    }
    EXPECT_EQ(contentOf(copy->data[0]), "kept");
    EXPECT_EQ((&copy->data[0])[1], 5);
    copy = fileHandle("other");
    EXPECT_EQ(contentOf(copy->data[0]), "other");
    const int former = copy->data[0];
    copy = static_cast<const native_handle_t*>(nullptr);
    EXPECT_FALSE(isOpen(former));
}

// These tests check that a moved-from object is empty, as the classes promise.
// NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
TEST(HidlHandleTest, MoveHandsTheDescriptorsOver) {
    hidl_handle source = fileHandle("moved");
    const int descriptor = source->data[0];
    hidl_handle target(std::move(source));
    EXPECT_EQ(source.getNativeHandle(), nullptr);
    EXPECT_EQ(target->data[0], descriptor);
    hidl_handle& itself = target;
    target = std::move(itself);
    EXPECT_TRUE(isOpen(descriptor));
    target.setTo(nullptr);
    EXPECT_FALSE(isOpen(descriptor));
}

TEST(HidlMemoryTest, CopiesAndMoves) {
    hidl_memory original = memoryWith("content");
    const int descriptor = original.handle()->data[0];
    hidl_memory copy(original);
    EXPECT_NE(copy.handle()->data[0], descriptor);
    EXPECT_EQ(contentOf(copy.handle()->data[0]), "content");
    EXPECT_EQ(copy.name(), "ashmem");
    EXPECT_EQ(copy.size(), 7U);
    copy = std::move(original);
    EXPECT_EQ(copy.handle()->data[0], descriptor);
    EXPECT_FALSE(original.valid());
    EXPECT_EQ(original.size(), 0U);
    const hidl_memory moved(std::move(copy));
    EXPECT_EQ(moved.handle()->data[0], descriptor);
    EXPECT_EQ(::android::hardware::toString(moved), "memory \"ashmem\" of 7 bytes");
    EXPECT_FALSE(hidl_memory().valid());
}
// NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)

}  // namespace
}  // namespace mlk::test

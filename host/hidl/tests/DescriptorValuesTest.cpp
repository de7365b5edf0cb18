// hidl_handle, hidl_memory and MQDescriptor: who closes what.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>
#include <hidl/MQDescriptor.h>

#include <string>
#include <utility>
#include <vector>

#include "Native.h"

namespace mlk::test {
namespace {

using ::android::hardware::GrantorDescriptor;
using ::android::hardware::MQDescriptorSync;

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
    EXPECT_EQ(nullptr, handle.getNativeHandle());
    hidl_handle copy = fileHandle("former");
    copy = handle;
    EXPECT_EQ(nullptr, copy.getNativeHandle());
    EXPECT_EQ("no handle", ::android::hardware::toString(handle));
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
        EXPECT_EQ("handle of 1 descriptors", ::android::hardware::toString(owner));
    }
    EXPECT_FALSE(isOpen(descriptor));
}

TEST(HidlHandleTest, CopyHasDescriptorsOfItsOwn) {
    hidl_handle copy;
    {
        const hidl_handle original = fileHandle("kept");
        copy = original;
        EXPECT_NE(original->data[0], copy->data[0]);
        const hidl_handle& itself = copy;
        copy = itself;
    }
    EXPECT_EQ("kept", contentOf(copy->data[0]));
    EXPECT_EQ(5, (&copy->data[0])[1]);
    copy = fileHandle("other");
    EXPECT_EQ("other", contentOf(copy->data[0]));
    const int former = copy->data[0];
    copy = static_cast<const native_handle_t*>(nullptr);
    EXPECT_FALSE(isOpen(former));
}

// What is moved from is left empty, as the classes say: looking at it is what these tests are for.
// NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
TEST(HidlHandleTest, MoveHandsTheDescriptorsOver) {
    hidl_handle source = fileHandle("moved");
    const int descriptor = source->data[0];
    hidl_handle target(std::move(source));
    EXPECT_EQ(nullptr, source.getNativeHandle());
    EXPECT_EQ(descriptor, target->data[0]);
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
    EXPECT_NE(descriptor, copy.handle()->data[0]);
    EXPECT_EQ("content", contentOf(copy.handle()->data[0]));
    EXPECT_EQ("ashmem", copy.name());
    EXPECT_EQ(7U, copy.size());
    copy = std::move(original);
    EXPECT_EQ(descriptor, copy.handle()->data[0]);
    EXPECT_FALSE(original.valid());
    EXPECT_EQ(0U, original.size());
    const hidl_memory moved(std::move(copy));
    EXPECT_EQ(descriptor, moved.handle()->data[0]);
    EXPECT_EQ("memory \"ashmem\" of 7 bytes", ::android::hardware::toString(moved));
    EXPECT_FALSE(hidl_memory().valid());
}
// NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)

TEST(MQDescriptorTest, OwnsItsHandle) {
    int descriptor;
    {
        native_handle_t* native = native_handle_create(1, 0);
        descriptor = native->data[0] = fileWith("queue").release();
        const MQDescriptorSync<int> queue({GrantorDescriptor{0, 0, 8, 16}}, native, 4);
        MQDescriptorSync<int> copy(queue);
        EXPECT_NE(descriptor, copy.handle()->data[0]);
        EXPECT_EQ("queue", contentOf(copy.handle()->data[0]));
        EXPECT_EQ(16U, copy.grantors()[0].extent);
        EXPECT_EQ(4U, copy.getQuantum());
        copy = MQDescriptorSync<int>();
        EXPECT_EQ(nullptr, copy.handle());
        EXPECT_TRUE(isOpen(descriptor));
        EXPECT_EQ("queue of 1 grantors", ::android::hardware::toString(queue));
    }
    EXPECT_FALSE(isOpen(descriptor));
}

}  // namespace
}  // namespace mlk::test

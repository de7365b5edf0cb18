// Replies that a device does not deliver, and allocators that are registered but do not serve.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "host/hidl/src/RuntimeFolder.h"
#include "host/hidl/tests/BadService.h"
#include "service/tests/Delivery.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

/** Replies that a device delivers or does not, with each value of MLK_REPLY_LIMIT. */
class ReplyLimitTest : public Delivery, public ::testing::WithParamInterface<const char*> {
  protected:
    ReplyLimitTest() {
        if (*GetParam() != '\0') {
            mVariables["MLK_REPLY_LIMIT"] = GetParam();
        }
    }
    static bool likeADevice() { return std::string(GetParam()) == "device"; }
};

TEST_P(ReplyLimitTest, WhatADeviceDelivers) {
    const std::string path = file(1'039'000);
    EXPECT_TRUE(isSentWhole(path));
    EXPECT_TRUE(isSharedWhole(path));
    EXPECT_EQ(mServer->process().err().find("a device delivers"), std::string::npos);
}

TEST_P(ReplyLimitTest, WhatADeviceDoesNotDeliver) {
    const std::string path = file(1'044'000);
    if (likeADevice()) {
        const auto status = mService->getTvFile(
                path, [](const ::android::hardware::hidl_vec<uint8_t>&) { FAIL(); });
        EXPECT_EQ(status.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    } else {
        EXPECT_TRUE(isSentWhole(path));
    }
    EXPECT_TRUE(mServer->process().waitForErr(
            "vendor.morlak.mlkconfigs@1.0::IMlkProjectConfigs: a reply of 1044"));
    EXPECT_TRUE(mServer->process().waitForErr(
            likeADevice() ? " bytes is refused: a device delivers 1040000 at most\n"
                          : " bytes would fail on a device: a device delivers 1040000 at most\n"));
    EXPECT_TRUE(isSharedWhole(path));
    EXPECT_TRUE(mService->ping().isOk());
    EXPECT_TRUE(isSentWhole(file(5)));
}

INSTANTIATE_TEST_SUITE_P(Values, ReplyLimitTest, ::testing::Values("", "device", "other"),
                         [](const auto& row) {
                             return *row.param == '\0' ? "Unset" : std::string(row.param);
                         });

/**
 * An allocator that is registered and does not serve. `mVariables` shortens the service's wait for
 * it.
 */
class DeadAllocatorTest : public Delivery {
  protected:
    DeadAllocatorTest() { mVariables["MLK_CALL_LIMIT_MS"] = "500"; }
    // The answer is empty and arrives in time. The same file is delivered as bytes.
    void expectNothingShared() {
        const std::string path = file(5);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(shared(path), "empty memory");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        EXPECT_TRUE(isSentWhole(path));
    }
    void SetUp() override {
        Delivery::SetUp();
        stopAllocator();
    }
    static constexpr const char* kAllocator = "android.hidl.allocator@1.0::IAllocator";
    static constexpr const char* kName = "android.hidl.allocator@1.0::IAllocator.ashmem";
};

TEST_F(DeadAllocatorTest, ListensOnly) {
    ::mlk::test::unique_fd listener;
    ASSERT_EQ(::android::hardware::transport::listenOn(
                      ::android::hardware::transport::findRuntimeFolder(), kName, &listener),
              0);
    expectNothingShared();
}

TEST_F(DeadAllocatorTest, GreetsAndIsSilent) {
    const ::mlk::test::BadService allocator(
            [](const ::mlk::test::BadServer& server) {
                server.hello();
                server.waitForEnd();
            },
            kAllocator, "ashmem");
    expectNothingShared();
}

TEST_F(DeadAllocatorTest, AnswersInPart) {
    const ::mlk::test::BadService allocator(
            [](const ::mlk::test::BadServer& server) {
                server.hello();
                server.takeCall();
                server.send(std::vector<uint8_t>{'M', 'L', 'K', '1'});
                server.waitForEnd();
            },
            kAllocator, "ashmem");
    expectNothingShared();
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0

// The largest sizes of calls and answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstring>
#include <string>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/EnvironmentVariable.h"
#include "host/testing/HostSet.h"
#include "host/testing/Sanitizers.h"

namespace mlk::test {
namespace {

using ::android::hardware::transport::alignedToEight;
using ::android::hardware::transport::kMaxCallBody;
using ::android::hardware::transport::kMaxReplyBody;

class LimitsTest : public ::testing::Test {
  protected:
    // Requests `count` bytes and checks them.
    ::testing::AssertionResult answered(uint32_t count) {
        size_t wrong = 0;
        size_t got = 0;
        const auto called = mService->bytes(count, [&](const hidl_vec<uint8_t>& bytes) {
            got = bytes.size();
            // Checks every part of the answer that is sent separately.
            for (size_t i = 0; i < got; i += 1021) {
                wrong += bytes[i] != static_cast<uint8_t>(i);
            }
        });
        if (!called.isOk()) {
            return ::testing::AssertionFailure() << called.description();
        }
        if (got != count || wrong != 0) {
            return ::testing::AssertionFailure() << got << " bytes, wrong: " << wrong;
        }
        return ::testing::AssertionSuccess();
    }

    testing::HostSet mSet;
    Server mServer;
    const sp<IEverything> mService = mServer.service();
};

TEST_F(LimitsTest, CallAtTheLimitAndAbove) {
    // The size of a call of length() besides the text and its NUL.
    const size_t frame = alignedToEight(strlen(IEverything::descriptor) + 1) +
                         2 * sizeof(WireObject) + sizeof(hidl_string);
    const size_t longest = kMaxCallBody - frame - 1;
    EXPECT_EQ(static_cast<uint32_t>(mService->length(std::string(longest, 'x'))), longest);
    const auto above = mService->length(std::string(longest + 1, 'x'));
    EXPECT_EQ(above.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(LimitsTest, CallOfManyMegabytes) {
    const auto called = mService->length(std::string(16 << 20, 'x'));
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(LimitsTest, AnswersOfAllSizes) {
    for (const uint32_t size : {0U, 1U, 2047U, 2048U, 2049U, 4000U, 4096U, 65536U, 70000U, 300000U,
                                1040000U, 1050000U, 5U << 20U}) {
        EXPECT_TRUE(answered(size)) << size;
    }
}

TEST_F(LimitsTest, AnswerOf64Megabytes) {
    EXPECT_TRUE(answered(64U << 20U));
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(LimitsTest, AnswerAboveTheLimit) {
    const auto called = mService->bytes(static_cast<uint32_t>(kMaxReplyBody),
                                        [](const hidl_vec<uint8_t>&) { FAIL(); });
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(mService->ping().isOk());
    EXPECT_TRUE(answered(1000));
}

TEST_F(LimitsTest, MemoryOfLargeAnswersIsGivenBack) {
    if (testing::kSanitized) {
        GTEST_SKIP() << "sanitizers keep it for a while";
    }
    // The C library may keep blocks of up to 32 MiB. What the server keeps of an answer that is not
    // read at once is a little smaller than the answer.
    constexpr uint32_t kSize = 40U << 20U;
    const size_t before = residentOf(mServer.pid());
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(answered(kSize));
    }
    // When the client has the whole answer, the last one may still be in flight.
    EXPECT_TRUE(eventually([&] { return residentOf(mServer.pid()) < before + (24U << 20U); }));
}

// A server that refuses what a device would not deliver.
class DeviceLimitTest : public ::testing::Test {
  protected:
    // The size of a reply of that many bytes, beside them.
    uint64_t frame(uint32_t count) const {
        RawClient client(mSet.runtime());
        EXPECT_TRUE(client.hello());
        EXPECT_TRUE(client.send(bytesCall(count)));
        Header header{};
        EXPECT_EQ(recv(client.socket(), &header, sizeof header, MSG_WAITALL),
                  static_cast<ssize_t>(sizeof header));
        return header.bodySize - count;
    }

    testing::HostSet mSet;
    const testing::EnvironmentVariable mLimit{"MLK_REPLY_LIMIT", "device"};
};

TEST_F(DeviceLimitTest, AnswerOfTheLimitIsDeliveredAndOneByteMoreIsNot) {
    constexpr uint64_t kLimit = 1'040'000;
    const Server server;
    const auto longest = static_cast<uint32_t>(kLimit - frame(1000));
    const sp<IEverything> service = server.service();
    size_t got = 0;
    const auto take = [&](const hidl_vec<uint8_t>& bytes) { got = bytes.size(); };
    EXPECT_TRUE(service->bytes(longest, take).isOk());
    EXPECT_EQ(got, longest);
    EXPECT_EQ(service->bytes(longest + 1, take).description(),
              "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(server.says("is refused: a device delivers 1040000 at most"));
}

}  // namespace
}  // namespace mlk::test

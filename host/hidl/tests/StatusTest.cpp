// Status and Return: how calls end, and the texts for that.
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/Status.h>

#include <sstream>
#include <string>
#include <utility>

#include "host/testing/LogCapture.h"

namespace mlk::test {
namespace {

using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(StatusTest, Descriptions) {
    const std::pair<Status, const char*> rows[] = {
            {Status(), "No error"},
            {Status::ok(), "No error"},
            {Status::fromStatusT(::android::OK), "No error"},
            {Status::fromStatusT(::android::BAD_VALUE),
             "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '"},
            {Status::fromStatusT(::android::DEAD_OBJECT),
             "Status(EX_TRANSACTION_FAILED): 'DEAD_OBJECT: '"},
            {Status::fromStatusT(::android::FAILED_TRANSACTION),
             "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
            {Status::fromStatusT(::android::UNKNOWN_TRANSACTION),
             "Status(EX_TRANSACTION_FAILED): 'UNKNOWN_TRANSACTION: '"},
            {Status::fromStatusT(::android::NO_INIT), "Status(EX_TRANSACTION_FAILED): 'NO_INIT: '"},
            {Status::fromStatusT(-4711),
             "Status(EX_TRANSACTION_FAILED): '-4711 Unknown error 4711: '"},
            {Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT),
             "Status(EX_ILLEGAL_ARGUMENT): ''"},
            {Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT, "why"),
             "Status(EX_ILLEGAL_ARGUMENT): 'why'"},
            {Status::fromExceptionCode(Status::EX_NULL_POINTER, nullptr),
             "Status(EX_NULL_POINTER): ''"},
            {Status::fromExceptionCode(Status::EX_TRANSACTION_FAILED, "why"),
             "Status(EX_TRANSACTION_FAILED): 'OK: why'"},
            {Status::fromExceptionCode(77), "Status(77): ''"},
    };
    for (const auto& [status, text] : rows) {
        EXPECT_EQ(status.description(), text);
        std::ostringstream stream;
        stream << status;
        EXPECT_EQ(stream.str(), text);
    }
}

TEST(StatusTest, Parts) {
    Status status = Status::fromStatusT(::android::NO_MEMORY);
    EXPECT_FALSE(status.isOk());
    EXPECT_EQ(status.exceptionCode(), Status::EX_TRANSACTION_FAILED);
    EXPECT_EQ(status.transactionError(), ::android::NO_MEMORY);
    status = Status::fromExceptionCode(Status::EX_SECURITY, "message");
    EXPECT_EQ(status.transactionError(), ::android::OK);
    EXPECT_STREQ(status.exceptionMessage(), "message");
    status.setFromStatusT(::android::OK);
    EXPECT_TRUE(status.isOk());
    EXPECT_STREQ(status.exceptionMessage(), "");
}

TEST(ReturnTest, Values) {
    const Return<int> good(7);
    EXPECT_TRUE(good.isOk());
    EXPECT_EQ(static_cast<int>(good), 7);
    EXPECT_EQ(good.withDefault(9), 7);
    const Return<int> bad = Status::fromStatusT(::android::BAD_VALUE);
    EXPECT_FALSE(bad.isOk());
    EXPECT_FALSE(bad.isDeadObject());
    EXPECT_EQ(bad.withDefault(9), 9);
    EXPECT_TRUE(Void().isOk());
    const Return<void> dead = Status::fromStatusT(::android::DEAD_OBJECT);
    EXPECT_TRUE(dead.isDeadObject());
}

TEST(ReturnTest, FailureThatNobodyLooksAtIsToldOnce) {
    const testing::LogCapture log;
    const auto told = [&] { return log.texts(ANDROID_LOG_WARN, "hidl"); };
    { const Return<void> bad = Status::fromStatusT(::android::BAD_VALUE); }
    EXPECT_THAT(told(), ElementsAre("a failed call was not looked at: "
                                    "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '"));
    {
        Return<void> bad = Status::fromStatusT(::android::NO_MEMORY);
        const Return<void> moved = std::move(bad);
    }
    EXPECT_THAT(told(), ::testing::SizeIs(2));
}

TEST(ReturnTest, FailureThatIsLookedAtIsNotTold) {
    const testing::LogCapture log;
    const auto failure = [] { return Status::fromStatusT(::android::BAD_VALUE); };
    (void)Return<void>(failure()).isOk();
    (void)Return<void>(failure()).isDeadObject();
    (void)Return<void>(failure()).description();
    (void)Return<int>(failure()).withDefault(1);
    { const Return<int> good(1); }
    {
        Return<void> bad = failure();
        (void)bad.isOk();
        const Return<void> moved = std::move(bad);
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ReturnDeathTest, ResultOfAFailedCall) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const Return<int> bad = Status::fromStatusT(::android::BAD_VALUE);
    EXPECT_DEATH((void)static_cast<int>(bad),
                 "the result of a failed call was taken: "
                 "Status\\(EX_TRANSACTION_FAILED\\): 'BAD_VALUE: '");
    EXPECT_DEATH(bad.assertOk(),
                 "a call that must not fail did: "
                 "Status\\(EX_TRANSACTION_FAILED\\): 'BAD_VALUE: '");
    (void)bad.isOk();
}

}  // namespace
}  // namespace mlk::test

// Servers that misbehave: the client's call fails, and the client continues.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "BadService.h"
#include "Everything.h"
#include "RawClient.h"
#include "Server.h"
#include "host/hidl/src/RuntimeFolder.h"
#include "host/hidl/src/Socket.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

namespace transport = ::android::hardware::transport;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::transport::kMaxReplyBody;

struct Row {
    const char* name;
    std::function<void(const BadServer&)> work;
};
std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

const Row kWithoutService[] = {
        {"EndsAtOnce", [](const BadServer&) {}},
        {"HalfAHello",
         [](const BadServer& s) {
             s.send(std::vector<uint8_t>{'M', 'L', 'K'});
         }},
        {"WrongMagic", [](const BadServer& s) { s.hello(Hello::kMagic + 1); }},
        {"WrongVersion", [](const BadServer& s) { s.hello(Hello::kMagic, Hello::kVersion + 1); }},
        {"SaysNothing", [](const BadServer& s) { s.waitForEnd(); }},
        {"SaysItTooSlowly", [](const BadServer& s) { s.helloByteByByte(); }},
};

class BadHelloTest : public ::testing::TestWithParam<Row> {
  protected:
    testing::HostSet mSet;
};
TEST_P(BadHelloTest, IsNoService) {
    const BadService service(GetParam().work);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(IEverything::getService(), nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}
INSTANTIATE_TEST_SUITE_P(Rows, BadHelloTest, ::testing::ValuesIn(kWithoutService),
                         [](const auto& row) { return std::string(row.param.name); });

// A sound answer of text().
RawMessage textReply(const std::string& text) {
    RawMessage message = textCall(text);
    message.header = {Header::kMagic, MessageType::REPLY, 0, 0, 0, 0, 0};
    message.data.clear();
    message.number(0);
    return message;
}

std::function<void(const BadServer&)> answering(const std::function<void(RawMessage&)>& change) {
    return [=](const BadServer& server) {
        server.hello();
        server.takeCall();
        RawMessage message = textReply("text");
        change(message);
        server.send(message);
        server.waitForEnd();
    };
}

// Answers that end the connection.
const Row kDeadly[] = {
        {"EndsBeforeTheCall", [](const BadServer& s) { s.hello(); }},
        {"EndsAfterTheCall",
         [](const BadServer& s) {
             s.hello();
             s.takeCall();
         }},
        {"EndsInTheHeader",
         [](const BadServer& s) {
             s.hello();
             s.takeCall();
             s.send(std::vector<uint8_t>{'M', 'L', 'K', '1'});
         }},
        {"EndsInTheBody",
         [](const BadServer& s) {
             s.hello();
             s.takeCall();
             std::vector<uint8_t> bytes = textReply("text").bytes();
             bytes.resize(bytes.size() - 8);
             s.send(bytes);
         }},
        {"Garbage",
         [](const BadServer& s) {
             s.hello();
             s.takeCall();
             s.send(std::vector<uint8_t>(100, 'x'));
             s.waitForEnd();
         }},
        {"WrongMagic", answering([](RawMessage& m) { m.header.magic = Hello::kMagic; })},
        {"CallForAReply", answering([](RawMessage& m) { m.header.type = MessageType::CALL; })},
        {"BodyOverTheLimit", answering([](RawMessage& m) { m.bodySize = kMaxReplyBody + 8; })},
        {"BodyOfAlmostEverything", answering([](RawMessage& m) { m.bodySize = ~uint64_t{7}; })},
        {"DescriptorsNobodyAskedFor", answering([](RawMessage& m) {
             m.descriptors = {STDIN_FILENO};
             m.fdCount = 0;
         })},
};

class Recipient : public hidl_death_recipient {
  public:
    void serviceDied(uint64_t, const ::android::wp<::android::hidl::base::V1_0::IBase>&) override {
        mHeard = true;
    }
    bool heard() const { return mHeard; }

  private:
    std::atomic<bool> mHeard{false};
};

class DeadlyAnswerTest : public ::testing::TestWithParam<Row> {
  protected:
    testing::HostSet mSet;
};
TEST_P(DeadlyAnswerTest, IsDeath) {
    const BadService service(GetParam().work);
    const sp<IEverything> proxy = IEverything::getService();
    ASSERT_NE(proxy, nullptr);
    const sp<Recipient> recipient = new Recipient;
    const bool linked = proxy->linkToDeath(recipient, 0).withDefault(false);
    const auto called = proxy->text("text", [](const hidl_string&) { FAIL(); });
    EXPECT_TRUE(called.isDeadObject()) << called.description();
    EXPECT_TRUE(proxy->ping().isDeadObject());
    EXPECT_FALSE(proxy->linkToDeath(recipient, 0).withDefault(true));
    // Linked recipients are told, although the process may live on.
    EXPECT_TRUE(!linked || eventually([&] { return recipient->heard(); }));
}
INSTANTIATE_TEST_SUITE_P(Rows, DeadlyAnswerTest, ::testing::ValuesIn(kDeadly),
                         [](const auto& row) { return std::string(row.param.name); });

// Answers that fail only their own call.
struct FailingRow {
    const char* name;
    std::function<void(RawMessage&)> change;
    const char* description;
};
std::ostream& operator<<(std::ostream& stream, const FailingRow& row) {
    return stream << row.name;
}

RawMessage statusReply(::android::status_t status) {
    RawMessage message;
    message.header = {
            Header::kMagic, MessageType::REPLY, static_cast<uint32_t>(status), 0, 0, 0, 0};
    return message;
}

const char kBadValue[] = "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '";
const FailingRow kFailing[] = {
        {"Sound", [](RawMessage&) {}, "No error"},
        {"Error", [](RawMessage& m) { m = statusReply(::android::BAD_VALUE); }, kBadValue},
        {"UnknownError", [](RawMessage& m) { m = statusReply(-4711); },
         "Status(EX_TRANSACTION_FAILED): '-4711 Unknown error 4711: '"},
        {"PositiveError", [](RawMessage& m) { m = statusReply(5); },
         "Status(EX_TRANSACTION_FAILED): '5 Unknown error -5: '"},
        {"DeathThatIsTold", [](RawMessage& m) { m = statusReply(::android::DEAD_OBJECT); },
         "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
        {"ErrorWithAParcel", [](RawMessage& m) { m.header.code = 22; },
         "Status(EX_TRANSACTION_FAILED): '22 Unknown error -22: '"},
        {"Empty", [](RawMessage& m) { m = statusReply(0); },
         "Status(EX_TRANSACTION_FAILED): 'NOT_ENOUGH_DATA: '"},
        {"DataLargerThanBody", [](RawMessage& m) { m.dataSize = 1000; }, kBadValue},
        {"ObjectTooMany", [](RawMessage& m) { m.objectCount = 3; }, kBadValue},
        {"ObjectMissing", [](RawMessage& m) { m.objects.pop_back(); }, kBadValue},
        {"LengthHuge", [](RawMessage& m) { m.objects[1].record.length = ~uint64_t{0}; }, kBadValue},
        {"ParentIsItself", [](RawMessage& m) { m.objects[1].record.parent = 1; }, kBadValue},
        {"OffsetElsewhere", [](RawMessage& m) { m.objects[1].record.parentOffset = 8; }, kBadValue},
        {"TextWithoutItsEnd", [](RawMessage& m) { m.objects[1].bytes[4] = 'x'; }, kBadValue},
        {"DescriptorsMissing", [](RawMessage& m) { m.fdCount = 1; }, kBadValue},
        {"DescriptorsThatBelongToNothing", [](RawMessage& m) { m.descriptors = {STDIN_FILENO}; },
         kBadValue},
        {"Exception",
         [](RawMessage& m) {
             m.data.clear();
             m.number(static_cast<uint32_t>(-5));
             m.text("not now");
         },
         "Status(EX_ILLEGAL_STATE): 'not now'"},
        {"ExceptionWithoutItsText",
         [](RawMessage& m) {
             m.data.clear();
             m.number(static_cast<uint32_t>(-5));
         },
         "Status(EX_TRANSACTION_FAILED): 'NOT_ENOUGH_DATA: '"},
};

class FailingAnswerTest : public ::testing::TestWithParam<FailingRow> {
  protected:
    testing::HostSet mSet;
};
TEST_P(FailingAnswerTest, FailsItsCallOnly) {
    const BadService service([&](const BadServer& server) {
        server.hello();
        server.takeCall();
        RawMessage message = textReply("text");
        GetParam().change(message);
        server.send(message);
        server.takeCall();
        server.send(textReply("text"));
        server.waitForEnd();
    });
    const sp<IEverything> proxy = IEverything::getService();
    ASSERT_NE(proxy, nullptr);
    const size_t before = descriptorsOf(getpid());
    const auto called = proxy->text("text", [](const hidl_string& s) { EXPECT_EQ(s, "text"); });
    EXPECT_EQ(called.description(), GetParam().description);
    EXPECT_EQ(descriptorsOf(getpid()), before);
    int answers = 0;
    EXPECT_TRUE(proxy->text("text", [&](const hidl_string&) { ++answers; }).isOk());
    EXPECT_EQ(answers, 1);
}
INSTANTIATE_TEST_SUITE_P(Rows, FailingAnswerTest, ::testing::ValuesIn(kFailing),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(HostileServerTest, OnewayCallsDoNotWaitForAServerThatNeverReads) {
    const testing::HostSet set;
    const BadService service([](const BadServer& server) {
        server.hello();
        server.waitForEnd();
    });
    const sp<IEverything> proxy = IEverything::getService();
    ASSERT_NE(proxy, nullptr);
    int sent = 0;
    while (sent < 100000 && proxy->poke(sent).isOk()) {
        ++sent;
    }
    EXPECT_LT(sent, 100000);
    const auto refused = proxy->poke(0);
    EXPECT_EQ(refused.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
}

}  // namespace
}  // namespace mlk::test

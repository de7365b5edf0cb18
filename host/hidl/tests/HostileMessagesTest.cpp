// Malformed and lying messages: each costs its sender an answer or the connection, and harms nobody
// else.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <ostream>
#include <utility>

#include "HostileFixture.h"

namespace mlk::test {
namespace {

using ::android::BAD_TYPE;
using ::android::BAD_VALUE;
using ::android::NO_MEMORY;
using ::android::NOT_ENOUGH_DATA;
using ::android::OK;
using ::android::status_t;
using ::android::UNKNOWN_ERROR;
using ::android::UNKNOWN_TRANSACTION;
using ::android::hardware::transport::kMaxCallBody;
using ::android::hardware::transport::kMaxDescriptors;

constexpr uint64_t kHuge = std::numeric_limits<uint64_t>::max();
constexpr std::nullopt_t kEnds = std::nullopt;

struct Row {
    const char* name;
    std::function<RawMessage()> message;
    std::optional<status_t> answer;  // nothing: the connection ends
};

// A sound call with a small change.
Row changed(
        const char* name, std::optional<status_t> answer,
        const std::function<void(RawMessage&)>& change,
        const std::function<RawMessage()>& sound = [] { return textCall("text"); }) {
    return {name,
            [=] {
                RawMessage message = sound();
                change(message);
                return message;
            },
            answer};
}

// A call with a text whose struct is changed: size lies at offset 8.
Row withSize(const char* name, uint32_t size) {
    return changed(name, BAD_VALUE, [=](RawMessage& m) {
        memcpy(m.objects[0].bytes.data() + 8, &size, sizeof(size));
    });
}

// A call with a vector of interfaces: a count of 64 bits, then the interfaces.
Row withInterfaces(const char* name, uint64_t count) {
    return changed(
            name, NO_MEMORY,
            [=](RawMessage& m) {
                m.number(static_cast<uint32_t>(count));
                m.number(static_cast<uint32_t>(count >> 32U));
            },
            [] { return callOf(LISTENERS); });
}

int nullFile() {
    static const unique_fd file(open("/dev/null", O_RDONLY | O_CLOEXEC));
    return file.get();
}

// A call with a handle that its method does not read.
Row unreadHandle(const char* name, status_t answer, int32_t version) {
    return changed(name, answer, [=](RawMessage& m) {
        RawMessage handle = fdCall({nullFile()});
        memcpy(handle.objects[0].bytes.data(), &version, sizeof(version));
        m.objects.push_back(std::move(handle.objects[0]));
        m.descriptors = std::move(handle.descriptors);
    });
}

// A call with a handle of one descriptor: the counts lie at offsets 0, 4 and 8 of its object.
Row handleCall(const char* name, std::optional<status_t> answer,
               const std::function<void(RawMessage&)>& change) {
    return changed(name, answer, change, [] { return fdCall({nullFile()}); });
}
Row withCount(const char* name, size_t place, int32_t value) {
    return handleCall(name, BAD_VALUE, [=](RawMessage& m) {
        memcpy(m.objects[0].bytes.data() + place, &value, sizeof(value));
    });
}

int packetSocket() {
    static const auto ends = [] {
        std::pair<unique_fd, unique_fd> pair;
        EXPECT_EQ(::android::hardware::transport::connectedPair(&pair.first, &pair.second), OK);
        return pair;
    }();
    return ends.first.get();
}

Row interfaceCall(const char* name, const std::function<void(RawMessage&)>& change) {
    return changed(name, BAD_VALUE, change, [] { return listenCall(packetSocket()); });
}

const Row kRows[] = {
        changed("Sound", OK, [](RawMessage&) {}),
        handleCall("SoundHandle", OK, [](RawMessage&) {}),

        // The header.
        changed("WrongMagic", kEnds, [](RawMessage& m) { m.header.magic ^= 1; }),
        changed("ReplyToAServer", kEnds, [](RawMessage& m) { m.header.type = MessageType::REPLY; }),
        changed("UnknownType", kEnds, [](RawMessage& m) { m.header.type = MessageType{99}; }),
        changed("BodyOf4GiB", kEnds, [](RawMessage& m) { m.bodySize = uint64_t{1} << 32U; }),
        changed("BodyOfAlmostEverything", kEnds, [](RawMessage& m) { m.bodySize = kHuge - 7; }),
        changed("BodyNotPadded", kEnds,
                [](RawMessage& m) {
                    m.bodySize = 41;
                    m.isCut = true;
                }),
        changed("BodyOverTheLimit", kEnds, [](RawMessage& m) { m.bodySize = kMaxCallBody + 8; }),
        changed("BodyEmpty", BAD_TYPE,
                [](RawMessage& m) {
                    m.data.clear();
                    m.objects.clear();
                }),
        changed("DataLargerThanBody", BAD_VALUE, [](RawMessage& m) { m.dataSize = 4096; }),
        changed("DataOf4GiB", BAD_VALUE, [](RawMessage& m) { m.dataSize = 0xffffffff; }),
        changed("ObjectTooMany", BAD_VALUE, [](RawMessage& m) { m.objectCount = 3; }),
        changed("ObjectTooFew", BAD_VALUE, [](RawMessage& m) { m.objectCount = 1; }),
        changed("ObjectsTooMany", BAD_VALUE, [](RawMessage& m) { m.objectCount = 0xffffffff; }),
        changed("TooManyDescriptorsTold", kEnds,
                [](RawMessage& m) { m.fdCount = kMaxDescriptors + 1; }),

        // Descriptors.
        changed("DescriptorsNobodyAskedFor", kEnds,
                [](RawMessage& m) {
                    m.descriptors = {nullFile(), nullFile()};
                    m.fdCount = 0;
                }),
        changed("DescriptorsThatBelongToNothing", BAD_VALUE,
                [](RawMessage& m) { m.descriptors = {nullFile()}; }),
        changed("AsManyAsTheKernelPassesForNothing", BAD_VALUE,
                [](RawMessage& m) { m.descriptors.assign(kMaxDescriptors, nullFile()); }),
        handleCall("DescriptorsWithheld", BAD_VALUE,
                   [](RawMessage& m) {
                       m.descriptors.clear();
                       m.fdCount = 1;
                   }),
        handleCall("DescriptorsWithheldAndNotTold", BAD_VALUE,
                   [](RawMessage& m) { m.descriptors.clear(); }),
        handleCall("FewerDescriptorsThanTold", BAD_VALUE, [](RawMessage& m) { m.fdCount = 2; }),

        // Buffers.
        changed("KindZero", BAD_VALUE, [](RawMessage& m) { m.objects[0].record.kind = 0; }),
        changed("KindUnknown", BAD_VALUE, [](RawMessage& m) { m.objects[1].record.kind = 4; }),
        changed("LengthBeyondBody", BAD_VALUE, [](RawMessage& m) { m.objects[1].record.length = 99; }),
        changed("LengthHuge", BAD_VALUE, [](RawMessage& m) { m.objects[1].record.length = kHuge; }),
        changed("LengthWrapsWhenPadded", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.length = kHuge - 3; }),
        changed("LengthOneMore", BAD_VALUE, [](RawMessage& m) { ++m.objects[1].record.length; }),
        changed("LengthOneLess", BAD_VALUE, [](RawMessage& m) { --m.objects[1].record.length; }),
        changed("StructOneLess", BAD_VALUE, [](RawMessage& m) { --m.objects[0].record.length; }),
        changed("ParentMissing", BAD_VALUE, [](RawMessage& m) { m.objects[1].record.flags = 0; }),
        changed("ParentWhereNoneBelongs", BAD_VALUE,
                [](RawMessage& m) {
                    m.objects[0].record.flags = WireObject::kHasParent;
                    m.objects[0].record.parent = 0;
                }),
        changed("ParentIsItself", BAD_VALUE, [](RawMessage& m) { m.objects[1].record.parent = 1; }),
        changed("ParentOutOfBounds", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.parent = 0xffffffff; }),
        changed("ParentAfterChild", BAD_VALUE,
                [](RawMessage& m) {
                    std::swap(m.objects[0], m.objects[1]);
                    m.objects[0].record.parent = 1;
                }),
        changed("ParentIsAHandle", BAD_VALUE,
                [](RawMessage& m) {
                    const size_t handle = m.handle(0, 4, 0, 8);
                    (void)m.embedded({1}, static_cast<uint32_t>(handle), 0);
                }),
        changed("ParentIsNull", BAD_VALUE,
                [](RawMessage& m) {
                    m.objects[0].record.flags = WireObject::kIsNull;
                    m.objects[0].record.length = 0;
                    m.objects[0].bytes.clear();
                }),
        changed("ParentTooShort", BAD_VALUE,
                [](RawMessage& m) {
                    m.objects[0].record.length = 7;
                    m.objects[0].bytes.resize(7);
                }),
        changed("OffsetElsewhere", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.parentOffset = 8; }),
        changed("OffsetOneBeyond", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.parentOffset = 16; }),
        changed("OffsetAtAnOddPlace", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.parentOffset = 4; }),
        changed("OffsetHuge", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.parentOffset = kHuge - 7; }),
        changed("NullWithLength", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].record.flags |= WireObject::kIsNull; }),
        changed("NullText", BAD_VALUE,
                [](RawMessage& m) {
                    m.objects[1].record.flags |= WireObject::kIsNull;
                    m.objects[1].record.length = 0;
                    m.objects[1].bytes.clear();
                }),
        changed("TextMissing", BAD_VALUE, [](RawMessage& m) { m.objects.pop_back(); }),
        changed("TextWithoutItsEnd", BAD_VALUE, [](RawMessage& m) { m.objects[1].bytes[4] = 'x'; }),
        withSize("SizeOneMore", 5),
        withSize("SizeOneLess", 3),
        withSize("SizeHuge", 0xffffffff),
        changed("ObjectNobodyReads", OK, [](RawMessage& m) { (void)m.buffer({1, 2, 3}); }),
        // The transport refuses what no method reads, or nobody does.
        changed("BytesAfterTheLastObject", BAD_VALUE,
                [](RawMessage& m) { m.objects[1].bytes.resize(16); }),
        changed("NullWithLengthThatNobodyReads", BAD_VALUE,
                [](RawMessage& m) {
                    auto& null = m.objects[m.buffer({1, 2, 3})];
                    null.record.flags = WireObject::kIsNull;
                    null.bytes.clear();
                }),
        changed("PartOfNullThatNobodyReads", BAD_VALUE,
                [](RawMessage& m) {
                    const size_t parent = m.buffer({});
                    m.objects[parent].record.flags = WireObject::kIsNull;
                    (void)m.embedded({1}, static_cast<uint32_t>(parent), 0);
                }),
        changed("PartAtAnOddPlaceThatNobodyReads", BAD_VALUE,
                [](RawMessage& m) {
                    const size_t parent = m.buffer(std::vector<uint8_t>(16));
                    (void)m.embedded({1}, static_cast<uint32_t>(parent), 4);
                }),

        // Handles.
        withCount("HandleOfAnotherVersion", 0, 13),
        unreadHandle("HandleThatNobodyReads", OK, sizeof(native_handle_t)),
        unreadHandle("HandleOfAnotherVersionThatNobodyReads", BAD_VALUE, 13),
        withCount("HandleWithNegativeDescriptors", 4, -1),
        withCount("HandleWithNegativeNumbers", 8, -1),
        withCount("HandleWithMoreDescriptors", 4, 2),
        withCount("HandleWithFewerDescriptors", 4, 0),
        withCount("HandleWithMoreNumbers", 8, 1),
        withCount("HandleWithManyDescriptors", 4, 0x7fffffff),
        withCount("HandleWithManyNumbers", 8, 0x7fffffff),
        handleCall("HandleTooShort", BAD_VALUE, [](RawMessage& m) { m.objects[0].record.length = 8; }),
        handleCall("HandleEmpty", BAD_VALUE, [](RawMessage& m) { m.objects[0].record.length = 0; }),
        handleCall("HandleEmbeddedInItself", BAD_VALUE,
                   [](RawMessage& m) { m.objects[0].record.flags = WireObject::kHasParent; }),
        handleCall("BufferForAHandle", BAD_VALUE, [](RawMessage& m) { m.objects[0].record.kind = 1; }),
        handleCall("MoreHandlesThanDescriptors", BAD_VALUE,
                   [](RawMessage& m) { m.objects.push_back(m.objects[0]); }),

        // Interfaces.
        {"InterfaceThatIsNoSocket", [] { return listenCall(nullFile()); }, BAD_VALUE},
        interfaceCall("InterfaceWithoutDescriptor", [](RawMessage& m) { m.descriptors.clear(); }),
        interfaceCall("InterfaceWithLength", [](RawMessage& m) { m.objects[0].record.length = 8; }),
        interfaceCall("InterfaceWithParent",
                      [](RawMessage& m) { m.objects[0].record.flags = WireObject::kHasParent; }),
        withInterfaces("Interfaces2To31", uint64_t{1} << 31U),
        withInterfaces("Interfaces2To32", uint64_t{1} << 32U),
        withInterfaces("InterfacesHuge", kHuge),
        interfaceCall("HandleForAnInterface", [](RawMessage& m) { m.objects[0].record.kind = 2; }),

        // Numbers and names.
        {"NumberMissing", [] { return callOf(BYTES); }, NOT_ENOUGH_DATA},
        {"NumberCut",
         [] {
             RawMessage message = bytesCall(1);
             message.data.resize(message.data.size() - 1);
             return message;
         },
         NOT_ENOUGH_DATA},
        {"NoToken",
         [] {
             RawMessage message = textCall("text");
             message.data.clear();
             return message;
         },
         BAD_TYPE},
        {"TokenWithoutItsEnd",
         [] {
             RawMessage message = textCall("text");
             message.data.assign(8, 'x');
             return message;
         },
         BAD_TYPE},
        {"TokenOfAnotherInterface",
         [] {
             RawMessage message;
             message.header.code = TEXT;
             message.text("mlk.test.everything@1.0::IListener");
             return message;
         },
         BAD_TYPE},
        {"CodeZero", [] { return callOf(0); }, UNKNOWN_TRANSACTION},
        {"CodeUnknown", [] { return callOf(1000); }, UNKNOWN_TRANSACTION},
        {"CodeHuge", [] { return callOf(0xffffffff); }, UNKNOWN_TRANSACTION},
        {"OnewayMethodWithAnswer",
         [] {
             RawMessage message = callOf(POKE);
             message.number(7);
             return message;
         },
         UNKNOWN_ERROR},
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

class HostileMessagesTest : public HostileTest, public ::testing::WithParamInterface<Row> {};

TEST_P(HostileMessagesTest, HarmsNobody) {
    const auto attacker = connect();
    ASSERT_TRUE(attacker->send(GetParam().message()));
    if (GetParam().answer.has_value()) {
        EXPECT_EQ(attacker->replyStatus(), GetParam().answer);
        // The connection still works.
        ASSERT_TRUE(attacker->send(textCall("again")));
        EXPECT_EQ(attacker->replyStatus(), OK);
    } else {
        EXPECT_TRUE(attacker->ends());
    }
    attacker->close();
    expectUnharmed();
}

INSTANTIATE_TEST_SUITE_P(Rows, HostileMessagesTest, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(HostileTest, TwoWayMethodWithoutAnswer) {
    const auto attacker = connect();
    RawMessage message = textCall("text");
    message.header.type = MessageType::ONEWAY_CALL;
    ASSERT_TRUE(attacker->send(message));
    message.header.code = 1000;
    ASSERT_TRUE(attacker->send(message));
    message.header.code = POKE;
    ASSERT_TRUE(attacker->send(message));
    // The next answer belongs to the next call.
    ASSERT_TRUE(attacker->send(callOf(1000)));
    EXPECT_EQ(attacker->replyStatus(), UNKNOWN_TRANSACTION);
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileTest, BaseMethodsThatAreNotForTheWire) {
    const auto attacker = connect();
    for (const uint32_t code : {256660548U, 257250372U}) {
        ASSERT_TRUE(attacker->send(callOf(code)));
        EXPECT_EQ(attacker->replyStatus(), OK);
    }
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileTest, ManyUnknownCodes) {
    const auto attacker = connect();
    for (uint32_t code = 1000; code < 21000; ++code) {
        ASSERT_TRUE(attacker->send(callOf(code)));
        ASSERT_EQ(attacker->replyStatus(), UNKNOWN_TRANSACTION);
    }
    attacker->close();
    expectUnharmed();
}

}  // namespace
}  // namespace mlk::test

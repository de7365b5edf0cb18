// The parts of the transport by themselves: messages and their readers.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "Native.h"
#include "RawClient.h"
#include "host/hidl/src/MessageReader.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/Wire.h"

namespace mlk::test {
namespace {

using namespace ::android::hardware::transport;
using ::android::NO_MEMORY;
using ::android::OK;
using ::android::hardware::Parcel;
using std::chrono::milliseconds;
using Result = MessageReader::Result;

class TransportTest : public ::testing::Test {
  protected:
    TransportTest() { EXPECT_EQ(connectedPair(&mHere, &mThere), OK); }

    void send(const std::vector<uint8_t>& bytes, const std::vector<int>& descriptors = {}) {
        Sending sending;
        sending.pieces = {{const_cast<uint8_t*>(bytes.data()), bytes.size()}};
        sending.descriptors = descriptors;
        ASSERT_EQ(sendPieces(mHere.get(), &sending, MSG_DONTWAIT), 0);
    }
    Result read() { return mReader.read(mThere.get(), MSG_DONTWAIT, MSG_DONTWAIT); }
    // Fills the socket from here to there.
    void fill() {
        const std::vector<char> bytes(4096);
        while (::send(mHere.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
        }
    }

    unique_fd mHere;
    unique_fd mThere;
    MessageReader mReader{kMaxCallBody};
};

TEST_F(TransportTest, ReaderWaitsForAWholeMessage) {
    const std::vector<uint8_t> bytes = textCall("text").bytes();
    for (const uint8_t byte : bytes) {
        EXPECT_EQ(read(), Result::AGAIN);
        send({byte});
    }
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().header().code, TEXT);
    EXPECT_EQ(read(), Result::AGAIN);
    mHere.reset();
    EXPECT_EQ(read(), Result::CLOSED);
}

TEST_F(TransportTest, ReaderLeavesTheNextMessageInTheSocket) {
    send(callOf(1).bytes());
    send(callOf(2).bytes());
    send({'M', 'L'});
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(read(), Result::MESSAGE) << "it was not taken";
    EXPECT_EQ(mReader.take().header().code, 1U);
    EXPECT_FALSE(mReader.hasBegun());
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().header().code, 2U);
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_TRUE(mReader.hasBegun());
    send({'x', 'x'});
    send(std::vector<uint8_t>(28));
    EXPECT_EQ(read(), Result::RUBBISH);
}

TEST_F(TransportTest, PacketWithMoreThanItsMessageIsRubbish) {
    const std::vector<uint8_t> one = callOf(1).bytes();
    std::vector<uint8_t> more = one;
    more.push_back('M');
    send(more);
    EXPECT_EQ(read(), Result::RUBBISH);
    MessageReader later(kMaxCallBody);
    send({more.begin(), more.begin() + 40});
    EXPECT_EQ(later.read(mThere.get(), MSG_DONTWAIT, MSG_DONTWAIT), Result::AGAIN);
    send({more.begin() + 40, more.end()});
    EXPECT_EQ(later.read(mThere.get(), MSG_DONTWAIT, MSG_DONTWAIT), Result::RUBBISH);
}

TEST_F(TransportTest, PacketBeyondTheLargestIsRubbish) {
    std::vector<uint8_t> large = textCall(std::string(2 * kMostPacketBytes, 'x')).bytes();
    large.resize(kMostPacketBytes + 1);
    ASSERT_EQ(::send(mHere.get(), large.data(), large.size(), MSG_DONTWAIT),
              static_cast<ssize_t>(large.size()));
    EXPECT_EQ(read(), Result::RUBBISH);
}

TEST_F(TransportTest, LongMessagesTravelInSeveralPackets) {
    // Packets end within a piece, at its end, and where the kernel takes no more pieces.
    std::string text(3 * kMostPacketBytes + 100, 'x');
    for (size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char>('a' + i % 23);
    }
    for (const size_t size :
         {size_t{10}, size_t{100}, size_t{1000}, kMostPacketBytes, text.size()}) {
        Sending sending;
        for (size_t at = 0; at < text.size(); at += size) {
            sending.pieces.push_back({text.data() + at, std::min(size, text.size() - at)});
        }
        ASSERT_EQ(sendPieces(mHere.get(), &sending, MSG_DONTWAIT), 0);
        std::string arrived;
        std::vector<char> buffer(text.size());
        while (arrived.size() < text.size()) {
            const ssize_t got =
                    recv(mThere.get(), buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC);
            ASSERT_GT(got, 0);
            ASSERT_LE(got, static_cast<ssize_t>(kMostPacketBytes));
            arrived.append(buffer.data(), static_cast<size_t>(got));
        }
        EXPECT_EQ(arrived, text) << size;
    }
}

TEST_F(TransportTest, ReaderGivesEachMessageItsDescriptors) {
    const unique_fd one = fileWith("one");
    const unique_fd two = fileWith("two");
    send(callOf(1).bytes());
    send(fdCall({one.get(), two.get()}).bytes(), {one.get(), two.get()});
    send(fdCall({two.get()}).bytes(), {two.get()});
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().descriptors.size(), 0U);
    ASSERT_EQ(read(), Result::MESSAGE);
    const IncomingMessage first = mReader.take();
    ASSERT_EQ(first.descriptors.size(), 2U);
    EXPECT_EQ(contentOf(first.descriptors[0].get()), "one");
    ASSERT_EQ(read(), Result::MESSAGE);
    const IncomingMessage second = mReader.take();
    ASSERT_EQ(second.descriptors.size(), 1U);
    EXPECT_EQ(contentOf(second.descriptors[0].get()), "two");
}

TEST_F(TransportTest, AnnouncementIsForOneMessage) {
    const unique_fd file = fileWith("x");
    send(fdCall({file.get()}).bytes(), {file.get()});
    Sending unannounced;
    std::vector<uint8_t> bytes = fdCall({file.get()}).bytes();
    unannounced.pieces = {{bytes.data(), bytes.size()}};
    unannounced.descriptors = {file.get()};
    unannounced.announced = true;
    ASSERT_EQ(sendPieces(mHere.get(), &unannounced, MSG_DONTWAIT), 0);
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().descriptors.size(), 1U);
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().descriptors.size(), 0U);
}

TEST_F(TransportTest, AnnouncementsDoNotKeepTheReader) {
    RawMessage announcement;
    announcement.header.type = MessageType::DESCRIPTORS;
    for (int i = 0; i < 4; ++i) {
        send(announcement.bytes());
    }
    send(callOf(1).bytes());
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_FALSE(mReader.hasBegun());
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_EQ(read(), Result::AGAIN);
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().header().code, 1U);
    EXPECT_EQ(read(), Result::AGAIN);
}

TEST_F(TransportTest, DescriptorsThatCannotBeSentLeaveTheConnection) {
    std::vector<uint8_t> bytes = fdCall({-1}).bytes();
    Sending bad;
    bad.pieces = {{bytes.data(), bytes.size()}};
    bad.descriptors = {-1};
    EXPECT_EQ(sendPieces(mHere.get(), &bad, MSG_DONTWAIT), EBADF);
    EXPECT_FALSE(bad.begun);
    send(callOf(1).bytes());
    ASSERT_EQ(read(), Result::MESSAGE);
    EXPECT_EQ(mReader.take().header().code, 1U);
}

TEST_F(TransportTest, ReaderFreesWhatItsMessageDoesNotNeed) {
    constexpr size_t kLarge = 40'000;
    // The memory of a message serves the next one of its thread.
    send(textCall(std::string(kLarge, 'x')).bytes());
    ASSERT_EQ(read(), Result::MESSAGE);
    (void)mReader.take();
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_GT(mReader.keptBytes(), kLarge);
    mReader.trim();
    EXPECT_EQ(mReader.keptBytes(), 0U);
    const std::vector<uint8_t> bytes = textCall("text").bytes();
    send({bytes.begin(), bytes.end() - 1});
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_GT(mReader.keptBytes(), kLarge);
    mReader.trim();
    EXPECT_EQ(mReader.keptBytes(), bytes.size());
    send({bytes.back()});
    ASSERT_EQ(read(), Result::MESSAGE);
    const IncomingMessage message = mReader.take();
    EXPECT_EQ(std::vector<uint8_t>(message.bytes.get(), message.bytes.get() + bytes.size()), bytes);
}

TEST_F(TransportTest, ReaderThatFreesMemoryKeepsDescriptors) {
    const unique_fd file = fileWith("content");
    send(textCall(std::string(40'000, 'x')).bytes());  // its memory is more than the next needs
    ASSERT_EQ(read(), Result::MESSAGE);
    (void)mReader.take();
    const std::vector<uint8_t> bytes = fdCall({file.get()}).bytes();
    send({bytes.begin(), bytes.end() - 1}, {file.get()});
    EXPECT_EQ(read(), Result::AGAIN);
    EXPECT_EQ(mReader.keptDescriptors(), 1U);
    mReader.trim();
    EXPECT_EQ(mReader.keptDescriptors(), 1U);
    send({bytes.back()});
    ASSERT_EQ(read(), Result::MESSAGE);
    const IncomingMessage message = mReader.take();
    ASSERT_EQ(message.descriptors.size(), 1U);
    EXPECT_EQ(contentOf(message.descriptors[0].get()), "content");
}

TEST_F(TransportTest, LargeMessageIsNotKeptWhenItIsSent) {
    const std::string small(1000, 's');
    OutgoingMessage message;
    for (const size_t count : {10U, 100U}) {
        Parcel parcel;
        size_t handle;
        for (size_t i = 0; i < count; ++i) {
            ASSERT_EQ(parcel.writeBuffer(small.data(), small.size(), &handle), OK);
        }
        ASSERT_EQ(message.encode(parcel, MessageType::CALL, 1, kMaxCallBody), OK);
        EXPECT_FALSE(message.sending().pieces.empty());
        message.finish();
        EXPECT_TRUE(message.sending().pieces.empty());
        EXPECT_EQ(message.sending().pieces.capacity() == 0, count == 100) << count;
    }
}

TEST_F(TransportTest, MessagesCarryNothingBetweenTheirParts) {
    for (const size_t length : {1U, 5U, 8U, 2048U, 2049U, 3001U}) {
        const std::string block(length, 'b');
        Parcel parcel;
        size_t handle;
        ASSERT_EQ(parcel.writeCString("12"), OK);
        ASSERT_EQ(parcel.writeBuffer(block.data(), block.size(), &handle), OK);
        OutgoingMessage message;
        ASSERT_EQ(message.encode(parcel, MessageType::CALL, 1, kMaxCallBody), OK);
        std::string bytes;
        for (const iovec& piece : message.sending().pieces) {
            bytes.append(static_cast<const char*>(piece.iov_base), piece.iov_len);
        }
        const size_t start = sizeof(Header) + 8 + sizeof(WireObject);
        ASSERT_EQ(bytes.size(), start + alignedToEight(length));
        EXPECT_EQ(bytes.substr(sizeof(Header), 8), std::string("12\0\0\0\0\0\0", 8));
        EXPECT_EQ(bytes.substr(start, length), block);
        EXPECT_EQ(bytes.substr(start + length), std::string(alignedToEight(length) - length, '\0'));
    }
}

TEST_F(TransportTest, MessagesCarryNothingOfEarlierOnes) {
    OutgoingMessage message;
    for (const size_t length : {2000U, 7U, 1U}) {
        const std::string block(length, 'b');
        Parcel parcel;
        size_t handle;
        ASSERT_EQ(parcel.writeBuffer(block.data(), block.size(), &handle), OK);
        ASSERT_EQ(message.encode(parcel, MessageType::CALL, 1, kMaxCallBody), OK);
        ASSERT_EQ(message.sending().pieces.size(), 1U);
        const iovec& piece = message.sending().pieces[0];
        const std::string bytes(static_cast<const char*>(piece.iov_base), piece.iov_len);
        const std::string padding(alignedToEight(length) - length, '\0');
        EXPECT_EQ(bytes.substr(sizeof(Header) + sizeof(WireObject)), block + padding);
        message.finish();
    }
    message.encodeStatus(NO_MEMORY);
    EXPECT_EQ(message.sending().left(), sizeof(Header));
}

TEST_F(TransportTest, MessagesCarryNoAddressesAndNoDescriptorNumbers) {
    // Structs with a pointer in the middle, sent as a copy and without one.
    for (const size_t length : {24U, 40'000U}) {
        std::string parent(length, 'p');
        const std::string child = "child";
        const unique_fd file = fileWith("x");
        native_handle_t* const native = native_handle_create(1, 600);
        native->data[0] = file.get();
        Parcel parcel;
        size_t handle;
        size_t embedded;
        ASSERT_EQ(parcel.writeBuffer(parent.data(), length, &handle), OK);
        ASSERT_EQ(parcel.writeEmbeddedBuffer(child.data(), child.size(), &embedded, handle, 8), OK);
        ASSERT_EQ(parcel.writeEmbeddedNativeHandle(native, handle, 16), OK);
        OutgoingMessage message;
        ASSERT_EQ(message.encode(parcel, MessageType::CALL, 1, kMaxCallBody), OK);
        std::string bytes;
        for (const iovec& piece : message.sending().pieces) {
            bytes.append(static_cast<const char*>(piece.iov_base), piece.iov_len);
        }
        std::string expected = parent;
        expected.replace(8, 16, 16, '\0');
        const size_t start = sizeof(Header) + 3 * sizeof(WireObject);
        EXPECT_EQ(bytes.substr(start, length), expected) << length;
        EXPECT_EQ(bytes.substr(start + length, child.size()), child);
        const size_t number = start + length + 8 + sizeof(native_handle_t);
        EXPECT_EQ(bytes.substr(number, 4), std::string(4, '\0'));
        EXPECT_EQ(parent, std::string(length, 'p')) << "the sender's own is as it was";
        EXPECT_EQ(native->data[0], file.get());
        EXPECT_EQ(bytes.size(), message.bodySize() + sizeof(Header));
        (void)native_handle_delete(native);
    }
}

TEST_F(TransportTest, SendingGoesOnWhereItStopped) {
    fill();
    std::string text = "first";
    Sending sending;
    sending.pieces = {{text.data(), 2}, {text.data() + 2, 3}};
    EXPECT_EQ(sending.left(), 5U);
    EXPECT_EQ(sendPieces(mHere.get(), &sending, MSG_DONTWAIT), EAGAIN);
    EXPECT_FALSE(sending.begun);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(sendWithin(mHere.get(), &sending, milliseconds(50)), EAGAIN);
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(50));
    std::vector<char> buffer(1 << 20);
    while (recv(mThere.get(), buffer.data(), buffer.size(), MSG_DONTWAIT) > 0) {
    }
    EXPECT_EQ(sendWithin(mHere.get(), &sending, milliseconds(50)), 0);
    EXPECT_TRUE(sending.begun);
    EXPECT_EQ(sending.left(), 0U);
    EXPECT_EQ(recv(mThere.get(), buffer.data(), buffer.size(), 0), 5);
}

TEST_F(TransportTest, DescriptorsAreSentOnceHoweverManyPiecesThereAre) {
    std::string text(1000, 'x');  // more pieces than the kernel takes at once
    Sending sending;
    for (char& letter : text) {
        sending.pieces.push_back({&letter, 1});
    }
    sending.descriptors = {STDERR_FILENO};
    EXPECT_EQ(sendPieces(mHere.get(), &sending, 0), 0);
    std::vector<char> buffer(text.size());
    ASSERT_EQ(receiveBytes(mThere.get(), buffer.data(), buffer.size(), nullptr, 0),
              static_cast<ssize_t>(sizeof(Header)));
    std::vector<unique_fd> descriptors;
    for (size_t filled = 0; filled < text.size();) {
        const ssize_t got =
                receiveBytes(mThere.get(), buffer.data(), buffer.size(), &descriptors, 0);
        ASSERT_GT(got, 0);
        filled += static_cast<size_t>(got);
    }
    EXPECT_EQ(descriptors.size(), 1U);
}

TEST_F(TransportTest, SendingToNobody) {
    mThere.reset();
    char byte = 'x';
    Sending sending;
    sending.pieces = {{&byte, 1}};
    const int error = sendPieces(mHere.get(), &sending, 0);
    EXPECT_EQ(error, EPIPE);
    EXPECT_TRUE(endsConnection(error));
    EXPECT_TRUE(isHungUp(mHere.get()));
    EXPECT_FALSE(endsConnection(EBADF));
}

TEST_F(TransportTest, KindsOfDescriptors) {
    const Pipe pipe;
    EXPECT_TRUE(isPacketSocket(mHere.get()));
    EXPECT_FALSE(isPacketSocket(pipe.out.get()));
    EXPECT_FALSE(isPacketSocket(-1));
    for (const int kind : {SOCK_DGRAM, SOCK_STREAM}) {
        const unique_fd other(socket(AF_UNIX, kind | SOCK_CLOEXEC, 0));
        EXPECT_FALSE(isPacketSocket(other.get()));
    }
    EXPECT_FALSE(isHungUp(mHere.get()));
    EXPECT_EQ(peerUser(mHere.get()), getuid());
    EXPECT_EQ(peerUser(pipe.out.get()), static_cast<uid_t>(-1));
    EXPECT_FALSE(peerIsTrusted(pipe.out.get()));
    EXPECT_FALSE(waitFor(mThere.get(), POLLIN, milliseconds(1)));
    EXPECT_TRUE(waitFor(mHere.get(), POLLOUT, kForever));
}

}  // namespace
}  // namespace mlk::test

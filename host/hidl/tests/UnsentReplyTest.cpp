// The end of a reply that its client has not read yet.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "Native.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/Stalls.h"
#include "host/hidl/src/UnsentReply.h"
#include "host/hidl/src/Wire.h"
#include "host/testing/ProcessUsage.h"

namespace mlk::test {
namespace {

using namespace ::android::hardware::transport;
using ::android::OK;

class UnsentReplyTest : public ::testing::Test {
  protected:
    UnsentReplyTest() { EXPECT_EQ(connectedPair(&mHere, &mThere), OK); }

    // Fills the socket from here to there.
    void fill() {
        const std::vector<char> bytes(4096);
        while (::send(mHere.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
        }
    }

    unique_fd mHere;
    unique_fd mThere;
};

TEST_F(UnsentReplyTest, IsSentWhenThereIsRoom) {
    fill();
    std::string text = "kept until then";
    const unique_fd file = fileWith("content");
    Sending sending;
    sending.pieces = {{text.data(), 5}, {text.data() + 5, text.size() - 5}};
    sending.descriptors = {file.get()};
    UnsentReply unsent(mHere.get());
    EXPECT_TRUE(unsent.empty());
    EXPECT_TRUE(unsent.flush());
    ASSERT_TRUE(unsent.keep(sending));
    text.assign(text.size(), 'x');  // a copy was kept
    EXPECT_TRUE(unsent.flush());
    EXPECT_FALSE(unsent.empty());
    std::vector<char> buffer(1 << 20);
    while (recv(mThere.get(), buffer.data(), buffer.size(), MSG_DONTWAIT) > 0) {
    }
    EXPECT_TRUE(unsent.flush());
    EXPECT_TRUE(unsent.empty());
    ASSERT_EQ(receiveBytes(mThere.get(), buffer.data(), buffer.size(), nullptr, 0),
              static_cast<ssize_t>(sizeof(Header)))
            << "the announcement of the descriptor";
    std::vector<unique_fd> descriptors;
    ASSERT_EQ(receiveBytes(mThere.get(), buffer.data(), buffer.size(), &descriptors, 0), 15);
    EXPECT_EQ(std::string(buffer.data(), 15), "kept until then");
    ASSERT_EQ(descriptors.size(), 1U);
    EXPECT_EQ(contentOf(descriptors[0].get()), "content");
}

// The announcement may fit into the socket, and what it announces may not.
TEST_F(UnsentReplyTest, AnnouncesItsDescriptorsOnce) {
    std::string text = "text";
    const unique_fd file = fileWith("content");
    Sending sending;
    sending.pieces = {{text.data(), text.size()}};
    sending.descriptors = {file.get()};
    sending.announced = true;
    UnsentReply unsent(mHere.get());
    ASSERT_TRUE(unsent.keep(sending));
    EXPECT_TRUE(unsent.flush());
    EXPECT_TRUE(unsent.empty());
    std::vector<char> buffer(1000);
    std::vector<unique_fd> descriptors;
    ASSERT_EQ(receiveBytes(mThere.get(), buffer.data(), buffer.size(), &descriptors, 0), 4);
    EXPECT_EQ(descriptors.size(), 1U);
}

TEST_F(UnsentReplyTest, ClientThatIsGone) {
    fill();
    char byte = 'x';
    Sending sending;
    sending.pieces = {{&byte, 1}};
    UnsentReply unsent(mHere.get());
    ASSERT_TRUE(unsent.keep(sending));
    mThere.reset();
    EXPECT_FALSE(unsent.flush());
}

TEST_F(UnsentReplyTest, IsNotKeptWithoutItsDescriptor) {
    char byte = 'x';
    Sending sending;
    sending.pieces = {{&byte, 1}};
    sending.descriptors = {-1};
    UnsentReply unsent(mHere.get());
    EXPECT_FALSE(unsent.keep(sending));
    EXPECT_TRUE(unsent.empty());
    sending.begun = true;  // they were sent with the first byte
    EXPECT_TRUE(unsent.keep(sending));
}

TEST_F(UnsentReplyTest, CountsItsDescriptorsUntilTheyAreSent) {
    Stalls stalls({1000, 1000, 2, std::chrono::milliseconds(50)});
    const unique_fd file = fileWith("content");
    char byte = 'x';
    Sending sending;
    sending.pieces = {{&byte, 1}};
    sending.descriptors = {file.get(), file.get()};
    UnsentReply two(mHere.get(), stalls);
    EXPECT_TRUE(two.keep(sending));
    sending.descriptors.push_back(file.get());
    UnsentReply three(mHere.get(), stalls);
    EXPECT_FALSE(three.keep(sending));
    EXPECT_TRUE(three.empty());
    sending.begun = true;  // they were sent with the first byte
    EXPECT_TRUE(three.keep(sending));
}

TEST_F(UnsentReplyTest, ItsCopiesOfDescriptorsAreForThisProgramOnly) {
    fill();
    char byte = 'x';
    const unique_fd file = fileWith("content");
    Sending sending;
    sending.pieces = {{&byte, 1}};
    sending.descriptors = {file.get(), file.get()};
    UnsentReply unsent(mHere.get());
    const std::vector<int> before = inheritable();
    const size_t open = testing::descriptorsOf(getpid());
    ASSERT_TRUE(unsent.keep(sending));
    EXPECT_EQ(testing::descriptorsOf(getpid()), open + 2);
    EXPECT_EQ(inheritable(), before);
}

TEST_F(UnsentReplyTest, DescriptorsGoWithItsFirstByte) {
    std::vector<char> large(size_t{8} << 20U, 'x');
    const unique_fd file = fileWith("content");
    Sending sending;
    sending.pieces = {{large.data(), large.size()}};
    sending.descriptors = {file.get()};
    UnsentReply unsent(mHere.get());
    const size_t before = testing::descriptorsOf(getpid());
    ASSERT_TRUE(unsent.keep(sending));
    EXPECT_EQ(testing::descriptorsOf(getpid()), before + 1);
    // Sends what fits into the socket, which is only a part.
    EXPECT_TRUE(unsent.flush());
    EXPECT_FALSE(unsent.empty());
    // The remaining one is in flight in the socket.
    EXPECT_EQ(testing::descriptorsOf(getpid()), before);
}

}  // namespace
}  // namespace mlk::test

// Descriptors between processes: they work on the other side, and none leaks.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

using ::testing::ElementsAre;

class HandlesTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
    Server mServer;
    sp<IEverything> mService = mServer.service();
};

std::vector<unique_fd> filesWith(const std::vector<std::string>& texts) {
    std::vector<unique_fd> files;
    for (const std::string& text : texts) {
        files.push_back(fileWith(text));
    }
    return files;
}

TEST_F(HandlesTest, NoHandle) {
    int calls = 0;
    ASSERT_TRUE(mService->fd(hidl_handle(),
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 EXPECT_EQ(h.getNativeHandle(), nullptr);
                             })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(HandlesTest, HandleWithoutDescriptors) {
    int calls = 0;
    ASSERT_TRUE(mService->fd(handleOf({}, {1, -2, 3}),
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 ASSERT_NE(h.getNativeHandle(), nullptr);
                                 EXPECT_EQ(h->numFds, 0);
                                 ASSERT_EQ(h->numInts, 3);
                                 EXPECT_EQ((&h->data[0])[1], -2);
                             })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(HandlesTest, SeveralDescriptorsAndNumbers) {
    int calls = 0;
    const hidl_handle sent = handleOf(filesWith({"first", "second", "third"}), {7, 8});
    ASSERT_TRUE(mService->fd(sent,
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 ASSERT_EQ(h->numFds, 3);
                                 ASSERT_EQ(h->numInts, 2);
                                 const int* data = &h->data[0];
                                 EXPECT_EQ(contentOf(data[0]), "first");
                                 EXPECT_EQ(contentOf(data[1]), "second");
                                 EXPECT_EQ(contentOf(data[2]), "third");
                                 EXPECT_THAT(std::vector<int>(data + 3, data + 5),
                                             ElementsAre(7, 8));
                                 // Another descriptor, which started programs do not inherit.
                                 EXPECT_NE(data[0], (&sent->data[0])[0]);
                                 EXPECT_NE(fcntl(data[0], F_GETFD) & FD_CLOEXEC, 0);
                             })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(HandlesTest, OtherSideWritesToDescriptor) {
    Pipe pipe;
    std::vector<unique_fd> ends;
    ends.push_back(std::move(pipe.in));
    const hidl_handle handle = handleOf(std::move(ends));
    EXPECT_EQ(static_cast<int32_t>(mService->sign(handle, "hello")), 5);
    EXPECT_EQ(readFrom(pipe.out.get(), 5), "hello");
}

TEST_F(HandlesTest, AnswersDescriptorIsGoneAfterwardsUnlessCopied) {
    hidl_handle kept;
    int borrowed = -1;
    ASSERT_TRUE(mService->fd(handleOf(filesWith({"kept"})),
                             [&](const hidl_handle& h) {
                                 kept = h;
                                 borrowed = h->data[0];
                             })
                        .isOk());
    EXPECT_EQ(contentOf(kept->data[0]), "kept");
    EXPECT_EQ(fcntl(borrowed, F_GETFD), -1);
}

TEST_F(HandlesTest, VectorsOfHandles) {
    hidl_vec<hidl_handle> sent(3);
    sent[0] = handleOf(filesWith({"a", "b"}));
    sent[2] = handleOf(filesWith({"c"}), {9});
    int calls = 0;
    ASSERT_TRUE(mService->handles(sent,
                                  [&](const hidl_vec<hidl_handle>& got) {
                                      ++calls;
                                      ASSERT_EQ(got.size(), 3U);
                                      ASSERT_NE(got[0].getNativeHandle(), nullptr);
                                      EXPECT_EQ(contentOf(got[0]->data[0]), "c");
                                      EXPECT_EQ(got[1].getNativeHandle(), nullptr);
                                      ASSERT_EQ(got[2]->numFds, 2);
                                      EXPECT_EQ(contentOf((&got[2]->data[0])[1]), "b");
                                  })
                        .isOk());
    EXPECT_EQ(calls, 1);
}

TEST_F(HandlesTest, AsManyDescriptorsAsTheKernelPasses) {
    const unique_fd file = fileWith("the same");
    const auto many = [&](size_t count) {
        std::vector<unique_fd> descriptors;
        for (size_t i = 0; i < count; ++i) {
            descriptors.emplace_back(fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
        }
        return handleOf(std::move(descriptors));
    };
    int got = 0;
    const auto most = mService->fd(many(253), [&](const hidl_handle& h) { got = h->numFds; });
    EXPECT_TRUE(most.isOk()) << most.description();
    EXPECT_EQ(got, 253);
    const auto more = mService->fd(many(254), [&](const hidl_handle&) { FAIL(); });
    EXPECT_EQ(more.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(HandlesTest, MemoryIsShared) {
    const hidl_memory sent = memoryWith("before");
    int calls = 0;
    ASSERT_TRUE(mService->shared(sent,
                                 [&](const hidl_memory& m) {
                                     ++calls;
                                     EXPECT_EQ(m.name(), "ashmem");
                                     EXPECT_EQ(m.size(), 6U);
                                     ASSERT_EQ(pwrite(m.handle()->data[0], "after!", 6, 0), 6);
                                 })
                        .isOk());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(contentOf(sent.handle()->data[0]), "after!");
    ASSERT_TRUE(mService->shared(hidl_memory(),
                                 [&](const hidl_memory& m) {
                                     ++calls;
                                     EXPECT_FALSE(m.valid());
                                     EXPECT_EQ(m.size(), 0U);
                                 })
                        .isOk());
    EXPECT_EQ(calls, 2);
}

TEST_F(HandlesTest, ThousandCallsLeaveNoDescriptorBehind) {
    const hidl_handle handle = handleOf(filesWith({"one", "two"}), {1});
    Record record;
    record.h = handle;
    record.m = memoryWith("memory");
    const auto call = [&] {
        ASSERT_TRUE(mService->fd(handle, [](const hidl_handle&) {}).isOk());
        ASSERT_TRUE(mService->record(record, [](const Record&) {}).isOk());
        // The server closes the descriptors of a call before it reads the next one.
        ASSERT_TRUE(mService->ping().isOk());
    };
    call();
    const size_t here = descriptorsOf(getpid());
    const size_t there = descriptorsOf(mServer.pid());
    for (int i = 0; i < 500; ++i) {
        call();
    }
    EXPECT_EQ(descriptorsOf(getpid()), here);
    EXPECT_EQ(descriptorsOf(mServer.pid()), there);
}

TEST_F(HandlesTest, DescriptorThatIsNoneFailsTheCallAndNothingElse) {
    native_handle_t* broken = native_handle_create(1, 0);
    broken->data[0] = -1;
    const auto called = mService->fd(broken, [](const hidl_handle&) { FAIL(); });
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_FALSE(called.isDeadObject());
    EXPECT_TRUE(mService->ping().isOk());
    (void)native_handle_delete(broken);
}

TEST_F(HandlesTest, AnswersDescriptorThatIsNoneFailsTheCallAndNothingElse) {
    const auto called = mService->brokenHandle([](const hidl_handle&) { FAIL(); });
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '");
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(HandlesTest, HandleWithNegativeCountsIsRefusedHere) {
    native_handle_t* broken = native_handle_create(1, 1);
    broken->numFds = -1;
    const auto called = mService->fd(broken, [](const hidl_handle&) { FAIL(); });
    (void)native_handle_delete(broken);
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '");
    EXPECT_TRUE(mService->ping().isOk());
}

// Whether every writing end of the pipe is closed, here and elsewhere, while connections stay open.
bool ends(const Pipe& pipe) {
    pollfd state{pipe.out.get(), POLLIN, 0};
    return poll(&state, 1, 20 * 1000) == 1 && (state.revents & POLLHUP) != 0;
}

TEST_F(HandlesTest, DescriptorsOfACallEndWithIt) {
    Pipe pipe;
    std::vector<unique_fd> writers;
    writers.push_back(std::move(pipe.in));
    {
        const hidl_handle sent = handleOf(std::move(writers));
        ASSERT_EQ(static_cast<int>(mService->sign(sent, "")), 0);
        // The answer contains the handle, too: that copy is closed with the answer.
        ASSERT_TRUE(mService->fd(sent, [](const hidl_handle&) {}).isOk());
    }
    EXPECT_TRUE(ends(pipe));
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(HandlesTest, DescriptorsOfARefusedCallEndWithIt) {
    Pipe pipe;
    RawClient client(mSet.runtime());
    ASSERT_TRUE(client.hello());
    RawMessage call = fdCall({pipe.in.get()});
    call.objects.clear();  // it belongs to no object
    ASSERT_TRUE(client.send(call));
    EXPECT_EQ(client.replyStatus(), ::android::BAD_VALUE);
    pipe.in.reset();
    EXPECT_TRUE(ends(pipe));
}

TEST_F(HandlesTest, EndOfAnObjectThatWasHandedOutIsTheReceivers) {
    const size_t before = testing::descriptorsOf(getpid());
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->listen(listener, "text").isOk());
    // This process keeps its own end, which closes with the server's.
    EXPECT_TRUE(eventually([&] { return testing::descriptorsOf(getpid()) <= before + 3; }));
    ASSERT_TRUE(mService->dropKept().isOk());
    EXPECT_TRUE(eventually([&] { return listener->getStrongCount() <= 2; }));
    // The pool and its timer keep the descriptors that they once opened.
    EXPECT_TRUE(eventually([&] { return testing::descriptorsOf(getpid()) <= before + 2; }));
}

}  // namespace
}  // namespace mlk::test

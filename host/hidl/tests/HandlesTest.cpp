// Descriptors between processes: they work on the other side, and none is left behind.
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

using ::android::hardware::GrantorDescriptor;
using ::testing::ElementsAre;

class HandlesTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
    Server mServer;
    sp<IEverything> mService = mServer.service();
};

std::vector<unique_fd> filesWith(const std::vector<std::string>& texts) {
    std::vector<unique_fd> files;
    for (const std::string& text : texts) files.push_back(fileWith(text));
    return files;
}

TEST_F(HandlesTest, NoHandle) {
    int calls = 0;
    ASSERT_TRUE(mService->fd(hidl_handle(),
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 EXPECT_EQ(nullptr, h.getNativeHandle());
                             })
                        .isOk());
    EXPECT_EQ(1, calls);
}

TEST_F(HandlesTest, HandleWithoutDescriptors) {
    int calls = 0;
    ASSERT_TRUE(mService->fd(handleOf({}, {1, -2, 3}),
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 ASSERT_NE(nullptr, h.getNativeHandle());
                                 EXPECT_EQ(0, h->numFds);
                                 ASSERT_EQ(3, h->numInts);
                                 EXPECT_EQ(-2, (&h->data[0])[1]);
                             })
                        .isOk());
    EXPECT_EQ(1, calls);
}

TEST_F(HandlesTest, SeveralDescriptorsAndNumbers) {
    int calls = 0;
    const hidl_handle sent = handleOf(filesWith({"first", "second", "third"}), {7, 8});
    ASSERT_TRUE(mService->fd(sent,
                             [&](const hidl_handle& h) {
                                 ++calls;
                                 ASSERT_EQ(3, h->numFds);
                                 ASSERT_EQ(2, h->numInts);
                                 const int* data = &h->data[0];
                                 EXPECT_EQ("first", contentOf(data[0]));
                                 EXPECT_EQ("second", contentOf(data[1]));
                                 EXPECT_EQ("third", contentOf(data[2]));
                                 EXPECT_THAT(std::vector<int>(data + 3, data + 5),
                                             ElementsAre(7, 8));
                                 // Another descriptor, and not for programs that are started.
                                 EXPECT_NE((&sent->data[0])[0], data[0]);
                                 EXPECT_NE(0, fcntl(data[0], F_GETFD) & FD_CLOEXEC);
                             })
                        .isOk());
    EXPECT_EQ(1, calls);
}

TEST_F(HandlesTest, OtherSideWritesToDescriptor) {
    Pipe pipe;
    std::vector<unique_fd> ends;
    ends.push_back(std::move(pipe.in));
    const hidl_handle handle = handleOf(std::move(ends));
    EXPECT_EQ(5, static_cast<int32_t>(mService->sign(handle, "hello")));
    EXPECT_EQ("hello", readFrom(pipe.out.get(), 5));
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
    EXPECT_EQ("kept", contentOf(kept->data[0]));
    EXPECT_EQ(-1, fcntl(borrowed, F_GETFD));
}

TEST_F(HandlesTest, VectorsOfHandles) {
    hidl_vec<hidl_handle> sent(3);
    sent[0] = handleOf(filesWith({"a", "b"}));
    sent[2] = handleOf(filesWith({"c"}), {9});
    int calls = 0;
    ASSERT_TRUE(mService->handles(sent,
                                  [&](const hidl_vec<hidl_handle>& got) {
                                      ++calls;
                                      ASSERT_EQ(3U, got.size());
                                      ASSERT_NE(nullptr, got[0].getNativeHandle());
                                      EXPECT_EQ("c", contentOf(got[0]->data[0]));
                                      EXPECT_EQ(nullptr, got[1].getNativeHandle());
                                      ASSERT_EQ(2, got[2]->numFds);
                                      EXPECT_EQ("b", contentOf((&got[2]->data[0])[1]));
                                  })
                        .isOk());
    EXPECT_EQ(1, calls);
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
    EXPECT_EQ(253, got);
    const auto more = mService->fd(many(254), [&](const hidl_handle&) { FAIL(); });
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '", more.description());
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(HandlesTest, MemoryIsShared) {
    const hidl_memory sent = memoryWith("before");
    int calls = 0;
    ASSERT_TRUE(mService->shared(sent,
                                 [&](const hidl_memory& m) {
                                     ++calls;
                                     EXPECT_EQ("ashmem", m.name());
                                     EXPECT_EQ(6U, m.size());
                                     ASSERT_EQ(6, pwrite(m.handle()->data[0], "after!", 6, 0));
                                 })
                        .isOk());
    EXPECT_EQ(1, calls);
    EXPECT_EQ("after!", contentOf(sent.handle()->data[0]));
    ASSERT_TRUE(mService->shared(hidl_memory(),
                                 [&](const hidl_memory& m) {
                                     ++calls;
                                     EXPECT_FALSE(m.valid());
                                     EXPECT_EQ(0U, m.size());
                                 })
                        .isOk());
    EXPECT_EQ(2, calls);
}

native_handle_t* queueHandle(const std::string& text) {
    native_handle_t* handle = native_handle_create(1, 1);
    handle->data[0] = fileWith(text).release();
    (&handle->data[0])[1] = 42;
    return handle;
}

TEST_F(HandlesTest, QueueDescriptors) {
    GrantorDescriptor grantor{};
    grantor.offset = 16;
    grantor.extent = 1ULL << 40U;
    const MQDescriptorSync<int32_t> sync({grantor, grantor}, queueHandle("sync"), 4);
    const MQDescriptorUnsync<int32_t> unsync({grantor}, queueHandle("unsync"), 8);
    int calls = 0;
    ASSERT_TRUE(mService->queue(sync, unsync,
                                [&](const auto& q, const auto& u) {
                                    ++calls;
                                    ASSERT_EQ(2U, q.grantors().size());
                                    EXPECT_EQ(16U, q.grantors()[1].offset);
                                    EXPECT_EQ(1ULL << 40U, q.grantors()[1].extent);
                                    EXPECT_EQ(4U, q.getQuantum());
                                    EXPECT_EQ(sync.getFlags(), q.getFlags());
                                    ASSERT_NE(nullptr, q.handle());
                                    EXPECT_EQ("sync", contentOf(q.handle()->data[0]));
                                    ASSERT_EQ(1U, u.grantors().size());
                                    EXPECT_EQ(8U, u.getQuantum());
                                    EXPECT_EQ(unsync.getFlags(), u.getFlags());
                                    EXPECT_NE(q.getFlags(), u.getFlags());
                                    EXPECT_EQ("unsync", contentOf(u.handle()->data[0]));
                                    EXPECT_EQ(42, (&u.handle()->data[0])[1]);
                                })
                        .isOk());
    const MQDescriptorSync<int32_t> noSync;
    const MQDescriptorUnsync<int32_t> noUnsync;
    ASSERT_TRUE(mService->queue(noSync, noUnsync,
                                [&](const auto& q, const auto& u) {
                                    ++calls;
                                    EXPECT_EQ(nullptr, q.handle());
                                    EXPECT_EQ(nullptr, u.handle());
                                    EXPECT_EQ(0U, q.grantors().size());
                                })
                        .isOk());
    EXPECT_EQ(2, calls);
}

TEST_F(HandlesTest, ThousandCallsLeaveNoDescriptorBehind) {
    const hidl_handle handle = handleOf(filesWith({"one", "two"}), {1});
    Record record;
    record.h = handle;
    record.m = memoryWith("memory");
    const auto call = [&] {
        ASSERT_TRUE(mService->fd(handle, [](const hidl_handle&) {}).isOk());
        ASSERT_TRUE(mService->record(record, [](const Record&) {}).isOk());
        // The server closes what it was given before it reads the next call.
        ASSERT_TRUE(mService->ping().isOk());
    };
    call();
    const size_t here = descriptorsOf(getpid());
    const size_t there = descriptorsOf(mServer.pid());
    for (int i = 0; i < 500; ++i) call();
    EXPECT_EQ(here, descriptorsOf(getpid()));
    EXPECT_EQ(there, descriptorsOf(mServer.pid()));
}

TEST_F(HandlesTest, DescriptorThatIsNoneFailsTheCallAndNothingElse) {
    native_handle_t* broken = native_handle_create(1, 0);
    broken->data[0] = -1;
    const auto called = mService->fd(broken, [](const hidl_handle&) { FAIL(); });
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '", called.description());
    EXPECT_FALSE(called.isDeadObject());
    EXPECT_TRUE(mService->ping().isOk());
    (void)native_handle_delete(broken);
}

TEST_F(HandlesTest, AnswersDescriptorThatIsNoneFailsTheCallAndNothingElse) {
    const auto called = mService->brokenHandle([](const hidl_handle&) { FAIL(); });
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '", called.description());
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(HandlesTest, HandleWithNegativeCountsIsRefusedHere) {
    native_handle_t* broken = native_handle_create(1, 1);
    broken->numFds = -1;
    const auto called = mService->fd(broken, [](const hidl_handle&) { FAIL(); });
    (void)native_handle_delete(broken);
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '", called.description());
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
        ASSERT_EQ(0, static_cast<int>(mService->sign(sent, "")));
        // Answered with it as well: that copy ends with the answer.
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
    call.objects.clear();  // it belongs to nothing
    ASSERT_TRUE(client.send(call));
    EXPECT_EQ(::android::BAD_VALUE, client.replyStatus());
    pipe.in.reset();
    EXPECT_TRUE(ends(pipe));
}

TEST_F(HandlesTest, EndOfAnObjectThatWasHandedOutIsTheReceivers) {
    const size_t before = testing::descriptorsOf(getpid());
    const sp<Listener> listener = new Listener;
    ASSERT_TRUE(mService->listen(listener, "text").isOk());
    // This process keeps its own end, which ends with the server's.
    EXPECT_TRUE(eventually([&] { return testing::descriptorsOf(getpid()) <= before + 3; }));
    ASSERT_TRUE(mService->dropKept().isOk());
    EXPECT_TRUE(eventually([&] { return listener->getStrongCount() <= 2; }));
    // What the pool and its timer took once stays.
    EXPECT_TRUE(eventually([&] { return testing::descriptorsOf(getpid()) <= before + 2; }));
}

}  // namespace
}  // namespace mlk::test

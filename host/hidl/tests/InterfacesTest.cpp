// Interfaces as arguments and results: each side calls objects of the other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class InterfacesTest : public ::testing::Test {
  protected:
    // The first call of many tests: the server calls our listener and returns one of its own.
    sp<IListener> listen(const sp<IListener>& ours, const std::string& text) {
        auto answer = mService->listen(ours, text);
        EXPECT_TRUE(answer.isOk()) << answer.description();
        return answer.withDefault(nullptr);
    }
    std::vector<std::string> textsOf(const sp<IListener>& theirs) {
        std::vector<std::string> texts;
        const auto called = theirs->all(
                [&](const hidl_vec<hidl_string>& all) { texts.assign(all.begin(), all.end()); });
        EXPECT_TRUE(called.isOk()) << called.description();
        return texts;
    }

    testing::HostSet mSet;
    Server mServer;
    sp<IEverything> mService = mServer.service();
};

TEST_F(InterfacesTest, OursIsCalledWhileTheCallIsUnderWay) {
    const sp<Listener> ours = new Listener;
    EXPECT_NE(listen(ours, "during"), nullptr);
    EXPECT_THAT(ours->texts(), ElementsAre("during"));
}

TEST_F(InterfacesTest, OursIsCalledAfterTheCallReturned) {
    const sp<Listener> ours = new Listener;
    (void)listen(ours, "during");
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("after")), 2);
    EXPECT_TRUE(static_cast<bool>(mService->tellKept(17)));
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("at last")), 4);
    EXPECT_THAT(ours->texts(), ElementsAre("during", "after", "17", "at last"));
}

TEST_F(InterfacesTest, TheirsIsCalledAfterTheCallReturned) {
    const sp<IListener> theirs = listen(new Listener, "");
    ASSERT_NE(theirs, nullptr);
    EXPECT_TRUE(theirs->isRemote());
    EXPECT_EQ(static_cast<int32_t>(theirs->heard("one")), 1);
    EXPECT_TRUE(theirs->tell(2).isOk());
    EXPECT_EQ(static_cast<int32_t>(theirs->heard("three")), 3);
    EXPECT_THAT(textsOf(theirs), ElementsAre("one", "2", "three"));
}

TEST_F(InterfacesTest, EachObjectIsItself) {
    const sp<IListener> one = listen(new Listener, "");
    const sp<IListener> other = listen(new Listener, "");
    (void)one->heard("to one").isOk();
    EXPECT_THAT(textsOf(one), ElementsAre("to one"));
    EXPECT_THAT(textsOf(other), IsEmpty());
}

TEST_F(InterfacesTest, AnObjectAnswersBaseMethods) {
    const sp<IListener> theirs = listen(new Listener, "");
    EXPECT_TRUE(theirs->ping().isOk());
    std::string name;
    ASSERT_TRUE(theirs->interfaceDescriptor([&](const hidl_string& n) { name = n; }).isOk());
    EXPECT_EQ(name, "mlk.test.everything@1.0::IListener");
}

TEST_F(InterfacesTest, NoObject) {
    EXPECT_EQ(listen(nullptr, "nobody hears"), nullptr);
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("nobody hears")), -2);
}

TEST_F(InterfacesTest, VectorsOfObjects) {
    const sp<Listener> first = new Listener;
    const sp<Listener> last = new Listener;
    const hidl_vec<sp<IListener>> ours{first, nullptr, last};
    hidl_vec<sp<IListener>> theirs;
    ASSERT_TRUE(mService->listeners(ours, [&](const auto& l) { theirs = l; }).isOk());
    EXPECT_THAT(first->texts(), ElementsAre("one of several"));
    EXPECT_THAT(last->texts(), ElementsAre("one of several"));
    ASSERT_EQ(theirs.size(), 3U);
    ASSERT_NE(theirs[0], nullptr);
    EXPECT_EQ(theirs[1], nullptr);
    ASSERT_NE(theirs[2], nullptr);
    EXPECT_EQ(static_cast<int32_t>(theirs[2]->heard("third")), 1);
    EXPECT_THAT(textsOf(theirs[2]), ElementsAre("third"));
    EXPECT_THAT(textsOf(theirs[0]), IsEmpty());
}

TEST_F(InterfacesTest, ObjectsGoWhenTheOtherSideDropsThem) {
    sp<Listener> ours = new Listener;
    sp<IListener> theirs = listen(ours, "");
    (void)mService->dropKept().isOk();
    theirs = nullptr;
    EXPECT_TRUE(eventually([&] { return static_cast<int32_t>(mService->alive()) == 0; }));
    ours = nullptr;
    EXPECT_TRUE(eventually([] { return Listener::alive() == 0; }));
}

TEST_F(InterfacesTest, AnObjectLivesAsLongAsTheOtherSideHasIt) {
    EXPECT_NE(listen(new Listener, "during"), nullptr);
    // Only the server holds our listener now.
    EXPECT_EQ(Listener::alive(), 1);
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("still here")), 2);
    (void)mService->dropKept().isOk();
    EXPECT_TRUE(eventually([] { return Listener::alive() == 0; }));
}

// The connection that handed the object out does nothing meanwhile.
TEST_F(InterfacesTest, AnObjectGoesWhateverLetTheOtherSideDropIt) {
    EXPECT_NE(listen(new Listener, ""), nullptr);
    const sp<IEverything> other = mServer.service();
    ASSERT_TRUE(other->dropKept().isOk());
    EXPECT_TRUE(eventually([] { return Listener::alive() == 0; }));
}

TEST_F(InterfacesTest, ThousandObjectsLeaveNoDescriptorBehind) {
    const auto round = [&] {
        const sp<IListener> theirs = listen(new Listener, "");
        ASSERT_TRUE(theirs->heard("").isOk());
        ASSERT_TRUE(mService->dropKept().isOk());
    };
    round();
    ASSERT_TRUE(eventually([] { return Listener::alive() == 0; }));
    ASSERT_TRUE(eventually([&] { return static_cast<int32_t>(mService->alive()) == 0; }));
    const size_t here = descriptorsOf(getpid());
    const size_t there = descriptorsOf(mServer.pid());
    for (int i = 0; i < 1000; ++i) {
        round();
    }
    EXPECT_TRUE(eventually([&] { return descriptorsOf(getpid()) == here; }));
    EXPECT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) == there; }))
            << there << " before, " << descriptorsOf(mServer.pid()) << " after";
    EXPECT_TRUE(eventually([] { return Listener::alive() == 0; }));
    EXPECT_EQ(static_cast<int32_t>(mService->alive()), 0);
}

TEST_F(InterfacesTest, OneImplementationIsOneObject) {
    const sp<Listener> ours = new Listener;
    (void)listen(ours, "first");
    (void)listen(ours, "second");
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("third")), 3);
}

TEST_F(InterfacesTest, ProxyIsNotHandedOnByTheServer) {
    const auto called = mService->passOn(new Listener);
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'INVALID_OPERATION: '");
    EXPECT_TRUE(mService->ping().isOk());
    const auto nothing = mService->passOn(nullptr);
    EXPECT_TRUE(nothing.isOk()) << nothing.description();
}

TEST_F(InterfacesTest, ProxyIsNotHandedOnByTheClient) {
    const sp<IListener> theirs = listen(new Listener, "");
    const auto called = mService->listen(theirs, "round about");
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'INVALID_OPERATION: '");
    EXPECT_TRUE(mService->ping().isOk());
    EXPECT_TRUE(theirs->ping().isOk());
}

TEST_F(InterfacesTest, ListenerThatCallsTheServiceBack) {
    class Caller : public Listener {
      public:
        explicit Caller(const sp<IEverything>& service) : mService(service) {}
        Return<int32_t> heard(const hidl_string& text) override {
            return static_cast<int32_t>(static_cast<uint32_t>(mService->length(text)));
        }

      private:
        const sp<IEverything> mService;
    };
    (void)listen(new Caller(mService), "");
    EXPECT_EQ(static_cast<int32_t>(mService->callKept("four")), 4);
}

TEST_F(InterfacesTest, CallingAListenerWhoseProcessIsGoneFails) {
    const sp<IListener> theirs = listen(new Listener, "");
    mServer.kill();
    const auto called = theirs->heard("nobody");
    EXPECT_TRUE(called.isDeadObject()) << called.description();
    EXPECT_TRUE(theirs->tell(1).isDeadObject());
}

}  // namespace
}  // namespace mlk::test

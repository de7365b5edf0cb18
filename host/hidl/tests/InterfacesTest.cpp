// Interfaces as arguments and results: objects of either side, called from the other.
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
    // The call that many tests begin with: the server calls ours and gives one of its own.
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
    EXPECT_NE(nullptr, listen(ours, "during"));
    EXPECT_THAT(ours->texts(), ElementsAre("during"));
}

TEST_F(InterfacesTest, OursIsCalledAfterTheCallReturned) {
    const sp<Listener> ours = new Listener;
    (void)listen(ours, "during");
    EXPECT_EQ(2, static_cast<int32_t>(mService->callKept("after")));
    EXPECT_TRUE(static_cast<bool>(mService->tellKept(17)));
    EXPECT_EQ(4, static_cast<int32_t>(mService->callKept("at last")));
    EXPECT_THAT(ours->texts(), ElementsAre("during", "after", "17", "at last"));
}

TEST_F(InterfacesTest, TheirsIsCalledAfterTheCallReturned) {
    const sp<IListener> theirs = listen(new Listener, "");
    ASSERT_NE(nullptr, theirs);
    EXPECT_TRUE(theirs->isRemote());
    EXPECT_EQ(1, static_cast<int32_t>(theirs->heard("one")));
    EXPECT_TRUE(theirs->tell(2).isOk());
    EXPECT_EQ(3, static_cast<int32_t>(theirs->heard("three")));
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
    EXPECT_EQ("mlk.test.everything@1.0::IListener", name);
}

TEST_F(InterfacesTest, NoObject) {
    EXPECT_EQ(nullptr, listen(nullptr, "nobody hears"));
    EXPECT_EQ(-2, static_cast<int32_t>(mService->callKept("nobody hears")));
}

TEST_F(InterfacesTest, VectorsOfObjects) {
    const sp<Listener> first = new Listener;
    const sp<Listener> last = new Listener;
    const hidl_vec<sp<IListener>> ours{first, nullptr, last};
    hidl_vec<sp<IListener>> theirs;
    ASSERT_TRUE(mService->listeners(ours, [&](const auto& l) { theirs = l; }).isOk());
    EXPECT_THAT(first->texts(), ElementsAre("one of several"));
    EXPECT_THAT(last->texts(), ElementsAre("one of several"));
    ASSERT_EQ(3U, theirs.size());
    ASSERT_NE(nullptr, theirs[0]);
    EXPECT_EQ(nullptr, theirs[1]);
    ASSERT_NE(nullptr, theirs[2]);
    EXPECT_EQ(1, static_cast<int32_t>(theirs[2]->heard("third")));
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
    EXPECT_NE(nullptr, listen(new Listener, "during"));
    // Nobody here has ours any more; the server does.
    EXPECT_EQ(1, Listener::alive());
    EXPECT_EQ(2, static_cast<int32_t>(mService->callKept("still here")));
    (void)mService->dropKept().isOk();
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
    for (int i = 0; i < 1000; ++i) round();
    EXPECT_TRUE(eventually([&] { return descriptorsOf(getpid()) == here; }));
    EXPECT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) == there; }))
            << there << " before, " << descriptorsOf(mServer.pid()) << " after";
    EXPECT_TRUE(eventually([] { return Listener::alive() == 0; }));
    EXPECT_EQ(0, static_cast<int32_t>(mService->alive()));
}

TEST_F(InterfacesTest, OneImplementationIsOneObject) {
    const sp<Listener> ours = new Listener;
    (void)listen(ours, "first");
    (void)listen(ours, "second");
    EXPECT_EQ(3, static_cast<int32_t>(mService->callKept("third")));
}

TEST_F(InterfacesTest, ProxyIsNotHandedOnByTheServer) {
    const auto called = mService->passOn(new Listener);
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'INVALID_OPERATION: '", called.description());
    EXPECT_TRUE(mService->ping().isOk());
    const auto nothing = mService->passOn(nullptr);
    EXPECT_TRUE(nothing.isOk()) << nothing.description();
}

TEST_F(InterfacesTest, ProxyIsNotHandedOnByTheClient) {
    const sp<IListener> theirs = listen(new Listener, "");
    const auto called = mService->listen(theirs, "round about");
    EXPECT_EQ("Status(EX_TRANSACTION_FAILED): 'INVALID_OPERATION: '", called.description());
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
    EXPECT_EQ(4, static_cast<int32_t>(mService->callKept("four")));
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

// Objects in the process that uses them: direct calls of their stubs, and no passthrough wrapper.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlPassthroughSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>

#include <mlk/test/everything/1.0/BnHwEverything.h>
#include <mlk/test/everything/1.0/BnHwListener.h>
#include <mlk/test/everything/1.0/BpHwEverything.h>
#include <mlk/test/everything/1.0/BpHwListener.h>

#include <string>
#include <utility>
#include <vector>

#include "Everything.h"
#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"
#include "host/testing/Threads.h"

namespace mlk::test {
namespace {

using ::android::BAD_VALUE;
using ::android::INVALID_OPERATION;
using ::android::OK;
using ::android::status_t;
using ::android::UNKNOWN_TRANSACTION;
using ::android::wp;
using ::android::hardware::fromBinder;
using ::android::hardware::getOrCreateCachedBinder;
using ::android::hardware::IBinder;
using ::android::hardware::IInterface;
using ::android::hardware::Parcel;
using ::android::hardware::toBinder;
using ::android::hardware::details::getBnConstructorMap;
using ::android::hardware::details::wrapPassthrough;
using ::android::hidl::base::V1_0::IBase;
using ::mlk::test::everything::V1_0::BnHwEverything;
using ::mlk::test::everything::V1_0::BnHwListener;
using ::mlk::test::everything::V1_0::BpHwEverything;
using ::mlk::test::everything::V1_0::BpHwListener;
using ::testing::ElementsAre;

sp<IBinder> newStub() {
    return toBinder(sp<IEverything>(new Everything));
}

TEST(InProcessTest, OneStubForOneImplementation) {
    const sp<IEverything> one = new Everything;
    sp<IBinder> stub = toBinder(one);
    ASSERT_NE(stub, nullptr);
    EXPECT_NE(stub->localBinder(), nullptr);
    EXPECT_EQ(toBinder(one), stub);
    EXPECT_NE(stub, newStub());
    EXPECT_EQ(getOrCreateCachedBinder(nullptr), nullptr);
    // The cache keeps no dead stub: the next one is new.
    const wp<IBinder> former = stub;
    stub = nullptr;
    EXPECT_EQ(former.promote(), nullptr);
    EXPECT_NE(toBinder(one), nullptr);
}

TEST(InProcessTest, ManyThreadsHaveOneStub) {
    for (int round = 0; round < 50; ++round) {
        const sp<IEverything> one = new Everything;
        std::vector<sp<IBinder>> stubs(4);
        testing::inThreads(4, [&](int i) { stubs[static_cast<size_t>(i)] = toBinder(one); });
        for (const sp<IBinder>& stub : stubs) {
            EXPECT_EQ(stubs[0], stub);
        }
    }
}

TEST(InProcessTest, StubsComeAndGoInManyThreads) {
    const sp<IEverything> one = new Everything;
    testing::inThreads(4, [&](int) {
        for (int i = 0; i < 1000; ++i) {
            ASSERT_NE(toBinder(one), nullptr);
        }
    });
}

// A call whose only argument is a number.
status_t callNumber(const sp<IBinder>& stub, uint32_t code, Parcel* reply, uint32_t flags,
                    const IBinder::TransactCallback& callback = nullptr) {
    Parcel data;
    EXPECT_EQ(data.writeInterfaceToken(IEverything::descriptor), OK);
    EXPECT_EQ(data.writeUint32(3), OK);
    return stub->transact(code, data, reply, flags, callback);
}

TEST(InProcessTest, StubAnswersCalls) {
    Parcel reply;
    bool answered = false;
    ASSERT_EQ(callNumber(newStub(), BYTES, &reply, 0, [&](Parcel&) { answered = true; }), OK);
    EXPECT_TRUE(answered);
    int32_t exception = -1;
    EXPECT_EQ(reply.readInt32(&exception), OK);
    EXPECT_EQ(exception, 0);
}

TEST(InProcessTest, StubAnswersWithoutCallbackOrReply) {
    const sp<IEverything> service = new Everything;
    const sp<IBinder> stub = toBinder(service);
    Parcel reply;
    EXPECT_EQ(callNumber(stub, BYTES, &reply, 0), OK);
    EXPECT_EQ(callNumber(stub, BYTES, nullptr, 0), OK);
    EXPECT_EQ(callNumber(stub, POKE, nullptr, IBinder::FLAG_ONEWAY), OK);
    EXPECT_EQ(callNumber(stub, 1000, &reply, 0), UNKNOWN_TRANSACTION);
    std::vector<int32_t> poked;
    ASSERT_TRUE(service->poked([&](const auto& n) { poked = n; }).isOk());
    EXPECT_THAT(poked, ElementsAre(3));
}

TEST(InProcessTest, ProxyOverTheStubItself) {
    const sp<IEverything> proxy = new BpHwEverything(newStub());
    std::string answer;
    ASSERT_TRUE(proxy->text("direct", [&](const hidl_string& s) { answer = s; }).isOk());
    EXPECT_EQ(answer, "direct");
    Record record;
    record.name = "name";
    record.notes = {"one", "two"};
    int calls = 0;
    ASSERT_TRUE(proxy->record(record, [&](const Record& got) {
                         ++calls;
                         EXPECT_EQ(got.name, "name");
                         EXPECT_EQ(got.notes[1], "two");
                     }).isOk());
    EXPECT_EQ(calls, 1);
}

TEST(InProcessTest, LocalObjectsHaveNoDeath) {
    const sp<IBinder> stub = newStub();
    EXPECT_EQ(stub->linkToDeath(nullptr), INVALID_OPERATION);
    EXPECT_EQ(stub->unlinkToDeath(nullptr), INVALID_OPERATION);
    EXPECT_EQ(IInterface::asBinder(sp<IInterface>()), nullptr);
}

TEST(InProcessTest, LocalObjectComesBackAsItself) {
    const sp<IEverything> service = new Everything;
    EXPECT_EQ((fromBinder<IEverything, BpHwEverything, BnHwEverything>(toBinder(service))),
              service);
    EXPECT_EQ((fromBinder<IListener, BpHwListener, BnHwListener>(toBinder(service))), nullptr);
    EXPECT_EQ((fromBinder<IListener, BpHwListener, BnHwListener>(nullptr)), nullptr);
}

TEST(InProcessTest, Casts) {
    const sp<IBase> base = new Everything;
    EXPECT_NE(sp<IEverything>(IEverything::castFrom(base)), nullptr);
    EXPECT_EQ(sp<IListener>(IListener::castFrom(base)), nullptr);
}

// A custom stub that replaces the generated one is what clients reach.
class StubbornStub : public BnHwEverything {
  public:
    explicit StubbornStub(const sp<IEverything>& service) : BnHwEverything(service) {}
    status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                        TransactCallback callback) override {
        if (code == TEXT) {
            return BAD_VALUE;
        }
        return BnHwEverything::onTransact(code, data, reply, flags, std::move(callback));
    }
};

class StubMapTest : public ::testing::Test {
  protected:
    StubMapTest() { getBnConstructorMap().erase(IEverything::descriptor); }
    ~StubMapTest() override { getBnConstructorMap().set(IEverything::descriptor, mFormer); }

    const testing::HostSet mSet;
    const std::function<sp<IBinder>(void*)> mFormer =
            getBnConstructorMap().get(IEverything::descriptor, nullptr);
};

TEST_F(StubMapTest, StubThatRefuses) {
    getBnConstructorMap().set(IEverything::descriptor, [](void* service) -> sp<IBinder> {
        return new StubbornStub(static_cast<IEverything*>(service));
    });
    const sp<IEverything> service = new Everything;
    EXPECT_EQ(service->registerAsService("stubborn"), OK);
    const sp<IEverything> proxy = IEverything::getService("stubborn");
    ASSERT_NE(proxy, nullptr);
    const auto refused = proxy->text("", [](const hidl_string&) { FAIL(); });
    EXPECT_EQ(refused.description(), "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '");
    EXPECT_FALSE(refused.isDeadObject());
    EXPECT_EQ(static_cast<uint32_t>(proxy->length("abc")), 3U);
}

TEST_F(StubMapTest, InterfaceWithoutAStubCannotBeRegistered) {
    const sp<IEverything> service = new Everything;
    EXPECT_EQ(service->registerAsService("none"), BAD_VALUE);
    getBnConstructorMap().set(IEverything::descriptor, mFormer);
    EXPECT_EQ(service->registerAsService("some"), OK);
}

TEST(PassthroughTest, OwnObjectIsNotWrapped) {
    const sp<IEverything> service = new Everything;
    EXPECT_EQ(wrapPassthrough(service), service);
    EXPECT_EQ(wrapPassthrough(sp<IEverything>()), nullptr);
}

TEST(PassthroughTest, RemoteObjectIsNotWrapped) {
    const testing::HostSet set;
    const Server server;
    const sp<IEverything> service = server.service();
    EXPECT_EQ(wrapPassthrough(service), service);
}

}  // namespace
}  // namespace mlk::test

// The methods that every interface has, over a connection.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

using ::android::hidl::base::V1_0::DebugInfo;
using ::android::hidl::base::V1_0::IBase;
using ::testing::Each;
using ::testing::ElementsAre;

class BaseMethodsTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
    Server mServer;
    sp<IEverything> mService = mServer.service();
};

TEST_F(BaseMethodsTest, InterfaceChain) {
    std::vector<std::string> chain;
    ASSERT_TRUE(mService->interfaceChain([&](const hidl_vec<hidl_string>& names) {
                            chain.assign(names.begin(), names.end());
                        })
                        .isOk());
    EXPECT_THAT(chain, ElementsAre("mlk.test.everything@1.0::IEverything",
                                   "android.hidl.base@1.0::IBase"));
}

TEST_F(BaseMethodsTest, InterfaceDescriptor) {
    std::string name;
    ASSERT_TRUE(mService->interfaceDescriptor([&](const hidl_string& n) { name = n; }).isOk());
    EXPECT_EQ(name, "mlk.test.everything@1.0::IEverything");
}

TEST_F(BaseMethodsTest, HashOfAnInterfaceThatIsNotFrozenIsZero) {
    std::vector<std::vector<uint8_t>> hashes;
    ASSERT_TRUE(mService->getHashChain([&](const hidl_vec<hidl_array<uint8_t, 32>>& chain) {
                            for (const auto& hash : chain) {
                                hashes.emplace_back(hash.data(), hash.data() + 32);
                            }
                        })
                        .isOk());
    ASSERT_EQ(hashes.size(), 2U);
    EXPECT_THAT(hashes[0], Each(0));
    EXPECT_THAT(hashes[0], ::testing::SizeIs(32));
}

TEST_F(BaseMethodsTest, Ping) {
    const auto called = mService->ping();
    EXPECT_TRUE(called.isOk()) << called.description();
}

TEST_F(BaseMethodsTest, DebugInfo) {
    DebugInfo info{};
    ASSERT_TRUE(mService->getDebugInfo([&](const DebugInfo& i) { info = i; }).isOk());
    EXPECT_EQ(mServer.pid(), info.pid);
    EXPECT_NE(info.ptr, 0U);
    EXPECT_EQ(info.arch, sizeof(void*) == 8 ? DebugInfo::Architecture::IS_64BIT
                                            : DebugInfo::Architecture::IS_32BIT);
}

TEST_F(BaseMethodsTest, DebugWritesToTheDescriptor) {
    Pipe pipe;
    std::vector<unique_fd> ends;
    ends.push_back(std::move(pipe.in));
    {
        const hidl_handle handle = handleOf(std::move(ends));
        ASSERT_TRUE(mService->debug(handle, {"first", "second"}).isOk());
    }
    // Reads to the end: the server has closed its side.
    EXPECT_EQ(readFrom(pipe.out.get(), 1000), "first\nsecond\n");
    EXPECT_TRUE(mService->debug(hidl_handle(), {"nowhere"}).isOk());
}

TEST_F(BaseMethodsTest, MethodsWithoutEffectOnAHost) {
    const auto traced = mService->setHALInstrumentation();
    EXPECT_TRUE(traced.isOk()) << traced.description();
    const auto told = mService->notifySyspropsChanged();
    EXPECT_TRUE(told.isOk()) << told.description();
    EXPECT_TRUE(mService->ping().isOk());
}

TEST_F(BaseMethodsTest, CastToItsOwnAndToItsAncestor) {
    const sp<IBase> base = mService;
    const auto own = IEverything::castFrom(base);
    ASSERT_TRUE(own.isOk());
    ASSERT_NE(sp<IEverything>(own), nullptr);
    EXPECT_EQ(static_cast<uint32_t>(sp<IEverything>(own)->length("abc")), 3U);
}

TEST_F(BaseMethodsTest, CastToAnotherInterfaceGivesNull) {
    const sp<IBase> base = mService;
    const auto other = IListener::castFrom(base);
    ASSERT_TRUE(other.isOk());
    EXPECT_EQ(sp<IListener>(other), nullptr);
    const auto nothing = IListener::castFrom(sp<IBase>());
    ASSERT_TRUE(nothing.isOk());
    EXPECT_EQ(sp<IListener>(nothing), nullptr);
}

TEST_F(BaseMethodsTest, CastOfADeadObject) {
    const sp<IBase> base = mService;
    mServer.kill();
    const auto quiet = IListener::castFrom(base);
    EXPECT_TRUE(quiet.isOk());
    EXPECT_EQ(quiet.withDefault(nullptr), nullptr);
    const auto loud = IListener::castFrom(base, true);
    EXPECT_TRUE(loud.isDeadObject()) << loud.description();
}

TEST_F(BaseMethodsTest, MissingCallbackIsRefusedHere) {
    const auto called = mService->text("unheard", nullptr);
    EXPECT_FALSE(called.isOk());
    EXPECT_THAT(called.description(), ::testing::StartsWith("Status(EX_ILLEGAL_ARGUMENT)"));
    EXPECT_FALSE(mService->interfaceChain(nullptr).isOk());
}

}  // namespace
}  // namespace mlk::test

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "host/testing/FileCalls.h"
#include "host/testing/Threads.h"
#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/EditorTexts.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::mlk::testing::inThreads;

constexpr char kCaption[] = "persist.vendor.mlk.tv.enable_cc";

/** Calls one method with random arguments; gives the answer. */
using Call = std::function<std::string(IMlkTvConfigs& service, std::mt19937& random)>;

bool coin(std::mt19937& random) {
    return random() % 2 == 0;
}

/** All methods except reloadTvConfig. */
std::vector<Call> callsWithoutReload() {
    std::vector<Call> calls;
    for (const TvFlag& flag : tvFlags()) {
        calls.emplace_back([&](auto& service, auto&) { return flag.get(service); });
        calls.emplace_back([&](auto& service, auto& random) {
            const bool enabled = coin(random);
            std::string answer = flag.set(service, enabled);
            if (!flag.isCaption) {
                EXPECT_EQ(answer, enabled ? "true" : "false");
            }
            return answer;
        });
    }
    for (const TvSystem& system : tvSystems()) {
        calls.emplace_back([&](auto& service, auto&) { return system.get(service); });
        calls.emplace_back([&](auto& service, auto& random) {
            const int32_t value = system.least + static_cast<int32_t>(coin(random));
            EXPECT_EQ(system.set(service, value), std::to_string(value));
            return std::to_string(value);
        });
    }
    const auto anyType = [](std::mt19937& random) {
        return tvFlags()[random() % tvFlags().size()].type;
    };
    calls.emplace_back(
            [=](auto& service, auto& random) { return getFlag(service, anyType(random)); });
    calls.emplace_back([=](auto& service, auto& random) {
        return setFlag(service, anyType(random), coin(random));
    });
    return calls;
}

std::string fileWith(const char* flags, const char* systems) {
    std::string content;
    for (const TvFlag& flag : tvFlags()) {
        content += std::string(flag.key) + '=' + flags + '\n';
    }
    for (const TvSystem& system : tvSystems()) {
        content += std::string(system.key) + '=' + systems + '\n';
    }
    return content;
}

class ThreadsTest : public ::testing::Test {
  protected:
    static constexpr int kThreads = 10;
    static constexpr int kRounds = 5;

    TvSet mSet;
    // No thread waits for a disk.
    const ::mlk::testing::FileCalls mCalls{::mlk::testing::withoutWaiting()};

    static void callAll(const std::vector<Call>& calls, IMlkTvConfigs& service) {
        inThreads(kThreads, [&](int thread) {
            std::mt19937 random(static_cast<unsigned>(thread));
            for (int round = 0; round < kRounds; ++round) {
                for (size_t i = 0; i < calls.size(); ++i) {
                    const size_t own = i + static_cast<size_t>(thread) * 5;
                    EXPECT_NE(calls[own % calls.size()](service, random).substr(0, 7), "refused");
                }
            }
        });
    }
};

TEST_F(ThreadsTest, ValuesPropertiesAndFileAgreeAfterAllSettersAtOnce) {
    const auto service = mSet.start(fileWith("true", "1"));
    const std::vector<Call> calls = callsWithoutReload();
    ASSERT_EQ(calls.size(), 54U);
    callAll(calls, *service);
    const FileConfigEditor file(mSet.path().c_str());
    for (const TvFlag& flag : tvFlags()) {
        EXPECT_EQ(valueOf(file, flag.key), flag.get(*service)) << flag.name;
        EXPECT_EQ(mSet.property(flag.key), flag.get(*service)) << flag.name;
        if (flag.isCaption && tvFlag(kCaption).get(*service) == "false") {
            EXPECT_EQ(flag.get(*service), "false") << flag.name;
        }
    }
    for (const TvSystem& system : tvSystems()) {
        EXPECT_EQ(valueOf(file, system.key), system.get(*service)) << system.name;
        EXPECT_EQ(mSet.property(system.key), system.get(*service)) << system.name;
    }
}

TEST_F(ThreadsTest, ReloadsMayComeBetween) {
    const auto service = mSet.start(fileWith("true", "1"));
    const std::string other = mSet.dir().write("tvdata/other.config", fileWith("false", "2"));
    std::vector<Call> calls = callsWithoutReload();
    calls.emplace_back([&](auto& service_, auto& random) {
        const std::string path = coin(random) ? other : mSet.path();
        EXPECT_EQ(reload(service_, path), "true");
        return std::string();
    });
    ASSERT_EQ(calls.size(), 55U);
    callAll(calls, *service);
    EXPECT_EQ(mSet.dir().read("tvdata/other.config"), fileWith("false", "2"));
    // Both files have the digital system, so that a reload writes all entries to the first file.
    FileConfigEditor file(mSet.path().c_str());
    EXPECT_EQ(reload(*service, mSet.path()), "true");
    EXPECT_EQ(entriesOf(file), mSet.file());
    for (const TvSystem& system : tvSystems()) {
        EXPECT_EQ(valueOf(file, system.key), system.get(*service)) << system.name;
    }
}

// A reload replaces all values at once: no getter sees a mixture of old and new ones.
TEST_F(ThreadsTest, AReloadIsSeenAsAWhole) {
    const auto service = mSet.start(fileWith("true", "1"));
    const std::string other = mSet.dir().write("tvdata/other.config", fileWith("true", "1"));
    inThreads(4, [&](int thread) {
        for (int i = 0; i < 200; ++i) {
            if (thread == 0) {
                EXPECT_EQ(reload(*service, other), "true");
            } else {
                for (const TvFlag& flag : tvFlags()) {
                    EXPECT_EQ(flag.get(*service), "true");
                }
            }
        }
    });
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

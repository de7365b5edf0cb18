#include <cutils/properties.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/Threads.h"

namespace {

using ::mlk::testing::HostSet;
using ::mlk::testing::inThreads;
using ::mlk::testing::Process;
using ::testing::AnyOf;

namespace fs = std::filesystem;

std::unique_ptr<Process> startSetter(const char* key, const std::string& value, int count) {
    auto setter = std::make_unique<Process>(
            std::vector<std::string>{SETTER_PROGRAM, key, value, std::to_string(count)},
            Process::Options{{}, "", true});
    EXPECT_TRUE(setter->waitForOut("ready\n"));
    return setter;
}

int finish(Process& setter) {
    EXPECT_EQ(setter.wait(), 0);
    return std::stoi(setter.out().substr(std::string("ready\n").size()));
}

std::string valueOf(const char* key) {
    std::array<char, PROPERTY_VALUE_MAX> value{};
    property_get(key, value.data(), "missing");
    return value.data();
}

TEST(SharedStore, AnotherProcessSeesASetAtOnce) {
    const HostSet set;
    const auto setter = startSetter("a.key", "theirs", 1);
    ASSERT_EQ(property_set("a.key", "ours"), 0);
    EXPECT_EQ(valueOf("a.key"), "ours");
    setter->send("\n");
    EXPECT_EQ(finish(*setter), 1);
    EXPECT_EQ(valueOf("a.key"), "theirs");
}

TEST(SharedStore, ReadersNeverSeePartOfAValue) {
    const HostSet set;
    const std::string first(91, 'a');
    const std::string second(40, 'b');
    ASSERT_EQ(property_set("a.key", first.c_str()), 0);
    const int count = 500;
    const auto one = startSetter("a.key", first, count);
    const auto two = startSetter("a.key", second, count);
    one->send("\n");
    two->send("\n");
    while (one->running() || two->running()) {
        ASSERT_THAT(valueOf("a.key"), AnyOf(first, second));
    }
    EXPECT_EQ(finish(*one), count);
    EXPECT_EQ(finish(*two), count);
    EXPECT_EQ(std::distance(fs::directory_iterator(set.dir().path("data/property")),
                            fs::directory_iterator()),
              1);
}

TEST(SharedStore, ThreadsMaySetOneKeyAtOnce) {
    const HostSet set;
    std::atomic<int> done{0};
    inThreads(4, [&](int thread) {
        const std::string value(91, static_cast<char>('a' + thread));
        for (int count = 0; count < 200; ++count) {
            done += property_set("a.key", value.c_str()) == 0 ? 1 : 0;
            const std::string seen = valueOf("a.key");
            EXPECT_EQ(seen, std::string(91, seen[0]));
        }
    });
    EXPECT_EQ(done, 800);
}

TEST(SharedStore, OfTwoProcessesThatSetARoKeyOneWins) {
    const HostSet set;
    const auto one = startSetter("ro.key", "one", 100);
    const auto two = startSetter("ro.key", "two", 100);
    one->send("\n");
    two->send("\n");
    const int first = finish(*one);
    const int second = finish(*two);
    EXPECT_EQ(first + second, 1);
    EXPECT_EQ(valueOf("ro.key"), first == 1 ? "one" : "two");
}

TEST(SharedStore, OfManyThreadsThatSetARoKeyOneWins) {
    const HostSet set;
    for (int round = 0; round < 50; ++round) {
        const std::string key = "ro.key" + std::to_string(round);
        std::atomic<int> done{0};
        inThreads(4, [&](int) { done += property_set(key.c_str(), "value") == 0 ? 1 : 0; });
        EXPECT_EQ(done, 1);
    }
}

}  // namespace

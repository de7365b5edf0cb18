// Lets each call of the real process on a file fail, be interrupted or be the last one, in turn.
// The process lives on if it can. It starts again afterwards, and each file that it writes has the
// content from before or after a change.

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Sanitizers.h"
#include "service/tests/FaultScenario.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::mlk::testing::HostSet;
using ::testing::AnyOf;

std::map<std::string, std::string> preloaded(const HostSet& set) {
    return {{"LD_PRELOAD", ::mlk::testing::binDir() + "/../tests/mlk_faults.so"},
            {"MLK_FAULT_BELOW", set.tvconfigs() + ":" + set.tvdata() + ":" + set.impdata() + ":" +
                                        set.dir().path("data")},
            // The runtime of a sanitizer is preloaded too, and must not complain about that.
            {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}};
}

std::map<std::string, std::string> faulty(const HostSet& set, const std::string& fault) {
    auto environment = preloaded(set);
    environment["MLK_FAULT_AT"] = fault;
    return environment;
}

/** The calls of a run without faults. */
struct Reference {
    std::vector<std::string> answers;
    std::vector<State> states;
    std::map<std::string, int> calls; /**< how often each call is made */
    int allCalls = 0;                 /**< except those for memory */
    int allocationsOfTheStart = 0;

    Reference() {
        Scenario scenario;
        auto environment = preloaded(scenario.set());
        environment["MLK_FAULT_LOG"] = scenario.set().dir().path("calls");
        answers = scenario.run(environment, &states);
        std::istringstream lines(scenario.set().dir().read("calls"));
        for (std::string call; std::getline(lines, call);) {
            ++calls[call];
            allCalls += call == "memory" || call == "trim" ? 0 : 1;
            if (call == "trim" && allocationsOfTheStart == 0) {
                allocationsOfTheStart = calls["memory"];
            }
        }
    }
};

const Reference& reference() {
    static const Reference theReference;
    return theReference;
}

/** If the digital system cannot be read anywhere, its default is written to the property. */
bool isDefaultSystem(const std::string& name, const std::string& content) {
    return name == "persist.vendor.mlk.tv.dtv_system" && content == "0";
}

/**
 * After any fault: each file has the content of some moment of a run without faults, and the
 * process starts and answers.
 */
void expectWhole(Scenario& scenario, bool canRead = true) {
    const State state = scenario.state();
    for (const auto& [name, content] : state) {
        if (!canRead && isDefaultSystem(name, content)) {
            continue;
        }
        const bool known = std::any_of(reference().states.begin(), reference().states.end(),
                                       [&, &key = name, &text = content](const State& one) {
                                           return one.at(key) == text;
                                       });
        EXPECT_TRUE(known) << name << " holds: " << content;
    }
    scenario.expectNoEnd();
    EXPECT_EQ(scenario.run({}), reference().answers);
}

TEST(FaultsTest, RunWithoutFaults) {
    EXPECT_THAT(reference().answers,
                ::testing::ElementsAre("started", "1 1", "1 1", "1 1", "1 1", "1 0", "1 0", "1 2",
                                       "1 DVB", "1 1", "GERMANY\nNORWAY\n"));
    for (const char* call : {"open", "read", "write", "fsync", "close", "ftruncate", "fallocate",
                             "mkdir", "rename", "unlink"}) {
        EXPECT_GT(reference().calls.count(call), 0U) << call;
    }
}

struct Fault {
    const char* call;
    const char* action;
    bool isHarmless; /**< no answer shows it */
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.call << " " << fault.action;
}

class EachCallTest : public ::testing::TestWithParam<Fault> {};

TEST_P(EachCallTest, FailsOnceInItsTurn) {
    const auto& [call, action, isHarmless] = GetParam();
    const auto calls = reference().calls.find(call);
    ASSERT_NE(calls, reference().calls.end());
    constexpr int kStep = ::mlk::testing::kThreadSanitizer ? 3 : 1;
    for (int number = 1; number <= calls->second; number += kStep) {
        const std::string fault = std::string(call) + " " + std::to_string(number) + " " + action;
        SCOPED_TRACE(fault);
        Scenario scenario;
        const std::vector<std::string> answers = scenario.run(faulty(scenario.set(), fault));
        EXPECT_TRUE(scenario.runs()) << scenario.log();
        EXPECT_EQ(answers.size(), reference().answers.size());
        EXPECT_EQ(std::count(answers.begin(), answers.end(), "dead"), 0);
        EXPECT_THAT(answers.back(), AnyOf(reference().answers.back(), ""))
                << "a file is delivered whole or not at all";
        if (isHarmless) {
            EXPECT_EQ(answers, reference().answers);
            EXPECT_EQ(scenario.state(), reference().states.back());
        }
        expectWhole(scenario);
    }
}

std::string nameOf(const ::testing::TestParamInfo<Fault>& fault) {
    return fault.param.call;
}

constexpr const char* kInterrupted = "4";
constexpr const char* kInputOutputError = "5";
constexpr const char* kNoSpace = "28";
static_assert(EINTR == 4 && EIO == 5 && ENOSPC == 28);

INSTANTIATE_TEST_SUITE_P(
        Errors, EachCallTest,
        ::testing::Values(Fault{"open", kInputOutputError, false}, Fault{"openw", kNoSpace, false},
                          Fault{"access", kInputOutputError, false},
                          Fault{"read", kInputOutputError, false}, Fault{"write", kNoSpace, false},
                          Fault{"fsync", kInputOutputError, false},
                          Fault{"close", kInputOutputError, true},
                          Fault{"ftruncate", kInputOutputError, false},
                          Fault{"fallocate", kNoSpace, false}, Fault{"mkdir", kNoSpace, false},
                          Fault{"rename", kNoSpace, false},
                          Fault{"unlink", kInputOutputError, true}),
        nameOf);

INSTANTIATE_TEST_SUITE_P(
        Interruptions, EachCallTest,
        ::testing::Values(Fault{"open", kInterrupted, true}, Fault{"openw", kInterrupted, true},
                          Fault{"read", kInterrupted, true}, Fault{"write", kInterrupted, true},
                          Fault{"fsync", kInterrupted, true}, Fault{"close", kInterrupted, true},
                          Fault{"ftruncate", kInterrupted, true},
                          Fault{"fallocate", kInterrupted, true}),
        nameOf);

constexpr const char* kNotOffered = "95";
constexpr const char* kInvalid = "22";
static_assert(EOPNOTSUPP == 95 && EINVAL == 22);

// Not every file system has them.
INSTANTIATE_TEST_SUITE_P(NotOffered, EachCallTest,
                         ::testing::Values(Fault{"fallocate", kNotOffered, true},
                                           Fault{"fsync", kInvalid, true}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(Halves, EachCallTest,
                         ::testing::Values(Fault{"read", "short", true},
                                           Fault{"write", "short", true}),
                         nameOf);

struct Lasting {
    const char* name;
    const char* fault;
    std::string log;     /**< a part of one line that reports it */
    bool canRead = true; /**< the files and properties can be read */
};

void PrintTo(const Lasting& lasting, std::ostream* out) {
    *out << lasting.fault;
}

class LastingTest : public ::testing::TestWithParam<Lasting> {};

TEST_P(LastingTest, CostsWhatItTouchesOnly) {
    Scenario scenario;
    const std::vector<std::string> answers = scenario.run(faulty(scenario.set(), GetParam().fault));
    EXPECT_TRUE(scenario.runs()) << scenario.log();
    EXPECT_EQ(answers.size(), reference().answers.size());
    EXPECT_EQ(std::count(answers.begin(), answers.end(), "dead"), 0);
    EXPECT_THAT(scenario.log(), ::testing::ContainsRegex(GetParam().log));
    expectWhole(scenario, GetParam().canRead);
}

INSTANTIATE_TEST_SUITE_P(
        , LastingTest,
        ::testing::Values(
                Lasting{"FullDisk", "change 1+ 28",
                        "E/MlkProjectConfigs.*project_id.bin: cannot be written: No space left"},
                Lasting{"FullDiskUnderAnOpenFile", "write 1+ 28",
                        "E/MlkProjectConfigs.*country_id.bin: cannot be written: No space left"},
                Lasting{"ReadOnly", "change 1+ 30",
                        "E/MlkProjectConfigs.*project_id.bin: cannot be written: Read-only"},
                Lasting{"NoPermissionToRead", "open 1+ 13",
                        "E/MlkProjectConfigs.*customer.ini: cannot be read: Permission denied",
                        false},
                Lasting{"NoPermissionAtAll", "any 1+ 13",
                        "E/MlkProjectConfigs.*partition .*/tvconfigs cannot be read: Permission",
                        false},
                Lasting{"FailingDisk", "read 1+ 5",
                        "E/MlkProjectConfigs.*customer.ini:0: cannot be read further: Input",
                        false}),
        [](const ::testing::TestParamInfo<Lasting>& lasting) { return lasting.param.name; });

TEST(FaultsTest, SavedCountryThatCannotBeSeenNowIsNotReplaced) {
    const std::string norway = "COUNTRY_ID=" + std::to_string(kNorway) + "\n";
    Scenario scenario;
    scenario.set().dir().write("tvdata/tvsysmap/country_id.bin", norway);
    auto environment = faulty(scenario.set(), "access 1+ 5");
    environment["MLK_FAULT_BELOW"] = scenario.set().tvdata();
    ServiceProcess server(environment);
    ASSERT_TRUE(server.waitUntilRegistered());
    EXPECT_EQ(scenario.read("tvdata/tvsysmap/country_id.bin"), norway);
    EXPECT_TRUE(server.process().waitForErr("country_id.bin failed!"));
}

/** A set some of whose partitions are missing. */
class MissingTest : public ::testing::TestWithParam<const char*> {};

TEST_P(MissingTest, PartitionIsToldOnceAndTheRestIsServed) {
    Scenario scenario;
    const std::string folder = scenario.set().dir().path(GetParam());
    std::filesystem::remove_all(folder);
    const std::vector<std::string> answers = scenario.run({});
    EXPECT_TRUE(scenario.runs()) << scenario.log();
    EXPECT_EQ(answers.size(), reference().answers.size());
    EXPECT_EQ(std::count(answers.begin(), answers.end(), "dead"), 0);
    const std::string line = "partition " + folder + " cannot be read";
    const size_t first = scenario.log().find(line);
    EXPECT_NE(first, std::string::npos) << scenario.log();
    EXPECT_EQ(scenario.log().find(line, first + 1), std::string::npos) << scenario.log();
}

INSTANTIATE_TEST_SUITE_P(, MissingTest, ::testing::Values("tvconfigs", "tvdata", "impdata"));

/** One of the allocations fails. The process may end, but it starts again. */
TEST(FaultsTest, NoMemoryForOneAllocation) {
    const auto allocations = reference().calls.find("memory");
    if (allocations == reference().calls.end()) {
        GTEST_SKIP() << "a sanitizer has the memory";
    }
    constexpr int kTried = 60;
    for (int i = 0; i < kTried; ++i) {
        const int number = 1 + allocations->second * i / kTried;
        const std::string fault = "memory " + std::to_string(number) + " 12";
        SCOPED_TRACE(fault);
        Scenario scenario;
        const std::vector<std::string> answers = scenario.run(faulty(scenario.set(), fault));
        if (answers.front() == "started") {
            EXPECT_TRUE(scenario.runs()) << "a call that runs out of memory costs that call";
        }
        expectWhole(scenario);
    }
}

/** After the start, all allocations fail from some moment on. No call may end the process. */
TEST(FaultsTest, NoMemoryAnyMore) {
    const auto allocations = reference().calls.find("memory");
    if (allocations == reference().calls.end()) {
        GTEST_SKIP() << "a sanitizer has the memory";
    }
    constexpr int kTried = 60;
    int started = 0;
    for (int i = 0; i < kTried; ++i) {
        const int number = reference().allocationsOfTheStart + 1 + i * 2;
        const std::string fault = "memory " + std::to_string(number) + "+ 12";
        SCOPED_TRACE(fault);
        Scenario scenario;
        const std::vector<std::string> answers = scenario.run(faulty(scenario.set(), fault));
        if (answers.front() == "started") {
            ++started;
            EXPECT_TRUE(scenario.runs()) << "a call that runs out of memory costs that call";
        }
        expectWhole(scenario);
    }
    EXPECT_GT(started, 0);
}

/** A part of all calls, so that the parts run in parallel. */
class EachMomentTest : public ::testing::TestWithParam<int> {
  public:
    static constexpr int kParts = 6;
};

TEST_P(EachMomentTest, IsTheLast) {
    // A process that is killed tells a sanitizer nothing; the one that starts afterwards does.
    constexpr int kStep = kParts * (::mlk::testing::kSanitized ? 5 : 1);
    for (int number = GetParam() + 1; number <= reference().allCalls; number += kStep) {
        const std::string fault = "any " + std::to_string(number) + " kill";
        SCOPED_TRACE(fault);
        Scenario scenario;
        scenario.expectEnd();
        scenario.run(faulty(scenario.set(), fault));
        EXPECT_FALSE(scenario.runs());
        expectWhole(scenario);
    }
}

INSTANTIATE_TEST_SUITE_P(Kills, EachMomentTest, ::testing::Range(0, EachMomentTest::kParts));

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0

// Every call of the real process on a file fails, is interrupted or is its last, one after the
// other. The process lives on where it can; afterwards it starts again, and each file that it
// writes holds what it held before or after a change.

#include <gmock/gmock.h>
#include <signal.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "host/testing/Sanitizers.h"
#include "service/tests/ServiceProcess.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::mlk::testing::HostSet;
using ::testing::AnyOf;

constexpr const char* kProperties[] = {
        "persist.vendor.mlk.tv.enable_pvr", "persist.vendor.mlk.tv.enable_vga",
        "persist.vendor.mlk.tv.dtv_system", "persist.vendor.mlk.forcestr"};
constexpr int kNorway = 29;

/// What the files of a set hold that the process writes, as the next start reads them.
using State = std::map<std::string, std::string>;

/// A set with two models and two countries, one call of each kind on it, and what they are
/// answered.
class Scenario {
  public:
    Scenario() {
        write("customer.ini", "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/sys.ini\n");
        write("sys.ini", "Model_1=/tvconfigs/model/A.ini\nModel_2=/tvconfigs/model/B.ini\n");
        for (const char* model : {"A", "B"}) {
            write(std::string("model/") + model + ".ini",
                  std::string("[PANEL]\nm_pPanelName=") + model +
                          "\n[LiveTV]\nTvConfig=/tvconfigs/tv.config\n[COUNTRY]\n"
                          "tvSysMap=/tvconfigs/tvsys.xml\nCOUNTRY_PATH=/tvconfigs/list\n"
                          "[KARAOKE]\nKARAOKE_CONFIG_PATH=/tvconfigs/karaoke.ini\n");
        }
        write("karaoke.ini", "[S]\nk=1\n");
        write("list", "GERMANY\nNORWAY\n");
        write("tvsys.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration><TvSystem type=\"DVB\">"
              "<Item category=\"[PANEL]\" key=\"m_pPanelName\" value=\"DVB\"/>"
              "</TvSystem></TvSystemConfigration>");
        write("countries.xml", country("GERMANY", "de") + country("NORWAY", "no"));
        write("tv_de.config", kTvConfig);
        write("tv_no.config", kTvConfig);
        write("other.config",
              "persist.vendor.mlk.tv.enable_vga=true\npersist.vendor.mlk.tv.enable_pvr=true\n"
              "persist.vendor.mlk.tv.dtv_system=4\n");
        mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=1\n");
    }

    /// Starts the process and makes the calls. Gives what each is answered; of a process that does
    /// not live "dead" from there on. `states` receives what the files hold in between.
    std::vector<std::string> run(const std::map<std::string, std::string>& environment,
                                 std::vector<State>* states = nullptr) {
        std::vector<std::string> answers;
        const auto next = [&](std::string answer) {
            answers.push_back(std::move(answer));
            if (states != nullptr) {
                states->push_back(state());
            }
        };
        if (states != nullptr) {
            states->push_back(state());
        }
        ServiceProcess server(environment);
        next(server.waitUntilRegistered() ? "started" : "dead");
        const auto project = IMlkProjectConfigs::tryGetService();
        const auto tv = IMlkTvConfigs::tryGetService();
        const auto framework = IMlkFrameworkConfigs::tryGetService();
        if (project != nullptr && tv != nullptr && framework != nullptr) {
            next(asked(*project, &IMlkProjectConfigs::setProjectId, 2));
            next(asked(*project, &IMlkProjectConfigs::setCountryId, kNorway));
            next(asked(*tv, &IMlkTvConfigs::setPvrEnabled, true));
            next(asked(*tv, &IMlkTvConfigs::reloadTvConfig, mSet.tvconfigs() + "/other.config"));
            next(asked(*tv, &IMlkTvConfigs::setVgaEnabled, false));
            next(asked(*framework, &IMlkFrameworkConfigs::setForceStrEnabled, false));
            next(asked(*project, &IMlkProjectConfigs::getProjectId));
            next(asked(*project, &IMlkProjectConfigs::getPanelName));
            next(asked(*tv, &IMlkTvConfigs::pvrEnabled));
        }
        if (std::find(answers.begin(), answers.end(), "dead") != answers.end()) {
            server.process().wait();  // it may still be on its way
        }
        mRuns = server.process().running();
        mLog = server.process().err();
        return answers;
    }
    bool runs() const { return mRuns; }
    const std::string& log() const { return mLog; }

    State state() const {
        const ::mlk::testing::LogCapture quiet;
        State state;
        state["project"] = read("impdata/project_id.bin");
        state["country"] = read("tvdata/tvsysmap/country_id.bin");
        for (const char* file : {"tv_de.config", "tv_no.config"}) {
            implementation::FileConfigEditor editor((mSet.tvconfigs() + "/" + file).c_str());
            state[file] = implementation::entriesOf(editor);
        }
        for (const char* property : kProperties) {
            state[property] = read(std::string("data/property/") + property);
        }
        return state;
    }
    std::string read(const std::string& file) const {
        return std::filesystem::exists(mSet.dir().path(file)) ? mSet.dir().read(file) : "none";
    }
    const HostSet& set() const { return mSet; }

  private:
    static constexpr const char* kTvConfig =
            "# as delivered\npersist.vendor.mlk.tv.enable_pvr=false\n"
            "persist.vendor.mlk.tv.dtv_system=1\n";

    static std::string country(const std::string& name, const std::string& file) {
        return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name +
               "</COUNTRY_NAME><TV_SYSTEM>DVB</TV_SYSTEM><TV_CONFIG>/tvconfigs/tv_" + file +
               ".config</TV_CONFIG></COUNTRY_TVCONFIG_MAP>";
    }
    void write(const std::string& name, const std::string& text) const {
        mSet.dir().write("tvconfigs/" + name, text);
    }

    template <typename Interface, typename... Parameters, typename... Arguments>
    static std::string asked(Interface& object,
                             ::android::hardware::Return<void> (Interface::*method)(Parameters...),
                             const Arguments&... arguments) {
        std::string answer;
        const auto status = (object.*method)(arguments..., [&](const auto& got) {
            std::ostringstream text;
            text << got.success << " " << textOf(got.value);
            answer = text.str();
        });
        return status.isOk() ? answer : status.isDeadObject() ? "dead" : status.description();
    }
    static std::string textOf(const ::android::hardware::hidl_string& text) { return text; }
    static std::string textOf(int32_t number) { return std::to_string(number); }

    HostSet mSet;
    bool mRuns = false;
    std::string mLog;
};

std::map<std::string, std::string> preloaded(const HostSet& set) {
    return {{"LD_PRELOAD", ::mlk::testing::binDir() + "/../tests/mlk_faults.so"},
            {"MLK_FAULT_BELOW", set.tvconfigs() + ":" + set.tvdata() + ":" + set.impdata() + ":" +
                                        set.dir().path("data")},
            // A sanitizer's runtime takes part in the program and does not mind who else does.
            {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}};
}

std::map<std::string, std::string> faulty(const HostSet& set, const std::string& fault) {
    auto environment = preloaded(set);
    environment["MLK_FAULT_AT"] = fault;
    return environment;
}

/// What a run without faults makes.
struct Reference {
    std::vector<std::string> answers;
    std::vector<State> states;
    std::map<std::string, int> calls;  ///< how often each call is made
    int allCalls = 0;                  ///< but for memory

    Reference() {
        Scenario scenario;
        auto environment = preloaded(scenario.set());
        environment["MLK_FAULT_LOG"] = scenario.set().dir().path("calls");
        answers = scenario.run(environment, &states);
        std::istringstream lines(scenario.set().dir().read("calls"));
        for (std::string call; std::getline(lines, call);) {
            ++calls[call];
            allCalls += call == "memory" ? 0 : 1;
        }
    }
};

const Reference& reference() {
    static const Reference theReference;
    return theReference;
}

/// After whatever happened: each file holds what it held at some moment of a run without faults,
/// and the process starts and answers.
void expectWhole(Scenario& scenario) {
    const State state = scenario.state();
    for (const auto& [name, content] : state) {
        const bool known = std::any_of(reference().states.begin(), reference().states.end(),
                                       [&, &key = name, &text = content](const State& one) {
                                           return one.at(key) == text;
                                       });
        EXPECT_TRUE(known) << name << " holds: " << content;
    }
    const std::vector<std::string> answers = scenario.run({});
    EXPECT_EQ(answers, reference().answers);
}

TEST(FaultsTest, RunWithoutFaults) {
    EXPECT_THAT(reference().answers, ::testing::ElementsAre("started", "1 1", "1 1", "1 1", "1 1",
                                                            "1 0", "1 0", "1 2", "1 DVB", "1 1"));
    for (const char* call :
         {"open", "read", "write", "fsync", "close", "ftruncate", "mkdir", "rename", "unlink"}) {
        EXPECT_GT(reference().calls.count(call), 0U) << call;
    }
}

struct Fault {
    const char* call;
    const char* action;
    bool isHarmless;  ///< nobody notices
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.call << " " << fault.action;
}

class EachCallTest : public ::testing::TestWithParam<Fault> {};

TEST_P(EachCallTest, FailsOnceInItsTurn) {
    const auto& [call, action, isHarmless] = GetParam();
    const auto calls = reference().calls.find(call);
    ASSERT_NE(calls, reference().calls.end());
    for (int number = 1; number <= calls->second; ++number) {
        const std::string fault = std::string(call) + " " + std::to_string(number) + " " + action;
        SCOPED_TRACE(fault);
        Scenario scenario;
        const std::vector<std::string> answers = scenario.run(faulty(scenario.set(), fault));
        EXPECT_TRUE(scenario.runs()) << scenario.log();
        EXPECT_EQ(answers.size(), reference().answers.size());
        EXPECT_EQ(std::count(answers.begin(), answers.end(), "dead"), 0);
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

INSTANTIATE_TEST_SUITE_P(Errors, EachCallTest,
                         ::testing::Values(Fault{"open", kInputOutputError, false},
                                           Fault{"read", kInputOutputError, false},
                                           Fault{"write", kNoSpace, false},
                                           Fault{"fsync", kInputOutputError, false},
                                           Fault{"close", kInputOutputError, true},
                                           Fault{"ftruncate", kInputOutputError, false},
                                           Fault{"mkdir", kNoSpace, false},
                                           Fault{"rename", kNoSpace, false},
                                           Fault{"unlink", kInputOutputError, true}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(Interruptions, EachCallTest,
                         ::testing::Values(Fault{"open", kInterrupted, true},
                                           Fault{"read", kInterrupted, true},
                                           Fault{"write", kInterrupted, true},
                                           Fault{"fsync", kInterrupted, true},
                                           Fault{"close", kInterrupted, true},
                                           Fault{"ftruncate", kInterrupted, true}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(Halves, EachCallTest,
                         ::testing::Values(Fault{"read", "short", true},
                                           Fault{"write", "short", true}),
                         nameOf);

/// One of so many equal parts of all calls, so that they run beside one another.
class EachMomentTest : public ::testing::TestWithParam<int> {
  public:
    static constexpr int kParts = 6;
};

TEST_P(EachMomentTest, IsTheLast) {
    for (int number = GetParam() + 1; number <= reference().allCalls; number += kParts) {
        const std::string fault = "any " + std::to_string(number) + " kill";
        SCOPED_TRACE(fault);
        Scenario scenario;
        scenario.run(faulty(scenario.set(), fault));
        EXPECT_FALSE(scenario.runs());
        expectWhole(scenario);
    }
}

INSTANTIATE_TEST_SUITE_P(Kills, EachMomentTest, ::testing::Range(0, EachMomentTest::kParts));

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0

#include "service/Services.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "host/testing/HostSet.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "service/tests/ServiceProcess.h"
#include "tvconfigs/MlkTvConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::hardware::Status;
using ::mlk::testing::HostSet;
using ::testing::ElementsAre;

std::vector<std::string> gEvents;
std::string gTvConfigPath;

/** The names registered now, one letter each. */
std::string registered() {
    std::string names;
    names += IMlkProjectConfigs::tryGetService() != nullptr ? "P" : "";
    names += IMlkTvConfigs::tryGetService() != nullptr ? "T" : "";
    names += IMlkFrameworkConfigs::tryGetService() != nullptr ? "F" : "";
    return names;
}

/** A project service with the test's answers, and a call that fails after them. */
class TalkingProject : public MlkProjectConfigs {
  public:
    explicit TalkingProject(std::vector<OptionalString> answers) : mAnswers(std::move(answers)) {}

    Return<void> getConfig(const ProjectConfigKey& key, getConfig_cb callback) override {
        gEvents.push_back("asked for " + std::string(key.category) + std::string(key.key));
        for (const OptionalString& answer : mAnswers) {
            callback(answer);
        }
        return Status::fromExceptionCode(Status::EX_ILLEGAL_STATE);
    }

  private:
    const std::vector<OptionalString> mAnswers;
};

ServiceMakers makersWith(const std::vector<OptionalString>& answers) {
    return {[answers] {
                gEvents.push_back("project made, registered: " + registered());
                return new TalkingProject(answers);
            },
            [](const char* path) {
                gEvents.push_back("tv made, registered: " + registered());
                gTvConfigPath = path;
                return new MlkTvConfigs(path);
            },
            [] {
                gEvents.push_back("framework made, registered: " + registered());
                return new MlkFrameworkConfigs;
            }};
}

TEST(Services, EachIsMadeAfterTheOneBeforeItWasRegistered) {
    const HostSet set;
    const Services services(makersWith({{true, "/a/tv.config"}}));
    EXPECT_THAT(gEvents, ElementsAre("project made, registered: ", "asked for [LiveTV]TvConfig",
                                     "tv made, registered: P", "framework made, registered: PT"));
    EXPECT_EQ(registered(), "PTF");
    gEvents.clear();
}

TEST(Services, ThePathIsTakenWhateverTheAnswerSays) {
    const HostSet set;
    const std::vector<std::pair<std::vector<OptionalString>, const char*>> rows = {
            {{{true, "/a/tv.config"}}, "/a/tv.config"},
            {{{false, "/b/tv.config"}}, "/b/tv.config"},
            {{{true, ""}}, ""},
            {{}, ""}};
    for (const auto& [answers, path] : rows) {
        const Services services(makersWith(answers));
        EXPECT_EQ(gTvConfigPath, path);
    }
    gEvents.clear();
}

TEST(Services, ThePathComesFromTheProjectsFiles) {
    const HostSet set;
    writeProject(set);
    ServiceMakers makers = makersWith({});
    makers.project = [] { return new MlkProjectConfigs; };
    {
        const Services services(makers);
        EXPECT_EQ(gTvConfigPath, set.tvconfigs() + "/one/tv.config");
    }
    writeProject(set, "");
    const Services services(makers);
    EXPECT_EQ(gTvConfigPath, "");
    gEvents.clear();
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

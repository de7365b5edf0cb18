// Snapshots that are none: what is said of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "tools/mlktree/answers/Snapshot.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

using nlohmann::json;
using ::testing::HasSubstr;

/** A snapshot that somebody has changed, and what is said of it. */
struct Hostile {
    const char* name;
    std::function<std::string(const json& good)> text;
    const char* message;
};

std::string changed(const json& good, const std::function<void(json&)>& change) {
    json all = good;
    change(all);
    return all.dump();
}

std::string nested(size_t depth) {
    return R"({"version":1,"sets":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
}

const Hostile kHostile[] = {
        {"Nothing", [](const json&) { return std::string(); }, "it is no JSON"},
        {"Text", [](const json&) { return std::string("PROJECT_ID=1\n"); }, "it is no JSON"},
        {"Cut", [](const json& good) { return good.dump().substr(0, 5000); }, "it is no JSON"},
        {"Deep", [](const json&) { return nested(1000000); }, "nested too deeply"},
        {"DeepObjects",
         [](const json&) {
             std::string text;
             for (int i = 0; i < 1000000; ++i) {
                 text += "{\"a\":";
             }
             return text;
         },
         "nested too deeply"},
        {"NoObject", [](const json&) { return std::string("[]"); }, "it is no object"},
        {"NoVersion", [](const json&) { return std::string(R"({"sets":[]})"); },
         "it lacks \"version\""},
        {"OtherVersion",
         [](const json& good) { return changed(good, [](json& all) { all["version"] = 2; }); },
         "it has the version 2, and this mlktree reads version 1"},
        {"VersionText",
         [](const json& good) { return changed(good, [](json& all) { all["version"] = "1"; }); },
         "version is no number"},
        {"NoSets",
         [](const json& good) { return changed(good, [](json& all) { all.erase("sets"); }); },
         "it lacks \"sets\""},
        {"SetsAreNoArray",
         [](const json& good) {
             return changed(good, [](json& all) { all["sets"] = json::object(); });
         },
         "sets is no array"},
        {"CountriesOfACustomerAreText",
         [](const json& good) {
             return changed(good, [](json& all) { all["customers"][0]["countries"] = "ITALY"; });
         },
         "customers[0].countries is no array"},
        {"SetTwice",
         [](const json& good) {
             return changed(good, [](json& all) { all["sets"].push_back(all["sets"][3]); });
         },
         "is a set that was there before"},
        {"ModelText",
         [](const json& good) {
             return changed(good, [](json& all) { all["sets"][1]["model"] = "2"; });
         },
         "sets[1].model is no whole number from -2147483648 to 2147483647"},
        {"ModelTooLarge",
         [](const json& good) {
             return changed(good, [](json& all) { all["sets"][1]["model"] = 1U << 31; });
         },
         "sets[1].model is no whole number"},
        {"MissingReference",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["sets"][1]["$merge"][0]["$ref"] = "#/shared/answers/99999";
             });
         },
         "sets[1].$merge does not refer to an element of shared.answers"},
        {"ReferenceElsewhere",
         [](const json& good) {
             return changed(good,
                            [](json& all) { all["sets"][1]["plans"]["$ref"] = "/etc/passwd"; });
         },
         "sets[1].plans is no reference of the form {\"$ref\":\"#/shared/plans/0\"}"},
        {"ReferenceInACircle",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["answers"][0] = {{"$ref", "#/shared/answers/0"}};
             });
         },
         "shared.answers[0] lacks \"items\""},
        {"PieceInACircle",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["plans"][0] = {{"DTV_ANTENNA", {{"$ref", "#/shared/plans/0"}}}};
             });
         },
         "shared.plans[0].DTV_ANTENNA is no reference of the form"},
        {"CountryMissing",
         [](const json& good) {
             return changed(good, [](json& all) { all["sets"][0].erase("country"); });
         },
         "sets[0] lacks \"country\""},
        {"TooManyLayers",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["answers"][0]["items"] = {
                         {"$merge", json::array({json::object(), json::object(), json::object(),
                                                 json::object()})}};
             });
         },
         "shared.answers[0].items.$merge has more than 3 layers"},
        {"ItemIsAnArray",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["items"][0]["[PANEL]"]["m_pPanelName"] = json::array();
             });
         },
         "shared.items[0].[PANEL].m_pPanelName is no text"},
        {"DelayIsAFraction",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["delays"][0]["none"]["[SPEAKER]"]["ATV_DELAY"] = 1.5;
             });
         },
         "shared.delays[0].none.[SPEAKER].ATV_DELAY is no whole number"},
        {"FrequencyTooLarge",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["shared"]["channels"][0][0]["frequency"] = 18446744073709551615U;
             });
         },
         "shared.channels[0][0].frequency is no whole number"},
        {"HashIsNoHash",
         [](const json& good) {
             return changed(good, [](json& all) {
                 all["files"].begin().value() = {{"size", 1}, {"hash", "0x"}};
             });
         },
         ".hash is no text of 16 hexadecimal digits"},
        {"ControlCharacters",
         [](const json& good) {
             return changed(good, [](json& all) { all["shared"]["items"][0]["[\x1b[31m]"] = 1; });
         },
         "[\\u001b[31m] is no object"},
};

class HostileSnapshotTest : public ::testing::TestWithParam<Hostile> {};

TEST_P(HostileSnapshotTest, IsAnErrorThatSaysWhatIsWrong) {
    const testing::QuietLog quiet;
    static const json kGood = json::parse(runMlktree({"snapshot", samplePath()}).out);
    const testing::TempDir dir;
    const std::string file = dir.write("hostile.json", GetParam().text(kGood));
    const Outcome outcome = runMlktree({"diff", file, samplePath()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr(file + " is no snapshot of mlktree: "));
    EXPECT_THAT(outcome.err, HasSubstr(GetParam().message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
}

// One thread reads a snapshot.
constexpr size_t kStep = mlk::testing::kThreadSanitizer ? 5 : 1;

INSTANTIATE_TEST_SUITE_P(Snapshots, HostileSnapshotTest,
                         ::testing::ValuesIn(mlk::testing::everyNth(kStep, kHostile)),
                         [](const auto& param) { return param.param.name; });

}  // namespace

}  // namespace mlk::tree

// Asks the running service and mlktree the same questions, for every item of every model, board and
// country of the sample.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <sstream>

#include "common/Decimal.h"
#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/Sanitizers.h"
#include "projectconfigs/ProjectSet.h"
#include "regional/CountryTable.h"
#include "tools/mlktree/set/SetCountry.h"
#include "tools/mlktree/set/SetModel.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

using nlohmann::json;
using testing::Process;

/** An AVR; both texts are empty for none. */
struct Avr {
    const char* vendor;
    const char* name;
};
constexpr Avr kAvrs[] = {{"", ""}, {"0EC0DE", "Orlan900"}, {"0AFADE", "Sundra7"}};

constexpr const char* kProject = "IMlkProjectConfigs";

/** Calls of the service and what to do with the answers: one client for all of them. */
class Calls {
  public:
    using Check = std::function<void(const json& answer)>;

    void add(
            json call, Check check = [](const json&) {}) {
        mLines += call.dump() + "\n";
        mChecks.push_back(std::move(check));
    }

    void run() const {
        Process client({testing::binDir() + "/mlkctl", "batch"}, {{}, mLines});
        EXPECT_EQ(client.wait(), 0) << client.err();
        std::istringstream out(client.out());
        size_t answers = 0;
        for (std::string line; std::getline(out, line) && answers < mChecks.size(); ++answers) {
            mChecks[answers](json::parse(line));
        }
        EXPECT_EQ(answers, mChecks.size());
    }

  private:
    std::string mLines;
    std::vector<Check> mChecks;
};

/** A copy of the sample, and the service on it. */
class AgreementTest : public ::testing::Test {
  protected:
    AgreementTest() { mSet.copyFrom(testing::sourceDir() + "/samples/partitions"); }

    std::string root() const { return mSet.dir().path(); }

    /** Stops the service and makes the set a new one of that model and board. */
    void renew(int32_t model, const std::string& board) {
        mService = nullptr;
        mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=" + std::to_string(model) + "\n");
        mSet.dir().write("impdata/board_id.bin", "BOARD_ID=" + board + "\n");
        std::filesystem::remove(root() + "/tvdata/tvsysmap/country_id.bin");
    }
    void run() {
        mService = std::make_unique<Process>(std::vector<std::string>{
                testing::binDir() + "/vendor.morlak.mlconfigs@1.0-service"});
        ASSERT_EQ(Process({testing::binDir() + "/mlkctl", "wait", "--timeout", "60"}).wait(), 0);
    }

    /** What mlktree prints. */
    json explained(std::vector<std::string> words) const {
        words.insert(words.begin(), "explain");
        words.insert(words.end(), {"--format", "json", "--tree", root()});
        const Outcome outcome = runMlktree(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return json::parse(outcome.out);
    }

    /** A path of the service as files have it. */
    std::string written(const std::string& value) const {
        return value.compare(0, root().size(), root()) == 0 ? value.substr(root().size()) : value;
    }

    void compareItems(Calls& calls, const json& items, const std::string& where) const {
        std::map<std::string, std::map<std::string, std::string>> told;
        for (const json& item : items) {
            told[item["section"]][item["key"]] = item["value"];
        }
        for (const auto& [section, keys] : told) {
            calls.add({kProject, "getConfigsByCategory", section},
                      [this, name = section + " of " + where, keys = keys](const json& answer) {
                          std::map<std::string, std::string> found;
                          for (const json& item : answer) {
                              found[item["key"]] = written(item["value"]);
                          }
                          EXPECT_EQ(keys, found) << name;
                      });
        }
        EXPECT_GT(told.size(), 40U);
    }

    static void compareFeatures(Calls& calls, const json& features, const std::string& where) {
        for (const json& feature : features) {
            const std::string reader = feature["readers"][0];
            const size_t dot = reader.find('.');
            calls.add({reader.substr(0, dot), reader.substr(dot + 1)}, [feature,
                                                                        where](const json& answer) {
                EXPECT_EQ(feature["value"], answer["value"]) << feature << " of " << where;
            });
        }
        EXPECT_EQ(features.size(), 49U);
    }

    /** Compares all delays that the options concern. */
    void compareDelays(Calls& calls, const std::vector<std::string>& options, bool isArc,
                       const std::string& where) const {
        std::vector<std::string> words = {"audio"};
        words.insert(words.end(), options.begin(), options.end());
        const json delays = explained(words);
        EXPECT_GT(delays.size(), 20U);
        for (const json& delay : delays) {
            calls.add(
                    {kProject, "getAudioDelay", delay["section"], delay["key"], isArc ? "ARC" : ""},
                    [delay, where](const json& answer) {
                        const int32_t value = std::stoi(answer["value"].get<std::string>());
                        EXPECT_EQ(delay["delay"], value) << delay << " of " << where;
                        int32_t sum = 0;
                        for (const json& summand : delay["summands"]) {
                            const int32_t number = summand["value"];
                            sum += number;
                            EXPECT_EQ(product::parseDecimal(summand["text"].get<std::string>()),
                                      number);
                        }
                        EXPECT_EQ(sum, value) << delay;
                    });
        }
    }

    void compareAllDelays(Calls& calls, const std::string& where) const {
        compareDelays(calls, {}, false, where);
        for (const Avr& avr : kAvrs) {
            std::vector<std::string> options = {"--arc"};
            if (*avr.vendor != '\0') {
                calls.add({kProject, "setAvrVendorId", avr.vendor});
                calls.add({kProject, "setAvrOSDName", avr.name});
                options.insert(options.end(), {"--avr-vendor", avr.vendor, "--avr-name", avr.name});
            }
            compareDelays(calls, options, true, where);
        }
    }

    static json jsonOf(const HidlFreqListItem& item) {
        const std::string label(item.label.data(), item.label.data() + item.label.size());
        return {{"channel", item.channel},
                {"frequency", item.frequency},
                {"bandwidth", item.bandwidth},
                {"label", label.c_str()},
                {"modulation", item.modulation}};
    }

    /** The channels of each kind of plan, by what mlkctl calls it. */
    static std::map<std::string, json> channelsOf(const std::vector<CountryPlan>& plans) {
        std::map<std::string, json> channels;
        for (const CountryPlan& plan : plans) {
            json& list = channels[nameOf(plan)] = json::array();
            for (const HidlFreqListItem& item : plan.channels) {
                list.push_back(jsonOf(item));
            }
        }
        return channels;
    }

    void comparePlans(Calls& calls, const SetModel& set, const json& country,
                      const std::string& where) const {
        const std::map<std::string, json> plans = channelsOf(plansOf(set, set.choice().country));
        std::map<std::string, size_t> told;
        for (const json& plan : country["plans"]) {
            const std::string cable = plan["cable"];
            told[plan["kind"].get<std::string>() + (cable.empty() ? "" : " " + cable)] =
                    plan["channels"];
            EXPECT_FALSE(plan["named"].is_null()) << plan;
        }
        for (const char* kind : {"DTV_ANTENNA", "DTV_CABLE", "ATV_ANTENNA", "ATV_CABLE"}) {
            const bool isCable = std::string_view(kind).find("CABLE") != std::string_view::npos;
            for (const char* cable : {"AUTO", "STD", "HRC", "IRC"}) {
                if (!isCable && std::string_view(cable) != "AUTO") {
                    continue;
                }
                const std::string name = kind + (isCable ? std::string(" ") + cable : "");
                const auto plan = plans.find(name);
                const json channels = plan != plans.end() ? plan->second : json::array();
                calls.add({kProject, "getFreqTableList", country["number"], kind, cable},
                          [name, channels, count = told[name], where](const json& answer) {
                              EXPECT_EQ(channels, answer) << name << " of " << where;
                              EXPECT_EQ(count, answer.size()) << name << " of " << where;
                          });
            }
        }
    }

    /** mlkctl's table of facts, with paths as files have them. */
    json shownByService() const {
        Process client({testing::binDir() + "/mlkctl", "show", "--json"});
        EXPECT_EQ(client.wait(), 0) << client.err();
        std::string text = client.out();
        for (size_t at = text.find(root() + "/"); at != std::string::npos;
             at = text.find(root() + "/")) {
            text.erase(at, root().size());
        }
        json shown = json::parse(text);
        shown.erase("partitions");
        return shown;
    }
    json shownByTree() const {
        const Outcome outcome = runMlktree({"show", "--format", "json"}, root());
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        json shown = json::parse(outcome.out);
        for (const char* part : {"partitions", "replaced", "findings"}) {
            EXPECT_EQ(shown.erase(part), 1U);
        }
        return shown;
    }

    testing::QuietLog mQuiet;
    testing::HostSet mSet;
    std::unique_ptr<Process> mService;
};

// Every model as it starts, with one board or the other; then every country that its map has. What
// the models add is compared once, without sanitizers.
TEST_F(AgreementTest, OfTheService) {
    size_t countries = 0;
    for (int32_t model = 1; model <= 7; model += testing::kSanitized ? 6 : 1) {
        const std::string board = model % 2 == 0 ? "/tvconfigs/board/skerry_b2.ini"
                                                 : "/tvconfigs/board/skerry_b1.ini";
        renew(model, board);
        const std::string where = "model " + std::to_string(model);
        // mlktree is asked before the service has saved a country.
        const json items = explained({});
        const json features = explained({"feature"});
        const json shown = shownByTree();
        run();
        EXPECT_EQ(shown, shownByService()) << where;
        Calls calls;
        compareItems(calls, items, where);
        compareFeatures(calls, features, where);
        compareAllDelays(calls, where);
        EXPECT_EQ(items, explained({})) << "the service has saved another country";

        const Tree tree(root(), {});
        const Settings settings;
        const TreeProperties properties(root() + "/data/property", {});
        Selection selection;
        selection.isOneSet = true;
        const ProductLine line(tree, settings, properties, selection);
        SetChoice choice = onlySetOf(line);
        const SetModel first(line, choice);
        ASSERT_NE(first.tvSystems(), nullptr);
        for (const auto& [name, record] : first.tvSystems()->map->sections()) {
            choice.country = _tv_country{
                    *product::countryNames().find(name)};  // the sample spells all of them right
            const std::string at = where + " in " + std::string(name);
            const SetModel set(line, choice);
            calls.add({kProject, "setCountryId", int32_t{choice.country}});
            compareItems(calls, explained({"--country", std::string(name)}), at);
            comparePlans(calls, set, explained({"country", std::string(name)}), at);
            ++countries;
        }
        calls.run();
    }
    EXPECT_GT(countries, testing::kSanitized ? 20U : 100U);
}

// Every plan, as `mlktree plan` shows it.
TEST_F(AgreementTest, OfChannelPlans) {
    run();
    Calls calls;
    size_t plans = 0;
    for (const char* country : {"GERMANY", "FRANCE", "USA", "BRAZIL", "CHINA", "JAPAN", "ANGOLA"}) {
        for (const char* kind : {"DTV_ANTENNA", "DTV_CABLE", "ATV_ANTENNA", "ATV_CABLE"}) {
            for (const char* cable : {"AUTO", "STD", "HRC", "IRC"}) {
                const Outcome shown =
                        runMlktree({"plan", country, kind, cable, "--format", "json"}, root());
                json channels = json::array();
                if (shown.status == 0) {
                    channels = json::parse(shown.out)["channels"];
                    ++plans;
                }
                for (json& channel : channels) {
                    channel.erase("modulationName");
                    channel.erase("line");
                }
                calls.add({kProject, "getFreqTableList", country, kind, cable},
                          [=](const json& answer) {
                              EXPECT_EQ(channels, answer) << country << kind << cable;
                          });
            }
        }
    }
    calls.run();
    EXPECT_GT(plans, 40U);
}

TEST_F(AgreementTest, OfTheProductsOwnObjects) {
    const Tree tree(root(), {});
    const Settings settings;
    const TreeProperties properties(root() + "/data/property", {});
    const ProductLine line(tree, settings, properties, {});
    product::RegionalData data([&] { return tree.partitions(); });
    size_t sets = 0;
    for (const Model& model : line.models()) {
        for (const Board& board : line.boards()) {
            const std::string path = "/" + board.file->path();
            product::ProjectSet expected(tree.partitions(), properties, data,
                                         {model.index, path, _tv_country{161}});
            for (const _tv_country country : line.countries()) {
                ASSERT_TRUE(expected.store().load(model.index, path));
                expected.region().apply(country);
                const SetModel set(line, {model.customer, &model, &board, country});
                size_t count = 0;
                std::string_view section;
                for (const auto& [name, item] : set.items()) {
                    if (name.first != section) {
                        section = name.first;
                        count += expected.items().getInfosByCategory(std::string(section)).size();
                    }
                    ASSERT_EQ(tree.hostOfWritten(item.current().value),
                              expected.items().getInfo({name.first, name.second}))
                            << name.first << " " << name.second << " of " << nameOf(set.choice());
                }
                EXPECT_EQ(set.items().size(), count);
                ++sets;
            }
        }
    }
    EXPECT_EQ(sets, line.setCount());
}

}  // namespace

}  // namespace mlk::tree

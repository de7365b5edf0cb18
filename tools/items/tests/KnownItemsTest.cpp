// The table of known items against the running service: what a row says is read is read, by the
// methods that it names and by no other; nothing else is read.

#include "projectconfigs/KnownItems.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "host/testing/HostSet.h"
#include "host/testing/QuietLog.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/MlkProjectConfigsStub.h"
#include "service/Services.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/Interface.h"
#include "tvconfigs/MlkTvConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The names of the items that were asked for since the last clear(). */
class Asked {
  public:
    using Names = std::set<std::pair<std::string, std::string>>;

    static Asked& get() {
        static Asked asked;
        return asked;
    }
    void clear() {
        const std::lock_guard<std::mutex> lock(mMutex);
        mNames.clear();
    }
    void add(std::string_view section, std::string_view key) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mNames.emplace(section, key);
    }
    Names names() {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mNames;
    }

  private:
    std::mutex mMutex;
    Names mNames;
};

// The linker has every call of ProjectParser::getInfo and getInfosByCategory go to the first of
// each two, which calls the other one (--wrap in CMakeLists.txt).
#define MLK_PARSER "_ZNK6vendor6morlak10mlkconfigs4V1_014implementation13ProjectParser"
#define MLK_GET_INFO MLK_PARSER "7getInfoB5cxx11ERKNS3_9ConfigKeyE"
#define MLK_GET_INFOS \
    MLK_PARSER        \
    "18getInfosByCategoryERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"

std::string heardInfo(const ProjectParser* parser,
                      const ConfigKey& key) asm("__wrap_" MLK_GET_INFO);
std::string realInfo(const ProjectParser* parser, const ConfigKey& key) asm("__real_" MLK_GET_INFO);
std::map<std::string, std::string> heardInfos(
        const ProjectParser* parser, const std::string& category) asm("__wrap_" MLK_GET_INFOS);
std::map<std::string, std::string> realInfos(
        const ProjectParser* parser, const std::string& category) asm("__real_" MLK_GET_INFOS);

std::string heardInfo(const ProjectParser* parser, const ConfigKey& key) {
    Asked::get().add(key.category, key.key);
    return realInfo(parser, key);
}

std::map<std::string, std::string> heardInfos(const ProjectParser* parser,
                                              const std::string& category) {
    Asked::get().add(category, "any");
    return realInfos(parser, category);
}

namespace {

using mlk::ctl::Argument;
using mlk::ctl::Interface;
using mlk::ctl::Method;
using ::testing::UnorderedElementsAreArray;

/** A section that no row has; clients ask for it. */
constexpr const char* kClients = "[CLIENTS]";

/** Where all reads of a set can be made: three services on a set of one model. */
class KnownItems : public ::testing::Test {
  protected:
    KnownItems() {
        installMlkProjectConfigsStub();
        const auto write = [this](const std::string& name, const std::string& text) {
            mSet.dir().write(name, text);
        };
        write("tvconfigs/customer.ini", "SYS_INI=/tvconfigs/sys.ini\n");
        write("tvconfigs/sys.ini", "Model_1=/tvconfigs/model.ini\n");
        write("impdata/project_id.bin", "PROJECT_ID=1\n");
        write("impdata/board_id.bin", "BOARD_ID=DEFAULT_BOARD_ID\n");
        write("tvconfigs/auxiliary.ini", std::string(kClients) + "\nkey=7\n");
        write("tvconfigs/features.config", "persist.vendor.mlk.tv.enable_hdmi=true\n");
        write("tvconfigs/countries.txt", "GERMANY\n");
        write("tvconfigs/languages.txt", "deu\n");
        write("tvconfigs/systems.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration><TvSystem type='S'><Item category='[CLIENTS]' key='key' "
              "value='Swedish'/></TvSystem></TvSystemConfigration>");
        write("tvconfigs/countries.xml",
              "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>NORWAY</COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>"
              "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>SWEDEN</COUNTRY_NAME><TV_SYSTEM>S</TV_SYSTEM>"
              "</COUNTRY_TVCONFIG_MAP>");
        write("tvconfigs/plans/country_freq_map.xml",
              "<COUNTRY_FREQ_MAP><COUNTRY_NAME>GERMANY</COUNTRY_NAME><DTV_ANTENA>eu</DTV_ANTENA>"
              "</COUNTRY_FREQ_MAP>");
        write("tvconfigs/plans/dtv/eu", "21 8000000 474000\n");
    }

    /** A set with these lines in its project file, and its services. */
    std::unique_ptr<Services> start(const std::string& lines) {
        mSet.dir().write("tvconfigs/model.ini", lines + kClients + "\nkey=\n");
        return std::make_unique<Services>(
                ServiceMakers{[] { return new MlkProjectConfigs; },
                              [](const char* path) { return new MlkTvConfigs(path); },
                              [] { return new MlkFrameworkConfigs; }});
    }

    /** Calls a method as "mlkctl call" does; the answer as printed there. */
    static std::string call(const Interface& interface, const Method& method,
                            const std::vector<std::string>& words) {
        std::vector<Argument> arguments;
        for (const std::string& word : words) {
            arguments.push_back(Argument::ofCommandLine(word));
        }
        const mlk::ctl::BoundCall bound =
                mlk::ctl::bind(interface, method, arguments, mlk::ctl::Form::JSON);
        try {
            return bound(*interface.find());
        } catch (const mlk::ctl::Failure& failure) {
            EXPECT_EQ(failure.status(), mlk::ctl::ExitStatus::NO_ANSWER) << failure.what();
            return "no answer";
        }
    }

    /** The answer to a reader of the table: a method and the arguments that choose the item. */
    static std::string answerTo(const std::string& reader) {
        std::istringstream text(reader);
        std::string name;
        text >> name;
        std::vector<std::string> words;
        for (std::string word; text >> word;) {
            words.push_back(word);
        }
        if (name == "IMlkTvConfigs") {
            return call(mlk::ctl::tvInterface(), mlk::ctl::tvInterface().method("hdmiEnabled"), {});
        }
        // What clients choose besides the item.
        static const std::map<std::string, std::vector<std::string>> others = {
                {"getAudioDelay", {kClients, "key", "ARC"}},
                {"getKaraokeConfig", {kClients, "key"}},
                {"getGlobalKeyConfig", {kClients, "key"}},
                {"getCustomerDdcciConfigInt", {kClients, "key"}},
                {"getCustomerDdcciConfigString", {kClients, "key"}},
                {"getFreqTableList", {"GERMANY", "DTV_ANTENNA", "AUTO"}},
                {"setCountryId", {"SWEDEN"}}};
        if (const auto found = others.find(name); found != others.end()) {
            words.insert(words.end(), found->second.begin(), found->second.end());
        }
        const Interface& project = mlk::ctl::projectInterface();
        const std::string answer = call(project, project.method(name), words);
        if (name != "setCountryId") {
            return answer;
        }
        // What a change of the country does shows in the item of its TV system.
        return answer + call(project, project.method("getConfig"), {kClients, "key"});
    }

    /** The answers to all readers of the table. */
    static std::map<std::string, std::string> answers() {
        std::map<std::string, std::string> answers;
        for (const KnownItem& row : kKnownItems) {
            for (const char* reader : row.readers) {
                if (reader != nullptr) {
                    answers.emplace(reader, "");
                }
            }
        }
        for (auto& [reader, answer] : answers) {
            answer = answerTo(reader);
        }
        return answers;
    }

    /** A value that a set without the item does not have. */
    static std::string valueFor(const KnownItem& row) {
        switch (row.names) {
            case FileFormat::AUXILIARY:
                return "/tvconfigs/auxiliary.ini";
            case FileFormat::TV_FEATURES:
                return "/tvconfigs/features.config";
            case FileFormat::COUNTRY_LIST:
                return "/tvconfigs/countries.txt";
            case FileFormat::LANGUAGE_LIST:
                return "/tvconfigs/languages.txt";
            case FileFormat::TV_SYSTEMS:
                return "/tvconfigs/systems.xml";
            case FileFormat::CHANNEL_PLANS:
                return "/tvconfigs/plans";
            default:
                break;
        }
        switch (row.type) {
            case ValueType::SWITCH:
                return "true";
            case ValueType::INTEGER:
                return std::to_string(row.most);
            default:
                return "a value of its own";
        }
    }

    static std::string lineOf(const KnownItem& row, const std::string& value) {
        return std::string(row.name.category) + "\n" + std::string(row.name.key) + "=" + value +
               "\n";
    }

    const mlk::testing::QuietLog mQuiet;
    mlk::testing::HostSet mSet;
};

TEST_F(KnownItems, DecideTheAnswersOfTheirReadersAndOfNoOther) {
    std::map<std::string, std::string> without;
    {
        const auto services = start("");
        without = answers();
    }
    for (const KnownItem& row : kKnownItems) {
        const auto services = start(lineOf(row, valueFor(row)));
        std::vector<std::string> changed;
        for (const auto& [reader, answer] : answers()) {
            if (answer != without[reader]) {
                changed.push_back(reader);
            }
        }
        std::vector<std::string> readers;
        for (const char* reader : row.readers) {
            if (reader != nullptr) {
                readers.emplace_back(reader);
            }
        }
        EXPECT_THAT(changed, UnorderedElementsAreArray(readers))
                << row.name.category << " " << row.name.key;
    }
}

TEST_F(KnownItems, NumbersAreAnsweredWithinTheirRange) {
    size_t numbers = 0;
    for (const KnownItem& row : kKnownItems) {
        if (row.type != ValueType::INTEGER) {
            continue;
        }
        ++numbers;
        for (int32_t value = row.least - 1; value <= row.most + 1; ++value) {
            const auto services = start(lineOf(row, std::to_string(value)));
            const bool isInRange = value >= row.least && value <= row.most;
            EXPECT_EQ(answerTo(row.readers[0]),
                      isInRange ? R"({"success":true,"value":)" + std::to_string(value) + "}"
                                : "no answer")
                    << value;
        }
    }
    EXPECT_EQ(numbers, 1U);
}

TEST_F(KnownItems, SwitchesAreOnForExactlyTrue) {
    size_t switches = 0;
    for (const KnownItem& row : kKnownItems) {
        if (row.type != ValueType::SWITCH) {
            continue;
        }
        ++switches;
        for (const auto& [value, answer] : std::map<std::string, std::string>{
                     {"true", "true"}, {"True", "false"}, {"1", "false"}, {"yes", "false"}}) {
            const auto services = start(lineOf(row, value));
            EXPECT_EQ(answerTo(row.readers[0]), R"({"success":true,"value":)" + answer + "}")
                    << row.name.key << "=" << value;
        }
    }
    EXPECT_EQ(switches, 2U);
}

/** Every value of a word of a call that may matter. */
std::vector<std::string> valuesOf(const mlk::ctl::Word& word) {
    switch (word.kind) {
        case mlk::ctl::Word::Kind::TEXT:
            return {kClients};
        case mlk::ctl::Word::Kind::FLAG:
            return {"true"};
        case mlk::ctl::Word::Kind::NUMBER:
            return {"0", "1", "2", "3"};
        case mlk::ctl::Word::Kind::ENUMERATOR:
            break;
    }
    std::vector<std::string> names;
    for (const auto& [name, value] : word.names.rows) {
        names.push_back(name);
    }
    return names;
}

TEST_F(KnownItems, AreAllThatIsRead) {
    std::string lines;
    for (const KnownItem& row : kKnownItems) {
        lines += lineOf(row, valueFor(row));
    }
    Asked::get().clear();
    const auto services = start(lines);
    size_t calls = 0;
    for (const Interface* interface : mlk::ctl::interfaces()) {
        for (const Method& method : interface->methods) {
            // All combinations of the values of all arguments.
            std::vector<std::vector<std::string>> combinations(1);
            for (const mlk::ctl::Word& word : method.call.words) {
                std::vector<std::vector<std::string>> longer;
                for (const auto& combination : combinations) {
                    for (const std::string& value : valuesOf(word)) {
                        longer.push_back(combination);
                        longer.back().push_back(value);
                    }
                }
                combinations = std::move(longer);
            }
            for (const auto& combination : combinations) {
                call(*interface, method, combination);
                ++calls;
            }
        }
    }
    EXPECT_GT(calls, 132U);
    Asked::Names known;
    for (const KnownItem& row : kKnownItems) {
        known.emplace(row.name.category, row.name.key);
    }
    EXPECT_EQ(known.size(), std::size(kKnownItems));
    Asked::Names asked = Asked::get().names();
    const auto isClients = [](const auto& name) { return name.first == kClients; };
    for (auto name = asked.begin(); name != asked.end();) {
        name = isClients(*name) ? asked.erase(name) : std::next(name);
    }
    EXPECT_EQ(asked, known);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

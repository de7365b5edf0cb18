#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "host/testing/HostSet.h"
#include "host/testing/QuietLog.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/MlkProjectConfigsStub.h"
#include "service/Services.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/Interface.h"
#include "tvconfigs/MlkTvConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A section that no row has; clients ask for it. */
inline constexpr const char* kClients = "[CLIENTS]";

/** Where all reads of a set can be made: three services on a set of one model. */
class ServicesOnSet : public ::testing::Test {
  protected:
    ServicesOnSet() {
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
    static std::string call(const mlk::ctl::Interface& interface, const mlk::ctl::Method& method,
                            const std::vector<std::string>& words) {
        std::vector<mlk::ctl::Argument> arguments;
        for (const std::string& word : words) {
            arguments.push_back(mlk::ctl::Argument::ofCommandLine(word));
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
        const mlk::ctl::Interface& project = mlk::ctl::projectInterface();
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

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

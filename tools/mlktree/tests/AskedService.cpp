#include "tools/mlktree/tests/AskedService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "regional/CountryTable.h"
#include "tools/common/Text.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr const char* kProject = "IMlkProjectConfigs";

// Section and key of "[SECTION] KEY"; both are empty for another form.
std::pair<std::string, std::string> namesOf(const std::string& text) {
    const size_t end = text.find("] ");
    if (text.empty() || text.front() != '[' || end == std::string::npos) {
        return {};
    }
    return {text.substr(0, end + 1), text.substr(end + 2)};
}

std::string valueOf(const nlohmann::json& answer) {
    const nlohmann::json& value = answer.at("value");
    return value.is_string() ? value.get<std::string>() : value.dump();
}

// Names of countries, or texts, one a line.
std::string linesOf(const nlohmann::json& answer) {
    static const product::NameTable kNames = product::countryNames();
    std::string text;
    for (const nlohmann::json& one : answer) {
        std::string name = one.is_string() ? one.get<std::string>() : "";
        if (!one.is_string()) {
            kNames.firstNameOf(static_cast<int32_t>(one.get<int64_t>()), name);
        }
        text += name + "\n";
    }
    return text;
}

std::string channelsOf(const nlohmann::json& answer) {
    std::ostringstream text;
    for (const nlohmann::json& one : answer) {
        text << one["channel"] << ' ' << one["frequency"] << ' ' << one["bandwidth"] << ' '
             << one["label"].get<std::string>() << ' ' << one["modulation"] << '\n';
    }
    return text.str();
}

bool isPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < '\x7f'; });
}

}  // namespace

AskedService::AskedService(const testing::HostSet& set)
    : mRoot(set.dir().path()),
      mService({testing::binDir() + "/vendor.morlak.mlconfigs@1.0-service"}) {
    testing::Process wait({testing::binDir() + "/mlkctl", "wait", "--timeout", "60"});
    EXPECT_EQ(wait.wait(), 0) << wait.err();
}

std::string AskedService::written(const std::string& value) const {
    return value.compare(0, mRoot.size(), mRoot) == 0 ? value.substr(mRoot.size()) : value;
}

void AskedService::ask(const Json& call, const std::string& expected, const std::string& what,
                       const Read& read) {
    mLines += call.dump() + "\n";
    mChecks.push_back([this, expected, what, read](const Json& answer, bool hasBytes) {
        std::string found;
        try {
            found = read(answer);
        } catch (const Json::exception& error) {
            found = std::string(error.what()) + ": " + answer.dump();
        }
        EXPECT_EQ(hasBytes ? restoreBytes(found) : found, expected) << what;
        ++mCompared;
    });
}

void AskedService::setCountry(int32_t model, int32_t country) {
    ask({kProject, "setProjectId", model}, "true", "setProjectId", valueOf);
    ask({kProject, "setCountryId", country}, "true", "setCountryId", valueOf);
}

void AskedService::compareSections(const Told& expected, const std::vector<std::string>& sections,
                                   const std::string& where) {
    for (const std::string& section : sections) {
        std::string items;
        const std::string start = "item " + section + " ";
        for (auto item = expected.lower_bound(start);
             item != expected.end() && item->first.compare(0, start.size(), start) == 0; ++item) {
            items += item->first.substr(start.size()) + "=" + item->second + "\n";
        }
        ask({kProject, "getConfigsByCategory", section}, items, section + " of " + where,
            [this](const Json& answer) {
                std::map<std::string, std::string> found;
                for (const Json& item : answer) {
                    found[item["key"]] = written(item["value"]);
                }
                std::string text;
                for (const auto& [key, value] : found) {
                    text += std::string(key).append("=").append(value).append("\n");
                }
                return text;
            });
    }
}

void AskedService::compare(const Told& expected, int32_t country, const std::string& where,
                           const std::vector<std::string>& kinds) {
    const auto writtenValue = [this](const Json& answer) { return written(valueOf(answer)); };
    for (const auto& [what, value] : expected) {
        const std::string kind = what.substr(0, what.find(' '));
        const std::string rest = what.substr(std::min(what.size(), kind.size() + 1));
        const bool isWanted =
                kinds.empty() || std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
        if (!isWanted || !isPlain(what)) {
            continue;
        }
        const std::string told = what + " of " + where;
        if (kind == "item") {
            const auto [section, key] = namesOf(rest);
            if (!section.empty()) {
                ask({kProject, "getConfig", section, key}, value, told, writtenValue);
            }
        } else if (kind == "feature" || kind == "framework") {
            const char* const interface =
                    kind == "feature" ? "IMlkTvConfigs" : "IMlkFrameworkConfigs";
            ask({interface, rest}, value, told, valueOf);
        } else if (kind == "delay") {
            const size_t blank = rest.rfind(' ');
            const std::string receiver = rest.substr(blank + 1);
            const auto [section, key] = namesOf(rest.substr(0, blank));
            if (!section.empty() && (receiver.empty() || receiver == "ARC")) {
                ask({kProject, "getAudioDelay", section, key, receiver}, value, told, valueOf);
            }
        } else if (kind == "auxiliary") {
            const std::string file = rest.substr(0, rest.find(' '));
            const auto [section, key] = namesOf(rest.substr(file.size() + 1));
            const char* const method = file == "karaoke" ? "getKaraokeConfig"
                                       : file == "keys"  ? "getGlobalKeyConfig"
                                                         : "getCustomerDdcciConfigString";
            if (!section.empty()) {
                ask({kProject, method, section, key}, value, told, valueOf);
            }
        } else if (what == "country countries") {
            ask({kProject, "getCountryList"}, value, told, linesOf);
        } else if (what == "country cltvCountries") {
            ask({kProject, "getCLTVCountryList"}, value, told, linesOf);
        } else if (kind == "language") {
            ask({kProject, "getLanguageList"}, value, told, linesOf);
        } else if (kind == "plan") {
            const size_t blank = std::min(rest.find(' '), rest.size());
            const std::string cable = blank < rest.size() ? rest.substr(blank + 1) : "AUTO";
            ask({kProject, "getFreqTableList", country, rest.substr(0, blank), cable}, value, told,
                channelsOf);
        } else if (what == "customer id") {
            ask({kProject, "getCustomerId"}, value, told, valueOf);
        } else if (what == "customer highest index") {
            ask({kProject, "getProjectMaxIdx"}, value, told, valueOf);
        } else if (what == "customer project files") {
            ask({kProject, "getProjectIniList"}, value, told, linesOf);
        } else if (kind == "file") {
            ask({kProject, "isFileExist", mRoot + rest}, value == "missing" ? "0" : "1", told,
                valueOf);
        }
    }
}

size_t AskedService::run() {
    testing::Process client({testing::binDir() + "/mlkctl", "batch"}, {{}, mLines});
    EXPECT_EQ(client.wait(), 0) << client.err();
    std::istringstream out(client.out());
    size_t answers = 0;
    for (std::string line; std::getline(out, line) && answers < mChecks.size(); ++answers) {
        std::string plain;
        const bool hasBytes = hideByteEscapes(line, &plain);
        mChecks[answers](Json::parse(hasBytes ? plain : line), hasBytes);
    }
    EXPECT_EQ(answers, mChecks.size());
    mLines.clear();
    mChecks.clear();
    return mCompared;
}

}  // namespace mlk::tree

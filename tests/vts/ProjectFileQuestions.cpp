// The answers of IMlkProjectConfigs from files that items name.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "projectconfigs/testing/PlainRules.h"
#include "regional/testing/PlainFrequencyMap.h"
#include "tests/vts/ProjectQuestions.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::hardware::hidl_string;

namespace {

using I = IMlkProjectConfigs;

// A file of this size fits into an answer on a device.
constexpr size_t kMostInAnAnswer = 1000000;

std::vector<uint32_t> countryNumbers(const std::string& path, plain::Names& countries) {
    std::vector<uint32_t> numbers;
    for (const std::string& name : plain::listEntries(plain::contentOf(path))) {
        numbers.push_back(static_cast<uint32_t>(countries.insert({name, 0}).first->second));
    }
    return numbers;
}

// The table of names after both lists of countries have been read.
plain::Names knownCountries(const PlainSet& set) {
    plain::Names countries = plain::countries();
    countryNumbers(set.value("[COUNTRY]", "COUNTRY_PATH"), countries);
    countryNumbers(set.value("[LiveTV]", "LaunchCLTVByCountry"), countries);
    return countries;
}

using Lookup = std::function<std::string(const ProjectConfigKey&)>;
using Text = std::function<std::string(const std::string&)>;

void addLookups(Questions& questions, const AuxiliaryFile& file, const char* method,
                const Lookup& lookUp, const Text& text) {
    std::vector<plain::Items::key_type> keys = {{"", ""}, {"[NO SUCH SECTION]", "NO_SUCH_KEY"}};
    for (const auto& [key, value] : file.items) {
        keys.push_back(key);
    }
    for (const auto& key : keys) {
        questions.push_back({std::string(method) + "(" + key.first + ", " + key.second + ")",
                             [=] {
                                 return lookUp(ProjectConfigKey{key.first, key.second});
                             },
                             text(file.value(key))});
    }
}

std::string numberText(const std::string& value) {
    return textOfNumber(numberOf(value));
}

}  // namespace

Questions listQuestions(const ProjectService& service, const PlainSet& set) {
    plain::Names countries = plain::countries();
    const std::string offered = set.value("[COUNTRY]", "COUNTRY_PATH");
    const std::string launching = set.value("[LiveTV]", "LaunchCLTVByCountry");
    const std::string languages = set.value("[TV_LANGUAGE]", "LANGUAGE_PATH");
    return {{"getCountryList", [=] { return ask(*service, MLK_METHOD(I, getCountryList)); },
             listText(countryNumbers(offered, countries))},
            {"getCLTVCountryList", [=] { return ask(*service, MLK_METHOD(I, getCLTVCountryList)); },
             listText(countryNumbers(launching, countries))},
            {"getLanguageList", [=] { return ask(*service, MLK_METHOD(I, getLanguageList)); },
             listText(plain::listEntries(plain::contentOf(languages)))},
            {"isSupportTvSysReload",
             [=] { return ask(*service, MLK_METHOD(I, isSupportTvSysReload)); },
             textOfFlag(!set.value("[COUNTRY]", "tvSysMap").empty())}};
}

Questions customerFileQuestions(const ProjectService& service, const PlainSet& set) {
    Questions questions;
    addLookups(
            questions, set.karaoke, "getKaraokeConfig",
            [=](const auto& key) { return ask(*service, MLK_METHOD(I, getKaraokeConfig), key); },
            numberText);
    addLookups(
            questions, set.globalKeys, "getGlobalKeyConfig",
            [=](const auto& key) { return ask(*service, MLK_METHOD(I, getGlobalKeyConfig), key); },
            textOfText);
    addLookups(
            questions, set.ddcci, "getCustomerDdcciConfigInt",
            [=](const auto& key) {
                return ask(*service, MLK_METHOD(I, getCustomerDdcciConfigInt), key);
            },
            numberText);
    addLookups(
            questions, set.ddcci, "getCustomerDdcciConfigString",
            [=](const auto& key) {
                return ask(*service, MLK_METHOD(I, getCustomerDdcciConfigString), key);
            },
            textOfText);
    return questions;
}

Questions audioQuestions(const ProjectService& service, const PlainSet& set,
                         const AuxiliaryFile& avr) {
    std::vector<plain::Items::key_type> keys = set.audioKeys();
    for (const auto& [key, value] : avr.items) {
        keys.push_back(key);
    }
    keys.push_back({"[NO SUCH SECTION]", "NO_SUCH_KEY"});
    Questions questions;
    for (const auto& key : keys) {
        for (const char* path : {"", "ARC", "arc", "ARC "}) {
            const bool arc = std::string(path) == "ARC";
            questions.push_back(
                    {"getAudioDelay(" + key.first + ", " + key.second + ", \"" + path + "\")",
                     [=] {
                         return ask(*service, MLK_METHOD(I, getAudioDelay),
                                    ProjectConfigKey{key.first, key.second}, hidl_string(path));
                     },
                     textOfText(std::to_string(set.audioDelay(key, arc, avr)))});
        }
    }
    return questions;
}

Questions fileQuestions(const ProjectService& service, const PlainSet& set) {
    std::set<std::string> paths = {"",
                                   "\"",
                                   set.tvconfigs,
                                   set.tvconfigs + "/no such file",
                                   set.tvconfigs + "/customer.ini",
                                   '"' + set.tvconfigs + "/customer.ini\"",
                                   '"' + set.tvconfigs + "/customer.ini\" and more",
                                   '"' + set.tvconfigs + "/customer.ini",
                                   set.tvconfigs + "/customer.ini\""};
    for (const auto& [name, value] : set.items()) {
        for (const std::string& mount : {set.tvconfigs, set.tvdata, set.impdata}) {
            if (value.compare(0, mount.size() + 1, mount + "/") == 0) {
                paths.insert(value);
            }
        }
    }
    Questions questions;
    for (const std::string& path : paths) {
        // Only a path that begins with a quote is quoted; it needs a quote at its end.
        std::string bare = path;
        if (!path.empty() && path[0] == '"') {
            const size_t end = path.rfind('"');
            bare = end > 0 ? path.substr(1, end - 1) : "";
        }
        const bool exists = !bare.empty() && access(bare.c_str(), F_OK) == 0;
        const std::string content = plain::contentOf(bare);
        questions.push_back(
                {"isFileExist(" + path + ")",
                 [=] { return ask(*service, MLK_METHOD(I, isFileExist), hidl_string(path)); },
                 textOfNumber(exists ? 1 : 0)});
        questions.push_back({"getVendorPartitionFile(" + path + ")",
                             [=] {
                                 return ask(*service, MLK_METHOD(I, getVendorPartitionFile),
                                            hidl_string(path));
                             },
                             bytesText(content)});
        if (content.size() <= kMostInAnAnswer) {
            questions.push_back(
                    {"getTvFile(" + path + ")",
                     [=] { return ask(*service, MLK_METHOD(I, getTvFile), hidl_string(path)); },
                     bytesText(content)});
        }
    }
    return questions;
}

Questions frequencyQuestions(const ProjectService& service, const PlainSet& set) {
    const plain::Names countries = knownCountries(set);
    std::string folder = set.value("[FREQTABLE]", "FREQ_TABLE_PATH");
    folder = folder.empty() ? set.tvconfigs + "/freqtables" : folder;
    const plain::FrequencyMap map(folder + "/country_freq_map.xml");
    std::vector<int32_t> numbers = {-2, 161, 186, std::numeric_limits<int32_t>::min(),
                                    std::numeric_limits<int32_t>::max()};
    for (const auto& [name, number] : countries) {
        if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) {
            numbers.push_back(number);
        }
    }
    const auto pathOf = [&](int32_t country, FreqTableType type, AtscCableType cable) {
        const std::string name = plain::firstNameOf(countries, country);
        const std::string table = name.empty() ? "" : map.table(name, type, cable);
        const bool digital = type == FreqTableType::DTV_ANTENNA || type == FreqTableType::DTV_CABLE;
        return table.empty() ? "" : folder + (digital ? "/dtv/" : "/atv/") + table;
    };
    struct Call {
        int32_t country;
        FreqTableType type;
        AtscCableType cable;
        std::string path;
    };
    std::vector<Call> calls;
    for (const int32_t country : numbers) {
        for (const uint32_t type : {0U, 1U, 2U, 3U, 4U, 0xffffffffU}) {
            for (const uint32_t cable : {0U, 1U, 2U, 3U, 4U}) {
                const auto typed = static_cast<FreqTableType>(type);
                const auto cabled = static_cast<AtscCableType>(cable);
                calls.push_back({country, typed, cabled, pathOf(country, typed, cabled)});
            }
        }
    }
    std::map<std::string, std::string> answers;
    for (const Call& call : calls) {
        answers[call.path] = "";
    }
    plain::Names modulations = plain::modulations();
    // The first round adds the modulations that only the tables name. The second gives the answers
    // of a service that knows them all.
    for (int round = 0; round < 2; ++round) {
        for (auto& [path, answer] : answers) {
            answer = listText(plain::channels(plain::contentOf(path), modulations));
        }
    }
    Questions questions;
    for (const Call& call : calls) {
        questions.push_back({"getFreqTableList(" + std::to_string(call.country) + ", " +
                                     std::to_string(static_cast<uint32_t>(call.type)) + ", " +
                                     std::to_string(static_cast<uint32_t>(call.cable)) + ")",
                             [=] {
                                 return ask(*service, MLK_METHOD(I, getFreqTableList), call.country,
                                            call.type, call.cable);
                             },
                             answers[call.path]});
    }
    return questions;
}

AuxiliaryFile avrInUse(const ProjectService& service, const PlainSet& set) {
    for (const std::string& name : set.furtherAudioFiles(dumpOf(service))) {
        const AuxiliaryFile file = set.avrFile(name);
        const Questions questions = audioQuestions(service, set, file);
        if (std::all_of(questions.begin(), questions.end(), [](const Question& question) {
                return question.ask() == question.expected;
            })) {
            return file;
        }
    }
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts

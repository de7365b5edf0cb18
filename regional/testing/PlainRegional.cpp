#include "regional/testing/PlainRegional.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "regional/CountryTable.h"
#include "regional/XmlFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

namespace {

// Returns the next token as strtok does, and moves `at` past it.
std::string token(const std::string& text, size_t& at, const char* delimiters) {
    while (at < text.size() && strchr(delimiters, text[at]) != nullptr) {
        ++at;
    }
    std::string result;
    while (at < text.size() && strchr(delimiters, text[at]) == nullptr) {
        result += text[at++];
    }
    return result;
}

// The pieces that fgets returns with a buffer of that size: each ends with its line feed or is cut.
std::vector<std::string> pieces(const std::string& text, size_t bufferSize) {
    std::vector<std::string> result;
    bool isNew = true;
    for (const char c : text) {
        if (isNew) {
            result.emplace_back();
        }
        result.back() += c;
        isNew = c == '\n' || result.back().size() == bufferSize - 1;
    }
    return result;
}

std::string textOf(const char* text) {
    return text != nullptr ? text : "";
}

// The path with everything up to "/tvconfigs" replaced; empty if it does not contain that.
std::string moved(const std::string& path, const std::string& tvconfigs) {
    const char* const found = strstr(path.c_str(), "/tvconfigs");
    return found != nullptr ? tvconfigs + (found + strlen("/tvconfigs")) : "";
}

}  // namespace

std::vector<std::string> listEntries(const std::string& text) {
    std::vector<std::string> entries;
    std::string line;
    const auto take = [&] {
        line.resize(std::min<size_t>(line.size(), 255));
        line = line.c_str();
        size_t at = 0;
        const std::string entry = token(line, at, ",");
        if (!entry.empty()) {
            entries.push_back(entry);
        }
        line.clear();
    };
    for (const char c : text) {
        if (c == '\n') {
            take();
        } else {
            line += c;
        }
    }
    take();
    return entries;
}

Names countries() {
    Names names;
    for (size_t i = 0; i < kCountryNames.size(); ++i) {
        names[std::string(kCountryNames[i])] = countryAt(i);
    }
    return names;
}

std::string firstNameOf(const Names& names, int32_t value) {
    for (const auto& [name, number] : names) {
        if (number == value) {
            return name;
        }
    }
    return {};
}

Names modulations() {
    return {{"UNKNOW", 0},    {"ATV}", 1},       {"OQPSK", 2},     {"VSB8", 3},
            {"VSB16", 4},     {"QAM_AUTO", 5},   {"QAM4", 6},      {"QAM16", 7},
            {"QAM32", 8},     {"QAM64", 9},      {"QAM128", 10},   {"QAM256", 11},
            {"QAM512", 12},   {"QAM1024", 13},   {"QPSK", 14},     {"BPSK", 15},
            {"OFDM", 16},     {"ISDB_AUTO", 17}, {"DVB_AUTO", 18}, {"DTMB_AUTO", 19},
            {"ABS_AUTO", 20}, {"DVB_S", 21},     {"DVB_S2", 22},   {"DVB_S_AUTO", 23}};
}

std::vector<HidlFreqListItem> channels(const std::string& text, Names& modulations) {
    std::vector<HidlFreqListItem> items;
    for (const std::string& raw : pieces(text, 50)) {
        const std::string piece = raw.c_str();
        if (piece.size() < 2 || piece.find("//") == 0) {
            continue;
        }
        HidlFreqListItem item{};
        size_t at = 0;
        std::string columns[5];
        for (std::string& column : columns) {
            column = token(piece, at, " ,\r\n");
        }
        item.channel = static_cast<uint16_t>(atoi(columns[0].c_str()));
        item.bandwidth = atoi(columns[1].c_str());
        if (item.bandwidth == 0) {
            item.bandwidth = 6000000;
        }
        item.frequency = atoi(columns[2].c_str());
        const auto modulation = modulations.find(columns[3]);
        if (modulation != modulations.end()) {
            item.modulation = modulation->second;
        } else {
            columns[3].copy(reinterpret_cast<char*>(item.label.data()), 4);
        }
        if (!columns[4].empty()) {
            item.modulation = modulations[columns[4]];
        }
        if (item.frequency >= 1) {
            items.push_back(item);
        }
    }
    return items;
}

int32_t countryIdOf(const std::string& text) {
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, std::min<size_t>(end - start, 255));
        line = line.c_str();
        if (line.find("COUNTRY_ID") != std::string::npos) {
            const size_t equals = line.find('=');
            return equals != std::string::npos ? atoi(line.c_str() + equals + 1) : -1;
        }
        start = end + 1;
    }
    return -1;
}

std::string TvSystems::mapFile() const {
    const XmlFile file(systemFile);
    const auto* const element = file.first("CountryTvSysMapXML");
    const bool named = file.error() == nullptr && element != nullptr;
    return named ? moved(textOf(element->GetText()), tvconfigs) : "";
}

std::vector<TvSystems::Record> TvSystems::records(Names& countries) const {
    std::vector<Record> records;
    const XmlFile file(mapFile());
    if (file.error() != nullptr) {
        return records;
    }
    for (const auto* block = file.first("COUNTRY_TVCONFIG_MAP"); block != nullptr;
         block = block->NextSiblingElement()) {
        const char* const name = textOfChild(*block, "COUNTRY_NAME");
        if (name != nullptr) {
            countries.insert({name, 0});
            records.push_back({name, textOf(textOfChild(*block, "TV_SYSTEM")),
                               textOf(textOfChild(*block, "TV_CONFIG"))});
        }
    }
    return records;
}

int32_t TvSystems::firstCountry(Names& countries) const {
    const std::vector<Record> all = records(countries);
    return all.empty() ? -1 : countries[all.front().country];
}

Items TvSystems::itemsOf(int32_t country, Names& countries) const {
    Items items;
    const XmlFile file(systemFile);
    if (file.error() != nullptr) {
        return items;
    }
    const std::vector<Record> all = records(countries);
    const std::string name = firstNameOf(countries, country);
    const auto record = std::find_if(all.begin(), all.end(), [&](const Record& each) {
        return !name.empty() && each.country.find(name) != std::string::npos;
    });
    if (record == all.end()) {
        return items;
    }
    const auto* const section = file.first("TvSystemConfigration");
    const auto* system = section != nullptr ? section->FirstChildElement("TvSystem") : nullptr;
    for (; system != nullptr; system = system->NextSiblingElement()) {
        if (record->system.empty() || textOf(system->Attribute("type")) != record->system) {
            continue;
        }
        for (const auto* item = system->FirstChildElement("Item"); item != nullptr;
             item = item->NextSiblingElement()) {
            const char* const category = item->Attribute("category");
            const char* const key = item->Attribute("key");
            const char* const value = item->Attribute("value");
            if (category == nullptr || key == nullptr || value == nullptr) {
                continue;
            }
            std::string patched = value;
            if (patched.find("/tvconfigs") == 0) {
                patched = tvconfigs + patched.substr(10);
            } else if (patched.find("/tvdata") == 0) {
                patched = tvdata + patched.substr(7);
            }
            items.insert({{category, key}, patched});
        }
    }
    const std::string config = moved(record->config, tvconfigs);
    if (!config.empty()) {
        items[{"[LiveTV]", "TvConfig"}] = config;
    }
    return items;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain

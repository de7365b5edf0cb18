#include "tools/mlktree/report/ServiceData.h"

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <string>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "regional/Modulations.h"
#include "tools/common/Text.h"
#include "tools/mlktree/set/CountryItems.h"
#include "tools/mlktree/show/SetFacts.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

std::string_view wordOf(product::ValueType type) {
    switch (type) {
        case product::ValueType::PATH:
            return "path";
        case product::ValueType::FOLDER:
            return "folder";
        case product::ValueType::SWITCH:
            return "switch";
        case product::ValueType::INTEGER:
            return "integer";
        default:
            return "text";
    }
}

// The texts of a fact that is the same for all sets; empty for others.
std::string constantOf(const std::string& kind, const ProductLine& line) {
    const Partitions& partitions = line.tree().partitions();
    for (const auto& [name, mountPoint] : kPartitionNames) {
        if (kind == name.substr(1)) {
            return partitions.*mountPoint;
        }
    }
    return {};
}

std::string factsJson(const ProductLine& line) {
    std::vector<std::string> rows;
    for (const FactRow& row : factRows()) {
        JsonObject object;
        object.text("group", row.name.group).text("label", row.name.label);
        const std::string constant = constantOf(row.source.kind, line);
        object.text("source", constant.empty() ? row.source.kind : "constant");
        object.text("text", constant);
        std::vector<std::string> names;
        for (const ConfigKey& item : row.source.items) {
            names.emplace_back(item.category);
            names.emplace_back(item.key);
        }
        object.json("names", jsonTexts(names))
                .json("versions", jsonTexts(row.source.versions))
                .text("method", row.source.method);
        const product::KnownItem* const known =
                row.source.items.empty() ? nullptr
                                         : product::findKnownItem(row.source.items.front());
        if (known != nullptr) {
            object.text("type", wordOf(known->type))
                    .number("least", known->least)
                    .number("most", known->most);
        }
        rows.push_back(object.str());
    }
    return jsonArray(rows);
}

std::string knownJson() {
    std::vector<std::string> rows;
    for (const product::KnownItem& item : product::kKnownItems) {
        std::vector<std::string> readers;
        for (const char* const reader : item.readers) {
            if (reader != nullptr) {
                readers.emplace_back(reader);
            }
        }
        rows.push_back(JsonObject()
                               .text("section", item.name.category)
                               .text("key", item.name.key)
                               .text("type", wordOf(item.type))
                               .json("readers", jsonTexts(readers))
                               .text("note", item.note)
                               .str());
    }
    return jsonArray(rows);
}

// By their values, which are the positions.
std::string modulationsJson() {
    std::vector<std::string> names(product::kModulations.size());
    for (const auto& row : product::kModulations) {
        names.at(static_cast<size_t>(row.value)) = row.name;
    }
    return jsonTexts(names);
}

// Getter and name of each flag, in the order of `mlktree show`.
std::string flagsJson() {
    std::vector<std::string> rows;
    for (const product::TvFlagRow& row : product::kTvFlags) {
        rows.push_back(jsonTexts(
                {row.method,
                 toString(static_cast<vendor::morlak::mlkconfigs::V1_0::ConfigType>(row.type))}));
    }
    return jsonArray(rows);
}

// All kinds of plans, in the order of `mlktree show`.
std::string kindsJson() {
    std::vector<std::string> kinds;
    for (const auto type : ::android::hardware::hidl_enum_range<FreqTableType>()) {
        const bool isCable = type == FreqTableType::DTV_CABLE || type == FreqTableType::ATV_CABLE;
        if (!isCable) {
            kinds.push_back(toString(type));
            continue;
        }
        for (const auto cable : ::android::hardware::hidl_enum_range<AtscCableType>()) {
            kinds.push_back(toString(type) + " " + toString(cable));
        }
    }
    return jsonTexts(kinds);
}

std::string systemJson(const ProductLine& line, const TvSystemFiles& systems,
                       const FileTable& files, TextTable& texts) {
    const CountryItems items(systems);
    std::vector<std::string> countries;
    for (const _tv_country country : line.countries()) {
        const CountryBrings brings = items.of(country);
        countries.push_back(NumberList()
                                    .add(texts.idOf(brings.tvSystem))
                                    .add(brings.record != nullptr ? brings.record->number : 0)
                                    .json());
    }
    const ReadLine* const map = systems.file->find("", product::element::kCountryMap);
    const bool hasMap = systems.map != nullptr;
    return JsonObject()
            .number("file", static_cast<int64_t>(files.idOf(systems.file->path())))
            .number("isReadable", isUsable(systems.file) ? 1 : 0)
            .number("map", hasMap ? static_cast<int64_t>(files.idOf(systems.map->path())) : -1)
            .number("mapLine", map != nullptr ? static_cast<int64_t>(map->number) : 0)
            .json("countries", jsonArray(countries))
            .str();
}

}  // namespace

void addService(JsonObject& data, const ProductLine& line, const FileTable& files,
                TextTable& texts) {
    std::vector<std::string> systems;
    for (const TvSystemFiles& one : line.tvSystems()) {
        systems.push_back(systemJson(line, one, files, texts));
    }
    NumberList numbers;
    for (const _tv_country country : line.countries()) {
        numbers.addSigned(country);
    }
    data.json("facts", factsJson(line))
            .json("known", knownJson())
            .json("modulations", modulationsJson())
            .json("flags", flagsJson())
            .json("kinds", kindsJson())
            .json("systems", jsonArray(systems))
            .json("countryNumbers", numbers.json());
}

}  // namespace mlk::tree

// `mlktree explain feature NAME`: TV features and framework switches.

#include <algorithm>

#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/set/SetFeatures.h"

namespace mlk::tree {

namespace {

// The text without something at its beginning or end.
std::string withoutStart(const std::string& text, std::string_view start) {
    return beginsWith(text, start) ? text.substr(start.size()) : text;
}
std::string withoutEnd(const std::string& text, std::string_view end) {
    const bool hasIt = text.size() > end.size() &&
                       text.compare(text.size() - end.size(), end.size(), end) == 0;
    return hasIt ? text.substr(0, text.size() - end.size()) : text;
}

// "pvr" of "pvrEnabled" and "persist.vendor.mlk.tv.enable_pvr", and what else people type.
std::vector<std::string> shortNamesOf(const Feature& feature) {
    const std::string ofKey = feature.key.substr(feature.key.rfind('.') + 1);
    const std::string ofMethod =
            withoutEnd(withoutStart(withoutStart(feature.method, "get"), "is"), "Enabled");
    return {lowerCase(ofMethod), lowerCase(feature.method), ofKey, withoutStart(ofKey, "enable_"),
            feature.key};
}

const Feature* find(const std::vector<Feature>& all, const std::string& name) {
    for (const Feature& feature : all) {
        if (feature.method == name || (feature.key == name && !name.empty())) {
            return &feature;
        }
    }
    const std::string small = lowerCase(name);
    for (const Feature& feature : all) {
        for (const std::string& one : shortNamesOf(feature)) {
            if (!small.empty() && small == one) {
                return &feature;
            }
        }
    }
    return nullptr;
}

std::string historyJson(const Feature& feature) {
    std::vector<std::string> replaced;
    for (size_t i = 0; i + 1 < feature.history.size(); ++i) {
        const FeatureOrigin& origin = feature.history[i];
        replaced.push_back(originJson(origin.text, origin.file, origin.line, nameOf(origin.layer)));
    }
    return jsonArray(replaced);
}

std::string jsonOf(const Feature& feature) {
    const FeatureOrigin& origin = feature.history.back();
    JsonObject json;
    json.text("feature", feature.method).text("key", feature.key);
    if (feature.isText) {
        json.text("value", "");
    } else if (feature.isFlag) {
        json.flag("value", feature.value != 0);
    } else {
        json.number("value", feature.value);
    }
    json.text("text", origin.text)
            .json("origin", placeJson(origin.file, origin.line, nameOf(origin.layer)))
            .json("replaced", historyJson(feature));
    if (feature.master.empty()) {
        json.json("master", "null");
    } else {
        json.json("master", JsonObject()
                                    .text("feature", feature.master)
                                    .flag("value", feature.isMasterOn)
                                    .str());
    }
    return json.json("readers", jsonTexts({std::string(feature.interface) + "." + feature.method}))
            .str();
}

std::string originText(const FeatureOrigin& origin) {
    switch (origin.layer) {
        case FeatureLayer::FILE:
            return placeText(origin.file, origin.line) + " (TV feature file)";
        case FeatureLayer::OPTION:
            return "--prop of the command line";
        case FeatureLayer::PROPERTY:
            return origin.file + " (system property)";
        case FeatureLayer::DEFAULT:
            break;
    }
    return "the default: neither the TV feature file nor a system property has the key";
}

void print(Page& page, const SetModel& set, const Feature& feature) {
    const bool isTv = std::string_view(feature.interface) == "IMlkTvConfigs";
    const FeatureOrigin& origin = feature.history.back();
    page.title(feature.method + " = " + (feature.isText ? "(empty)" : feature.answer()));
    if (feature.key.empty()) {
        page.row("from", "nothing: the service always answers with an empty text");
    } else if (origin.layer == FeatureLayer::DEFAULT && !isTv) {
        page.row("from", "the default: there is no such system property");
    } else {
        page.row("from", originText(origin));
    }
    page.source(origin.file, origin.line);
    for (size_t i = feature.history.size() - 1; i-- > 0;) {
        page.row("replaces", quoted(feature.history[i].text) + " of " +
                                     originText(feature.history[i]) +
                                     ": the TV feature file comes first");
    }
    if (!feature.key.empty()) {
        page.row("key", feature.key);
    }
    if (!feature.master.empty()) {
        page.row("master",
                 feature.master + (feature.isMasterOn ? ", which is true"
                                                      : ", which is false and makes this false"));
    }
    page.row("read by", std::string(feature.interface) + " " + feature.method);
    if (isTv) {
        const std::string file = featureFileOf(set);
        page.row("file", file);
    }
}

std::string tableOf(const std::vector<Feature>& all) {
    Table table;
    for (const Feature& feature : all) {
        const FeatureOrigin& origin = feature.history.back();
        std::string remark = origin.file.empty() ? std::string(nameOf(origin.layer))
                                                 : placeText(origin.file, origin.line);
        if (!feature.isMasterOn) {
            remark += ", off with " + feature.master;
        }
        table.push_back({feature.method, feature.isText ? "-" : feature.answer(), remark});
    }
    return aligned(table);
}

}  // namespace

Explanation explainFeature(const SetModel& set, const Request& request) {
    const std::vector<Feature> all = featuresOf(set);
    if (request.question.name.empty()) {
        std::vector<std::string> json;
        json.reserve(all.size());
        for (const Feature& feature : all) {
            json.push_back(jsonOf(feature));
        }
        return {tableOf(all), jsonLines(json) + "\n"};
    }
    const std::string& name = request.question.name;
    const Feature* const feature = find(all, name);
    if (feature == nullptr) {
        std::vector<std::string> names;
        for (const Feature& one : all) {
            names.push_back(one.method);
            const std::vector<std::string> more = shortNamesOf(one);
            names.insert(names.end(), more.begin(), more.end());
        }
        throw NotFound("there is no feature " + excerpt(name) +
                       suggestionOf(name, {names.begin(), names.end()}));
    }
    Page page(set.line(), request.isColoured);
    print(page, set, *feature);
    page.row("set", nameOf(set.choice()));
    return {page.take(), jsonOf(*feature) + "\n"};
}

}  // namespace mlk::tree

#include "tools/common/Facts.h"

#include <algorithm>
#include <cctype>

#include "tools/common/Json.h"
#include "tools/common/Overloaded.h"
#include "tools/common/Text.h"

namespace mlk {

namespace {

bool isPath(const std::string& text) {
    return !text.empty() && text.front() == '/';
}

// Turns a heading into a key.
std::string keyOf(std::string group) {
    // HDMI is written in capitals.
    const bool isWord = group.size() > 1 && islower(group[1]) != 0;
    for (size_t i = 0; i < (isWord ? 1 : group.size()); ++i) {
        group[i] = static_cast<char>(tolower(group[i]));
    }
    return group;
}

}  // namespace

std::string jsonOf(const FactValue& value) {
    return std::visit(
            Overloaded{[](const NoValue&) { return std::string("null"); },
                       [](const std::string& text) { return jsonString(text); },
                       [](int32_t number) { return std::to_string(number); },
                       [](bool flag) { return std::string(flag ? "true" : "false"); },
                       [](const std::vector<std::string>& list) { return jsonTexts(list); },
                       [](const Names& names) { return jsonTexts(names.list); },
                       [](const Files& files) {
                           JsonObject object;
                           for (const auto& [what, path] : files) {
                               object.text(what, path);
                           }
                           return object.str();
                       },
                       [](const Counts& counts) {
                           JsonObject object;
                           for (const auto& [what, count] : counts) {
                               object.number(what, static_cast<int64_t>(count));
                           }
                           return object.str();
                       }},
            value);
}

JsonObject factsJson(const std::vector<Fact>& facts, const std::set<std::string>& missing) {
    JsonObject groups;
    std::string group;
    JsonObject members;
    const auto endGroup = [&] {
        if (!group.empty()) {
            groups.json(keyOf(group), members.str());
        }
        members = JsonObject();
    };
    for (const Fact& fact : facts) {
        if (fact.name.group != group) {
            endGroup();
            group = fact.name.group;
        }
        members.json(fact.name.key, jsonOf(fact.value));
    }
    endGroup();
    return groups.json("missing", jsonTexts({missing.begin(), missing.end()}));
}

std::set<std::string> pathsIn(const std::vector<Fact>& facts) {
    std::set<std::string> paths;
    const auto add = [&paths](const std::string& text) {
        if (isPath(text)) {
            paths.insert(text);
        }
    };
    for (const Fact& fact : facts) {
        if (const auto* text = std::get_if<std::string>(&fact.value)) {
            add(*text);
        } else if (const auto* list = std::get_if<std::vector<std::string>>(&fact.value)) {
            std::for_each(list->begin(), list->end(), add);
        } else if (const auto* files = std::get_if<Files>(&fact.value)) {
            for (const auto& file : *files) {
                add(file.second);
            }
        }
    }
    return paths;
}

}  // namespace mlk

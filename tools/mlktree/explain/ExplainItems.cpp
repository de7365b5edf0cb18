// `mlktree explain SECTION KEY`: the items of a set.

#include <algorithm>

#include "common/Paths.h"
#include "projectconfigs/KnownItems.h"
#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/show/SetFacts.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// Any item can be asked for by this method.
constexpr const char* kAnyReader = "getConfig";

std::vector<std::string> readersOf(const SetItem& item) {
    std::vector<std::string> readers;
    const product::KnownItem* const known = product::findKnownItem({item.section, item.key});
    if (known == nullptr) {
        return {kAnyReader};
    }
    for (const char* const reader : known->readers) {
        if (reader != nullptr) {
            readers.emplace_back(reader);
        }
    }
    return readers;
}

std::string nameOf(const SetItem& item) {
    return std::string(item.section) + " " + std::string(item.key);
}

// Why a value replaces the one before it.
std::string reasonOf(const SetModel& set, const Origin& older, const Origin& newer) {
    if (newer.file == older.file) {
        return "a later line of the same section replaces it";
    }
    switch (newer.layer) {
        case Layer::MODEL:
            break;
        case Layer::BOARD:
            return "an item of the board file replaces that of the model file";
        case Layer::COUNTRY:
            return newer.file == set.tvSystems()->map
                           ? "the country's record names a TV feature file"
                           : "the country's TV system " + quoted(set.tvSystem()) + " replaces it";
    }
    return "a later file replaces it";
}

// Remarks about a value that names a file.
std::string pathNote(const SetModel& set, const SetItem& item) {
    const product::KnownItem* const known = product::findKnownItem({item.section, item.key});
    const std::string_view value = item.current().value;
    const bool isPath = known != nullptr ? known->type == product::ValueType::PATH ||
                                                   known->type == product::ValueType::FOLDER
                                         : isInPartition(value);
    const bool isMissing = isPath && !value.empty() &&
                           !product::pathExists(set.line().tree().hostOfWritten(value));
    return isMissing ? " (missing)" : "";
}

void printItem(Page& page, const SetModel& set, const SetItem& item) {
    const Origin& origin = item.current();
    page.title(nameOf(item) + " = " +
               (origin.value.empty() ? "(empty)" : std::string(origin.value)) +
               pathNote(set, item));
    const auto place = [](const Origin& of) {
        return placeText(of.file->path(), of.line->number) + " (" + std::string(nameOf(of.layer)) +
               ")";
    };
    page.row("from", place(origin));
    page.source(origin.file->path(), origin.line->number);
    for (size_t i = item.history.size() - 1; i-- > 0;) {
        const Origin& older = item.history[i];
        page.row("replaces", (older.value.empty() ? "an empty value" : quoted(older.value)) +
                                     " of " + place(older) + ": " +
                                     reasonOf(set, older, item.history[i + 1]));
    }
    const product::KnownItem* const known = product::findKnownItem({item.section, item.key});
    page.row("read by", known != nullptr
                                ? joined(readersOf(item))
                                : std::string("no getter of its own; clients may ask ") +
                                          kAnyReader + ", or getConfigsByCategory for the section");
    if (known != nullptr && *known->note != '\0') {
        page.row("note", known->note);
    }
    const OwnKey* const own = set.line().settings().find(item.section, item.key);
    if (own != nullptr && !own->remark.empty()) {
        page.row("remark", own->remark);
    }
}

std::string sectionTable(std::string_view section, const std::vector<const SetItem*>& items,
                         const SetModel& set) {
    Table table;
    for (const SetItem* const item : items) {
        const Origin& origin = item->current();
        const size_t replaced = item->history.size() - 1;
        table.push_back(
                {"  " + shownText(item->key),
                 (origin.value.empty() ? "-" : shownText(origin.value)) + pathNote(set, *item),
                 std::string(nameOf(origin.layer)),
                 placeText(shownText(origin.file->path()), origin.line->number) +
                         (replaced == 0 ? ""
                                        : ", replaces " + counted(replaced, "value", "values"))});
    }
    return shownText(section) + "\n" + aligned(table);
}

std::vector<std::string_view> sectionsOf(const SetModel& set) {
    std::vector<std::string_view> sections;
    for (const auto& [name, item] : set.items()) {
        if (sections.empty() || sections.back() != name.first) {
            sections.push_back(name.first);
        }
    }
    return sections;
}

std::string setText(const SetModel& set) {
    const std::string name = nameOf(set.choice());
    return name.empty() ? "this set" : "the set " + name;
}

// "; tvconfigs/model/a.ini:3 has m_pPanelNam, which is probably misspelt", or an empty text.
std::string misspelt(std::string_view name, const FileLines& file, size_t line) {
    return "; " + placeText(file.path(), line) + " has " + std::string(name) +
           ", which is probably misspelt";
}

// "; the set has no model: ...", or an empty text.
std::string modelHint(const SetModel& set) {
    const std::string why = whyNoModel(set);
    return why.empty() ? "" : "; the set has no model: " + why;
}

bool isKnownKey(const SetModel& set, std::string_view section, std::string_view key) {
    return product::findKnownItem({section, key}) != nullptr ||
           set.line().settings().find(section, key) != nullptr;
}

bool isKnownSection(std::string_view section) {
    const std::vector<std::string_view>& known = knownSections();
    return std::find(known.begin(), known.end(), section) != known.end();
}

// Why there is no such section.
NotFound missingSection(const SetModel& set, const std::string& section,
                        std::vector<std::string_view> sections) {
    const std::string what = "there is no section " + section + " in " + setText(set);
    if (!isKnownSection(section)) {
        const std::string hint = suggestionOf(section, sections);
        return NotFound(what + (hint.empty() ? modelHint(set) : hint));
    }
    // The name asked for is right, so the one in the set is wrong.
    sections.erase(std::remove_if(sections.begin(), sections.end(), isKnownSection),
                   sections.end());
    const std::string_view near = nearest(section, sections);
    if (near.empty()) {
        return NotFound(what + modelHint(set));
    }
    const Origin& first = set.items().lower_bound({near, ""})->second.history.front();
    const auto line = first.file->sections().find(near);
    return NotFound(what + misspelt(near, *first.file,
                                    line != first.file->sections().end() ? line->second->number
                                                                         : first.line->number));
}

// Why there is no such item.
NotFound missingItem(const SetModel& set, std::string_view section, const std::string& key) {
    const std::string what =
            "there is no item " + std::string(section) + " " + key + " in " + setText(set);
    for (const SetItem& brought : set.countryItems()) {
        if (brought.section == section && brought.key == key) {
            return NotFound(
                    what + "; its TV system brings one in " +
                    placeText(brought.current().file->path(), brought.current().line->number) +
                    ", which the service ignores because neither the model nor the board "
                    "has it");
        }
    }
    std::vector<std::string_view> keys;
    std::string elsewhere;
    const bool isKnown = isKnownKey(set, section, key);
    for (const auto& [name, item] : set.items()) {
        if (name.first == section) {
            // If the name asked for is right, the one in the set is wrong.
            if (!isKnown || !isKnownKey(set, section, name.second)) {
                keys.push_back(name.second);
            }
        } else if (name.second == key) {
            elsewhere = std::string(name.first);
        }
    }
    const std::string_view near = isKnown ? nearest(key, keys) : std::string_view();
    if (!near.empty()) {
        const Origin& origin = set.find(section, near)->current();
        return NotFound(what + misspelt(near, *origin.file, origin.line->number));
    }
    const std::string hint = isKnown ? "" : suggestionOf(key, keys);
    return NotFound(what + (!hint.empty()        ? hint
                            : !elsewhere.empty() ? "; " + elsewhere + " has one of that name"
                                                 : modelHint(set)));
}

}  // namespace

std::string itemJson(const SetItem& item) {
    const Origin& origin = item.current();
    std::vector<std::string> replaced;
    for (size_t i = 0; i + 1 < item.history.size(); ++i) {
        const Origin& older = item.history[i];
        replaced.push_back(originJson(older.value, older.file->path(), older.line->number,
                                      nameOf(older.layer)));
    }
    return JsonObject()
            .text("section", item.section)
            .text("key", item.key)
            .text("value", origin.value)
            .json("origin",
                  placeJson(origin.file->path(), origin.line->number, nameOf(origin.layer)))
            .json("replaced", jsonArray(replaced))
            .json("readers", jsonTexts(readersOf(item)))
            .str();
}

Explanation explainItems(const SetModel& set, const Request& request) {
    const Question& question = request.question;
    Page page(set.line(), request.isColoured);
    const bool isAll = question.kind == Question::Kind::ALL;
    const std::string& section = question.section;
    const std::vector<std::string_view> sections = sectionsOf(set);
    if (!isAll && std::find(sections.begin(), sections.end(), section) == sections.end()) {
        throw missingSection(set, section, sections);
    }
    if (question.kind == Question::Kind::ITEM) {
        const SetItem* const item = set.find(section, question.key);
        if (item == nullptr) {
            throw missingItem(set, section, question.key);
        }
        printItem(page, set, *item);
        page.row("set", nameOf(set.choice()));
        return {page.take(), itemJson(*item) + "\n"};
    }
    std::vector<std::string> json;
    std::string text;
    for (const std::string_view one : isAll ? sections : std::vector<std::string_view>{section}) {
        std::vector<const SetItem*> items;
        for (auto item = set.items().lower_bound({one, ""});
             item != set.items().end() && item->first.first == one; ++item) {
            items.push_back(&item->second);
            json.push_back(itemJson(item->second));
        }
        text += (text.empty() ? "" : "\n") + sectionTable(one, items, set);
    }
    return {text, jsonLines(json) + "\n"};
}

}  // namespace mlk::tree

// Rules about the items that mlktree.toml declares.

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <regex>
#include <string>

#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Patterns.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/MeaningValue.h"

namespace mlk::tree {

namespace {

std::string listOf(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words) {
        list += (list.empty() ? "" : ", ") + quoted(word);
    }
    return list;
}

std::string problemOfChoice(const OwnKey& key, std::string_view value) {
    if (std::find(key.choices.begin(), key.choices.end(), value) != key.choices.end()) {
        return "";
    }
    const std::vector<std::string_view> choices(key.choices.begin(), key.choices.end());
    return quoted(value) + " is none of " + listOf(key.choices) + meant(nearest(value, choices));
}

std::string problemOfInteger(const OwnKey& key, std::string_view value) {
    const NumberRange range{key.least.value_or(std::numeric_limits<int64_t>::min()),
                            key.most.value_or(std::numeric_limits<int64_t>::max())};
    if (isDecimalIn(value, range)) {
        return "";
    }
    std::string expected = "a decimal number";
    expected += key.least ? " from " + std::to_string(*key.least) : "";
    expected += key.most ? (key.least ? " to " : " up to ") + std::to_string(*key.most) : "";
    return quoted(value) + " is not " + expected;
}

// The library's matcher takes a stack frame a byte.
constexpr size_t kMostOfPattern = 512;

std::string problemOfPattern(const OwnKey& key, std::string_view value,
                             std::map<const OwnKey*, std::regex>& patterns) {
    const auto [pattern, isNew] = patterns.try_emplace(&key);
    if (isNew) {
        pattern->second = valuePattern(key.pattern);
    }
    const bool fits = value.size() <= kMostOfPattern &&
                      std::regex_match(value.begin(), value.end(), pattern->second);
    return fits ? "" : quoted(value) + " does not match the pattern " + key.pattern;
}

std::string problemOfOwn(const OwnKey& key, std::string_view value,
                         std::map<const OwnKey*, std::regex>& patterns) {
    switch (key.type) {
        case OwnType::PATH:
            return value.empty() || value.front() == '/'
                           ? ""
                           : quoted(value) + " is no path: one begins with a \"/\"";
        case OwnType::BOOLEAN:
            return value == "true" || value == "false"
                           ? ""
                           : quoted(value) + " is neither \"true\" nor \"false\"";
        case OwnType::INTEGER:
            return problemOfInteger(key, value);
        case OwnType::CHOICE:
            return problemOfChoice(key, value);
        case OwnType::PATTERN:
            return problemOfPattern(key, value, patterns);
        case OwnType::TEXT:
            break;
    }
    return "";
}

Related declarationOf(const OwnKey& key) {
    return {{"mlktree.toml", key.line, 0}, "declared here as " + std::string(nameOf(key.type))};
}

void checkValues(const ProductLine& line, Reporter& reporter) {
    std::map<const OwnKey*, std::regex> patterns;
    const auto isOwn = [](const ItemName& /* name */, const ItemFacts& facts) {
        return facts.own != nullptr;
    };
    forEachItemThat(itemTableOf(line), isOwn,
                    [&](const FileLines& file, const ReadLine& read, const ItemFacts& facts) {
                        const std::string problem = problemOfOwn(*facts.own, read.value, patterns);
                        if (!problem.empty()) {
                            const std::string_view needle = read.value.empty() ? "=" : read.value;
                            reporter.report(placeOf(line, file, read, needle),
                                            std::string(read.section) + " " +
                                                    std::string(read.key) + ": " + problem,
                                            {declarationOf(*facts.own)});
                        }
                    });
}

void checkRequired(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile>& files = itemTableOf(line).files;
    for (const OwnKey& key : line.settings().keys) {
        const auto lacks = [&](const ItemFile& item) {
            return item.file->find(key.section, key.key) == nullptr;
        };
        const bool isOfBoards = std::any_of(files.begin(), files.end(),
                                            [](const ItemFile& f) { return f.isBoard; }) &&
                                std::none_of(files.begin(), files.end(), [&](const ItemFile& f) {
                                    return f.isBoard && lacks(f);
                                });
        for (const ItemFile& item : files) {
            if (!key.isRequired || isOfBoards || item.isBoard || !lacks(item)) {
                continue;
            }
            const auto section = item.file->sections().find(key.section);
            const Place place = section != item.file->sections().end()
                                        ? placeOf(line, *item.file, *section->second)
                                        : placeOf(*item.file);
            reporter.report(place,
                            "no " + key.section + " " + key.key + ", which every model must have",
                            {declarationOf(key)});
        }
    }
}

constexpr Rule kRules[] = {
        {"own-value", Severity::ERROR, "an item of the line's own has a value of the wrong type",
         "mlktree.toml declares the item and its type; the program that reads it relies on that.",
         "BL_DUTY_MIN = high      (declared as integer)", "BL_DUTY_MIN = 8", checkValues},
        {"own-item-missing", Severity::ERROR, "a model lacks an item that mlktree.toml requires",
         "The program that reads the item has no value for this model.",
         "a model without [BACKLIGHT] BL_TYPE      (declared as required)",
         "[BACKLIGHT]\nBL_TYPE = edge", checkRequired},
};

}  // namespace

RuleFamily ownItems() {
    return {"own-items", "Items that mlktree.toml declares", kRules, std::size(kRules)};
}

}  // namespace mlk::tree

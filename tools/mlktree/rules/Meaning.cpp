#include "tools/mlktree/rules/Meaning.h"

#include <strings.h>

#include <algorithm>
#include <string>

#include "host/text/Utf8.h"
#include "tools/mlktree/Lookalikes.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

std::string_view withoutBrackets(std::string_view name) {
    if (beginsWith(name, "[")) {
        name.remove_prefix(1);
    }
    if (!name.empty() && name.back() == ']') {
        name.remove_suffix(1);
    }
    return name;
}

std::string withoutDigits(std::string_view text) {
    std::string rest(text);
    rest.erase(
            std::remove_if(rest.begin(), rest.end(), [](char c) { return c >= '0' && c <= '9'; }),
            rest.end());
    return rest;
}

std::vector<std::string_view> wordsOf(std::string_view name) {
    std::vector<std::string_view> words;
    for (size_t begin = 0; begin <= name.size();) {
        const size_t end = std::min(name.find('_', begin), name.size());
        words.push_back(name.substr(begin, end - begin));
        begin = end + 1;
    }
    return words;
}

// What two names have between the words that they begin and end with alike.
std::pair<std::string, std::string> ownPartsOf(std::string_view name, std::string_view other) {
    const std::vector<std::string_view> words = wordsOf(name);
    const std::vector<std::string_view> others = wordsOf(other);
    const size_t fewer = std::min(words.size(), others.size());
    size_t before = 0;
    while (before < fewer && words[before] == others[before]) {
        ++before;
    }
    size_t after = 0;
    while (after < fewer - before &&
           words[words.size() - 1 - after] == others[others.size() - 1 - after]) {
        ++after;
    }
    const auto middle = [&](const std::vector<std::string_view>& all) {
        std::string text;
        for (size_t i = before; i < all.size() - after; ++i) {
            text.append(all[i]).append("_");
        }
        return text.substr(0, text.empty() ? 0 : text.size() - 1);
    };
    return {middle(words), middle(others)};
}

// KEY_DOWN is not meant for KEY_OK, although the names as a whole are near.
bool areWordsAlike(std::string_view name, std::string_view other) {
    const auto [own, right] = ownPartsOf(name, other);
    return differsInCase(name, other) || !nearest(own, {right}).empty();
}

}  // namespace

const std::vector<std::string_view>& knownSections() {
    static const std::vector<std::string_view> sections = [] {
        std::vector<std::string_view> names;
        for (const product::KnownItem& item : product::kKnownItems) {
            if (std::find(names.begin(), names.end(), item.name.category) == names.end()) {
                names.push_back(item.name.category);
            }
        }
        return names;
    }();
    return sections;
}

std::vector<std::string_view> knownKeysIn(std::string_view section) {
    std::vector<std::string_view> keys;
    for (const product::KnownItem& item : product::kKnownItems) {
        if (item.name.category == section) {
            keys.push_back(item.name.key);
        }
    }
    return keys;
}

std::string_view sectionMeantBy(std::string_view code) {
    const std::string plain = isAscii(code) ? std::string(code) : withoutLookalikes(code);
    const std::string_view word = wordIn(plain);
    // A name alone may be an item without its "=".
    const bool hasBrackets = !word.empty() && word.size() < plain.size() &&
                             std::string_view("[({<").find(plain.front()) != std::string::npos;
    for (const std::string_view section : knownSections()) {
        if (hasBrackets &&
            (word == withoutBrackets(section) || differsInCase(word, withoutBrackets(section)))) {
            return section;
        }
    }
    return {};
}

bool isBrokenSection(const ReadLine& read) {
    const std::string_view code = trimmed(read.text.substr(0, read.text.find('#')));
    const bool hasMark = beginsWith(read.text, kByteOrderMark);
    if (read.use != LineUse::SECTION && code.find('=') == std::string_view::npos &&
        !sectionMeantBy(code).empty()) {
        return true;
    }
    return read.use != LineUse::SECTION && !code.empty() &&
           (code.find('=') == std::string_view::npos || beginsWith(code, "[")) &&
           (code.back() == ']' || (beginsWith(code, "[") && !hasMark));
}

bool isWholeSection(std::string_view name) {
    return name.size() > 2 && name.front() == '[' && name.find(']') == name.size() - 1;
}

std::string_view wordIn(std::string_view text) {
    const auto isOfWord = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    };
    const auto* const begin = std::find_if(text.begin(), text.end(), isOfWord);
    const auto end = std::find_if(text.rbegin(), text.rend(), isOfWord);
    const auto at = static_cast<size_t>(begin - text.begin());
    const auto after = static_cast<size_t>(end - text.rbegin());
    return at + after >= text.size() ? std::string_view()
                                     : text.substr(at, text.size() - at - after);
}

std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& names) {
    const std::string_view word = withoutBrackets(name);
    // A symbol too many, as in "PATH :" or "[[AUDIO]]".
    const std::string_view core = wordIn(word);
    for (const std::string_view candidate : names) {
        if (core.size() < word.size() && core == withoutBrackets(candidate)) {
            return candidate;
        }
    }
    std::vector<std::string_view> candidates;
    for (const std::string_view candidate : names) {
        const std::string_view other = withoutBrackets(candidate);
        if (!isMeant(word, other)) {
            continue;
        }
        const bool isNumbered = withoutDigits(word) == withoutDigits(other);
        const bool isShort = word.size() <= 2 && !differsInCase(word, other);
        if (!isNumbered && !isShort && areWordsAlike(word, other)) {
            candidates.push_back(other);
        }
    }
    const std::string_view found = nearest(word, candidates);
    const auto whole = std::find_if(names.begin(), names.end(), [&](std::string_view candidate) {
        return !found.empty() && withoutBrackets(candidate) == found;
    });
    return whole != names.end() ? *whole : std::string_view();
}

bool differsInShortWord(std::string_view name, std::string_view other) {
    constexpr size_t kLongest = 2;
    const auto [own, right] = ownPartsOf(name, other);
    return own.size() <= kLongest && right.size() <= kLongest && !differsInCase(name, other);
}

bool differsInCase(std::string_view one, std::string_view other) {
    return one != other && one.size() == other.size() &&
           strncasecmp(one.data(), other.data(), one.size()) == 0;
}

}  // namespace mlk::tree

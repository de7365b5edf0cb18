#include "tools/mlktree/rules/Meaning.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <unordered_set>

#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/rules/Texts.h"

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

// Whether two names are alike also without the words that they begin and end with alike: KEY_DOWN
// is not meant for KEY_OK.
bool areWordsAlike(std::string_view name, std::string_view other) {
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
    const std::string own = middle(words);
    const std::string right = middle(others);
    return differsInCase(name, other) || !nearest(own, {right}).empty();
}

// The items that other rules have nothing to say about.
std::vector<const ReadLine*> soundItemsOf(const FileLines& file) {
    std::vector<const ReadLine*> items;
    bool isBroken = false;
    for (const ReadLine& read : file.lines()) {
        if (read.use == LineUse::SECTION) {
            isBroken = !isWholeSection(read.section);
            continue;
        }
        if (read.use != LineUse::ITEM) {
            continue;
        }
        isBroken |= isBrokenSection(read);
        const bool isSound = !read.key.empty() && read.text.find('=') != std::string_view::npos &&
                             !looksLikeComment(read.text) &&
                             std::none_of(read.key.begin(), read.key.end(),
                                          [](unsigned char c) { return std::iscntrl(c) != 0; });
        if (!isBroken && isSound && file.find(read.section, read.key) == &read) {
            items.push_back(&read);
        }
    }
    return items;
}

std::vector<ItemFile> findItemFiles(const ProductLine& line) {
    std::vector<ItemFile> files;
    std::set<const FileLines*> seen;
    const auto add = [&](const FileLines* file, bool isBoard) {
        const bool isUsed = file != nullptr && file->format() == FileFormat::PROJECT &&
                            file->exists() && !file->isUnreadable();
        if (isUsed && seen.insert(file).second) {
            files.push_back({file, isBoard, soundItemsOf(*file)});
        }
    };
    for (const Model& model : line.models()) {
        add(model.counts ? model.file : nullptr, false);
    }
    for (const Board& board : line.boards()) {
        add(board.file, true);
    }
    return files;
}

}  // namespace

const std::vector<ItemFile>& itemFilesOf(const ProductLine& line) {
    return line.memo().get<std::vector<ItemFile>>([&] { return findItemFiles(line); });
}

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

bool isBrokenSection(const ReadLine& read) {
    const std::string_view code = trimmed(read.text.substr(0, read.text.find('#')));
    const bool hasMark = beginsWith(read.text, kByteOrderMark);
    return read.use != LineUse::SECTION && !code.empty() &&
           (code.find('=') == std::string_view::npos || beginsWith(code, "[")) &&
           (code.back() == ']' || (beginsWith(code, "[") && !hasMark));
}

bool isWholeSection(std::string_view name) {
    return name.size() > 2 && name.front() == '[' && name.find(']') == name.size() - 1;
}

std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& names) {
    const std::string_view word = withoutBrackets(name);
    std::vector<std::string_view> candidates;
    for (const std::string_view candidate : names) {
        const std::string_view other = withoutBrackets(candidate);
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

bool differsInCase(std::string_view one, std::string_view other) {
    return one != other && one.size() == other.size() &&
           strncasecmp(one.data(), other.data(), one.size()) == 0;
}

namespace {

Misspellings findMisspellings(const ProductLine& line, const std::vector<ItemFile>& files) {
    Misspellings result;
    const auto stands = [&](const auto& inFile) {
        return std::any_of(files.begin(), files.end(), inFile);
    };
    std::set<std::string_view> sections;
    std::unordered_set<ItemName, ItemNameHash> keys;
    for (const ItemFile& item : files) {
        for (const auto& [name, first] : item.file->sections()) {
            sections.insert(name);
        }
        for (const ReadLine* const read : item.items) {
            keys.emplace(read->section, read->key);
        }
    }
    constexpr size_t kMostSearches = 20'000;  // more names than any line that somebody wrote has
    size_t searches = 0;
    for (const std::string_view name : sections) {
        const std::vector<std::string_view>& known = knownSections();
        if (std::find(known.begin(), known.end(), name) != known.end() || !isWholeSection(name) ||
            line.settings().knowsSection(name)) {
            continue;
        }
        if (++searches > kMostSearches) {
            break;
        }
        const std::string_view right = nearestName(name, known);
        const auto hasBoth = [&](const ItemFile& item) {
            return item.file->sections().count(name) > 0 && item.file->sections().count(right) > 0;
        };
        if (!right.empty() && (differsInCase(name, right) || !stands(hasBoth))) {
            result.sections.emplace(name, right);
        }
    }
    searches = 0;
    for (const auto& [section, key] : keys) {
        if (product::findKnownItem({section, key}) != nullptr ||
            line.settings().find(section, key) != nullptr) {
            continue;
        }
        if (++searches > kMostSearches) {
            break;
        }
        const std::string_view right = nearestName(key, knownKeysIn(section));
        const auto hasBoth = [&, inSection = section, own = key](const ItemFile& item) {
            return item.file->find(inSection, own) != nullptr &&
                   item.file->find(inSection, right) != nullptr;
        };
        if (!right.empty() && (differsInCase(key, right) || !stands(hasBoth))) {
            result.keys.emplace(std::pair(section, key), right);
        }
    }
    return result;
}

}  // namespace

const Misspellings& misspellingsOf(const ProductLine& line) {
    const std::vector<ItemFile>& files = itemFilesOf(line);
    return line.memo().get<Misspellings>([&] { return findMisspellings(line, files); });
}

}  // namespace mlk::tree

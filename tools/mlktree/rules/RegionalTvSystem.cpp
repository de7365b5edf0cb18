#include "tools/mlktree/rules/RegionalTvSystem.h"

#include <algorithm>

#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

// Items that are counted, such as sockets, differ by their digits on purpose.
bool differInDigitsOnly(std::string_view one, std::string_view other) {
    const auto withoutDigits = [](std::string_view text) {
        std::string rest;
        std::copy_if(text.begin(), text.end(), std::back_inserter(rest),
                     [](char c) { return c < '0' || c > '9'; });
        return rest;
    };
    return withoutDigits(one) == withoutDigits(other);
}

}  // namespace

std::vector<const ReadLine*> itemsOf(const FileLines& file) {
    std::vector<const ReadLine*> items;
    for (const ReadLine& read : file.lines()) {
        if (read.use == LineUse::ITEM && !read.owner.empty() && read.isNew) {
            items.push_back(&read);
        }
    }
    return items;
}

std::vector<const ReadLine*> systemsNamedBy(const FileLines& map) {
    std::vector<const ReadLine*> lines;
    for (const ReadLine& read : map.lines()) {
        if (read.use == LineUse::ITEM && read.key == product::element::kSystemOfCountry &&
            read.isNew && !read.value.empty()) {
            lines.push_back(&read);
        }
    }
    return lines;
}

bool hasBrackets(std::string_view category) {
    const std::string_view text = trimmed(category);
    return text.size() > 2 && text.front() == '[' && text.back() == ']';
}

std::string withBrackets(std::string_view category) {
    std::string_view text = trimmed(category);
    text.remove_prefix(text.substr(0, 1) == "[" ? 1 : 0);
    text.remove_suffix(!text.empty() && text.back() == ']' ? 1 : 0);
    return "[" + std::string(text) + "]";
}

std::set<std::string_view> systemNamesOf(const FileLines& file) {
    std::set<std::string_view> names;
    for (const auto& [name, read] : file.sections()) {
        names.insert(trimmed(name));
    }
    return names;
}

bool mayLackSystems(const FileLines& file) {
    return file.sections().empty() || countIgnoredBlocks(file) > 0;
}

bool namesOtherMap(const TvSystemFiles& files) {
    if (!isUsable(files.file) || !isUsable(files.map) || mayLackSystems(*files.file)) {
        return false;
    }
    const std::set<std::string_view> names = systemNamesOf(*files.file);
    const std::vector<const ReadLine*> named = systemsNamedBy(*files.map);
    const auto isOther = [&](const ReadLine* read) {
        const std::string_view name = trimmed(read->value);
        return names.count(name) == 0 && nearest(name, {names.begin(), names.end()}).empty();
    };
    constexpr size_t kMostLookedAt = 100;
    return !named.empty() && std::all_of(named.begin(),
                                         named.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                                 named.size(), kMostLookedAt)),
                                         isOther);
}

ItemsOfModels::ItemsOfModels(const ProductLine& line, const TvSystemFiles& files)
    : mSystems(*files.file) {
    std::set<const FileLines*> named;
    for (const Naming& naming : line.namings(mSystems.path())) {
        named.insert(naming.file);
    }
    const auto isNamed = [&](const FileLines* file) { return named.count(file) > 0; };
    const bool isOfBoard =
            std::any_of(line.boards().begin(), line.boards().end(),
                        [&](const Board& b) { return b.file != nullptr && isNamed(b.file); });
    std::set<const FileLines*> seen;
    const auto add = [&](const FileLines* file) {
        if (isUsable(file) && seen.insert(file).second) {
            mFiles.push_back(file);
        }
    };
    for (const Model& model : line.models()) {
        if (model.counts && (isOfBoard || isNamed(model.file))) {
            add(model.file);
        }
    }
    for (const Board& board : line.boards()) {
        if (!mFiles.empty()) {
            add(board.file);
        }
    }
}

bool ItemsOfModels::has(const ItemName& name) const {
    return std::any_of(mFiles.begin(), mFiles.end(), [&](const FileLines* file) {
        return file->find(name.section, name.key) != nullptr;
    });
}

bool ItemsOfModels::mayLack(const ReadLine& item) const {
    return !mFiles.empty() && hasBrackets(item.section) && flawAtEnds(item.section).empty() &&
           flawAtEnds(item.key).empty() && !has({item.section, item.key});
}

ItemName ItemsOfModels::nearestTo(const ReadLine& item) {
    constexpr size_t kMostSearches = 1000;  // of one file; nobody reads more findings
    const OwnedName wanted{item.owner, {item.section, item.key}};
    const auto found = mFound.find(wanted);
    if (found != mFound.end()) {
        return found->second;
    }
    if (mFound.empty()) {
        collect();
    }
    const ItemName near = mFound.size() < kMostSearches ? search(wanted) : ItemName{};
    mFound.emplace(wanted, near);
    return near;
}

void ItemsOfModels::collect() {
    for (const ReadLine* const read : itemsOf(mSystems)) {
        mOwn.insert({read->owner, {read->section, read->key}});
    }
    for (const FileLines* const file : mFiles) {
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM) {
                mSections[read.section].insert(read.key);
            }
        }
    }
}

ItemName ItemsOfModels::search(const OwnedName& wanted) const {
    const auto& [owner, name] = wanted;
    if (const auto section = mSections.find(name.section); section != mSections.end()) {
        std::vector<std::string_view> keys;
        for (const std::string_view key : section->second) {
            if (mOwn.count({owner, {name.section, key}}) == 0 &&
                !differInDigitsOnly(key, name.key)) {
                keys.push_back(key);
            }
        }
        if (const std::string_view key = nearest(name.key, keys); !key.empty()) {
            return {name.section, key};
        }
    }
    std::vector<std::string_view> sections;
    for (const auto& [section, keys] : mSections) {
        if (keys.count(name.key) > 0 && mOwn.count({owner, {section, name.key}}) == 0) {
            sections.push_back(section);
        }
    }
    const std::string_view section = nearest(name.section, sections);
    return section.empty() ? ItemName{} : ItemName{section, name.key};
}

}  // namespace mlk::tree

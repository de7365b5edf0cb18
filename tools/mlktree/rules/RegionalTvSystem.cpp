#include "tools/mlktree/rules/RegionalTvSystem.h"

#include <algorithm>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Nearest.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

bool names(const ProductLine& line, const FileLines* file, const std::string& path) {
    const ReadLine* const read = file != nullptr ? file->find(product::item::kTvSystems.category,
                                                              product::item::kTvSystems.key)
                                                 : nullptr;
    return read != nullptr && line.tree().relative(line.tree().hostOfWritten(read->value)) == path;
}

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

ItemsOfModels::ItemsOfModels(const ProductLine& line, const TvSystemFiles& files) {
    std::set<const FileLines*> seen;
    const auto add = [&](const FileLines* file) {
        if (isUsable(file) && seen.insert(file).second) {
            mFiles.push_back(file);
        }
    };
    const bool isOfBoard = std::any_of(
            line.boards().begin(), line.boards().end(),
            [&](const Board& board) { return names(line, board.file, files.file->path()); });
    for (const Model& model : line.models()) {
        if (model.counts && (isOfBoard || names(line, model.file, files.file->path()))) {
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

ItemName ItemsOfModels::nearestTo(const ReadLine& item, const FileLines& file) const {
    const auto& known = sections();
    std::set<ItemName> own;
    for (const ReadLine* const other : itemsOf(file)) {
        if (other->owner == item.owner) {
            own.insert({other->section, other->key});
        }
    }
    if (const auto section = known.find(item.section); section != known.end()) {
        std::vector<std::string_view> keys;
        for (const std::string_view key : section->second) {
            if (own.count({item.section, key}) == 0 && !differInDigitsOnly(key, item.key)) {
                keys.push_back(key);
            }
        }
        if (const std::string_view key = nearest(item.key, keys); !key.empty()) {
            return {item.section, key};
        }
    }
    std::vector<std::string_view> names;
    for (const auto& [section, keys] : known) {
        if (keys.count(item.key) > 0 && own.count({section, item.key}) == 0) {
            names.push_back(section);
        }
    }
    const std::string_view section = nearest(item.section, names);
    return section.empty() ? ItemName{} : ItemName{section, item.key};
}

const std::map<std::string_view, std::set<std::string_view>>& ItemsOfModels::sections() const {
    if (mSections.empty()) {
        for (const FileLines* const file : mFiles) {
            for (const ReadLine& read : file->lines()) {
                if (read.use == LineUse::ITEM) {
                    mSections[read.section].insert(read.key);
                }
            }
        }
    }
    return mSections;
}

}  // namespace mlk::tree

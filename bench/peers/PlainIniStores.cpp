// The stores that need only the standard library.

#include <algorithm>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "bench/peers/IniStores.h"

namespace mlk::bench {

namespace {

std::string withoutBrackets(const std::string& category) {
    return category.size() < 2 ? category : category.substr(1, category.size() - 2);
}

void eraseEvery(std::string& text, char unwanted) {
    for (size_t at = text.find(unwanted); at != std::string::npos; at = text.find(unwanted)) {
        text.erase(at, 1);
    }
}

void eraseTrailing(std::string& text, char unwanted) {
    while (!text.empty() && text.back() == unwanted) {
        text.erase(text.size() - 1);
    }
}

void eraseLeading(std::string& text, char unwanted) {
    while (!text.empty() && text.front() == unwanted) {
        text.erase(0, 1);
    }
}

void eraseSymbol(std::string& text) {
    const size_t comment = text.find('#');
    if (comment != std::string::npos) {
        text = text.substr(0, comment);
    }
    eraseTrailing(text, '\r');
    eraseEvery(text, '"');
    eraseEvery(text, ';');
    eraseTrailing(text, ' ');
    eraseLeading(text, ' ');
}

void patchPath(std::string& value, const Mounts& mounts) {
    const std::pair<std::string, const char*> prefixes[] = {{"/tvconfigs", mounts.tvconfigs},
                                                            {"/tvdata", mounts.tvdata},
                                                            {"/impdata", mounts.impdata}};
    for (const auto& [prefix, mount] : prefixes) {
        if (value.find(prefix) == 0) {
            value.replace(0, prefix.size(), mount);
            return;
        }
    }
}

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \"");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \"") - begin + 1);
}

}  // namespace

LiteralStore::LiteralStore(const std::string& path, const Mounts& mounts) {
    constexpr size_t kBuffer = 1024;
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(path);
    }
    std::string category;
    char buffer[kBuffer];
    while (!file.eof()) {
        memset(buffer, 0, sizeof buffer);
        file.getline(buffer, sizeof buffer, '\n');
        switch (buffer[0]) {
            case '[':
                category = buffer;
                eraseSymbol(category);
                break;
            case '\0':
            case '\r':
            case '\n':
            case '#':
                break;
            default:
                addNewItem(category, buffer, mounts);
        }
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the literal reader copies
void LiteralStore::addNewItem(std::string category, std::string line, const Mounts& mounts) {
    eraseSymbol(line);
    std::string key = line;
    std::string value = line;
    const size_t equals = line.find('=');
    if (equals != std::string::npos) {
        key = line.substr(0, equals);
        value = line.substr(equals + 1);
    }
    eraseTrailing(key, ' ');
    eraseLeading(value, ' ');
    patchPath(value, mounts);
    const Name names(category, key);
    const auto known = mItems.find(names);
    if (known != mItems.end()) {
        known->second = value;
    } else {
        mItems.insert(std::make_pair(names, value));
    }
}

std::string LiteralStore::getInfo(const Question& question) const {
    return find(Name(question.category, question.key));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the literal reader copies
std::string LiteralStore::find(Name names) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto item = mItems.find(names);
    return item != mItems.end() ? item->second : "";
}

NamedValues LiteralStore::items() const {
    NamedValues items;
    for (const auto& [names, value] : mItems) {
        items[{withoutBrackets(names.first), names.second}] = value;
    }
    return items;
}

GetlineStore::GetlineStore(const std::string& path, const Mounts& /*mounts*/) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(path);
    }
    std::string line;
    std::string section;
    while (std::getline(file, line)) {
        const std::string_view text = std::string_view(line).substr(0, line.find('#'));
        const size_t equals = text.find('=');
        if (!text.empty() && text.front() == '[') {
            section = text.substr(1, text.find(']') - 1);
        } else if (equals != std::string_view::npos) {
            mItems[{section, std::string(trimmed(text.substr(0, equals)))}] =
                    trimmed(text.substr(equals + 1));
        }
    }
}

MapStore::MapStore(const std::string& path, const Mounts& mounts) {
    for (auto& item : LiteralStore(path, mounts).items()) {
        mItems.insert(item);
    }
}

std::string MapStore::getInfo(const Question& question) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto item = mItems.find(LengthFirst::View(question.section, question.key));
    return item != mItems.end() ? item->second : std::string();
}

SortedStore::SortedStore(const std::string& path, const Mounts& mounts) {
    const NamedValues items = LiteralStore(path, mounts).items();
    mItems.assign(items.begin(), items.end());
    std::sort(mItems.begin(), mItems.end(),
              [](const auto& a, const auto& b) { return LengthFirst()(a.first, b.first); });
}

std::string SortedStore::getInfo(const Question& question) const {
    const LengthFirst::View names(question.section, question.key);
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto item = std::lower_bound(
            mItems.begin(), mItems.end(), names,
            [](const auto& a, const LengthFirst::View& b) { return LengthFirst()(a.first, b); });
    if (item == mItems.end() || LengthFirst()(names, item->first)) {
        return {};
    }
    return item->second;
}

}  // namespace mlk::bench

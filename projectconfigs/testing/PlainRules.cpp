#include "projectconfigs/testing/PlainRules.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <tuple>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

namespace {

std::string without(const std::string& text, char unwanted) {
    std::string rest;
    for (const char c : text) {
        if (c != unwanted) {
            rest += c;
        }
    }
    return rest;
}

void cutTail(std::string& text, char unwanted) {
    while (!text.empty() && text.back() == unwanted) {
        text.pop_back();
    }
}

void cutHead(std::string& text, char unwanted) {
    while (!text.empty() && text.front() == unwanted) {
        text.erase(text.begin());
    }
}

void cutComment(std::string& text) {
    while (text.find('#') != std::string::npos) {
        text.pop_back();
    }
}

// Removes the first such character, at position p, with up to p characters after it; repeats that.
void takeOutWithFollowers(std::string& text, char unwanted) {
    for (;;) {
        size_t place = 0;
        while (place < text.size() && text[place] != unwanted) {
            ++place;
        }
        if (place == text.size()) {
            return;
        }
        std::string rest = text.substr(0, place);
        for (size_t i = place + place + 1; i < text.size(); ++i) {
            rest += text[i];
        }
        text = rest;
    }
}

}  // namespace

std::string contentOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> linesOf(const std::string& text, size_t most) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    if (lines.back().empty()) {
        lines.pop_back();
    }
    for (std::string& line : lines) {
        line.resize(std::min(line.size(), most));
        line = line.c_str();
    }
    return lines;
}

std::string cleaned(std::string text) {
    cutComment(text);
    cutTail(text, '\r');
    text = without(text, '"');
    text = without(text, ';');
    cutTail(text, ' ');
    cutHead(text, ' ');
    return text;
}

Items projectItems(const std::string& text) {
    Items items;
    std::string category;
    for (const std::string& line : linesOf(text, 1023)) {
        if (line.empty() || line[0] == '\r' || line[0] == '#') {
            continue;
        }
        const std::string rest = cleaned(line);
        if (line[0] == '[') {
            category = rest;
            continue;
        }
        std::string key;
        size_t i = 0;
        while (i < rest.size() && rest[i] != '=') {
            key += rest[i++];
        }
        std::string value = i < rest.size() ? rest.substr(i + 1) : rest;
        cutTail(key, ' ');
        cutHead(value, ' ');
        items[{category, key}] = value;
    }
    return items;
}

Items auxiliaryItems(const std::string& text) {
    Items items;
    std::string section;
    for (const std::string& line : linesOf(text, 255)) {
        if (line.empty() || line[0] == '\r' || line[0] == '#' || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            section = line;
            continue;
        }
        std::string copy = line;
        char* state = nullptr;
        const char* const first = strtok_r(copy.data(), "=", &state);
        const char* const second = first != nullptr ? strtok_r(nullptr, "=", &state) : nullptr;
        if (second == nullptr) {
            continue;
        }
        std::string key = first;
        cutTail(key, ' ');
        std::string value = second;
        cutHead(value, ' ');
        cutComment(value);
        takeOutWithFollowers(value, '"');
        takeOutWithFollowers(value, ';');
        takeOutWithFollowers(value, '\r');
        std::string category = section;
        takeOutWithFollowers(category, '\r');
        cutTail(category, ' ');
        cutComment(category);
        items.insert({{category, key}, value});
    }
    return items;
}

std::string dumpOf(const Items& items, const std::string& indent) {
    std::vector<std::pair<Items::key_type, std::string>> ordered(items.begin(), items.end());
    const auto rank = [](const auto& item) {
        const auto& [section, key] = item.first;
        return std::tuple(section.size(), section, key.size(), key);
    };
    std::sort(ordered.begin(), ordered.end(),
              [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    std::string text;
    for (const auto& [name, value] : ordered) {
        text.append(indent).append(name.first).append(":").append(name.second);
        text.append("=").append(value).append("\n");
    }
    return text;
}

std::string randomFile(unsigned int seed) {
    std::mt19937 random(seed);
    const std::string alphabet = "ab =#;\"\r\t[]/x";
    std::string text;
    for (size_t line = 1 + random() % 60; line > 0; --line) {
        const char* const starts[] = {"", "", "[", "[S]", "k=", "key", "="};
        text += starts[random() % 7];
        const size_t padded = random() % 28;  // half of the lines are long
        for (size_t i = random() % 14; i > 0; --i) {
            text += alphabet[random() % alphabet.size()];
            text.append(i == padded ? 40 + random() % 40 : 0, padded % 3 == 0 ? ' ' : 'p');
        }
        text += '\n';
    }
    return text;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain

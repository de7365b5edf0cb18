#include "tools/mlktree/TomlTable.h"

#include <algorithm>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

std::string quoted(std::string_view key) {
    return "\"" + std::string(key) + "\"";
}

}  // namespace

void refuseAt(const std::string& path, const toml::source_region& place,
              const std::string& message) {
    throw UsageError(path + ":" + std::to_string(place.begin.line) + ":" +
                     std::to_string(place.begin.column) + ": " + message);
}

const toml::node& TomlTable::at(std::string_view key) const {
    const toml::node* node = mTable.get(key);
    if (node == nullptr) {
        refuse(key, mName + " needs " + quoted(key));
    }
    return *node;
}

void TomlTable::refuse(std::string_view key, const std::string& message) const {
    const toml::node* node = mTable.get(key);
    refuseAt(mPath, node != nullptr ? node->source() : mTable.source(), message);
}

std::string TomlTable::text(std::string_view key) const {
    const auto* value = at(key).as_string();
    if (value == nullptr) {
        refuse(key, quoted(key) + " of " + mName + " is a text: put it into quotes");
    }
    return value->get();
}

std::string TomlTable::text(std::string_view key, std::string_view otherwise) const {
    return has(key) ? text(key) : std::string(otherwise);
}

std::vector<std::string> TomlTable::texts(std::string_view key) const {
    std::vector<std::string> found;
    const auto* array = at(key).as_array();
    if (array == nullptr) {
        refuse(key, quoted(key) + R"( is a list of texts: ["a", "b"])");
    }
    for (const toml::node& node : *array) {
        const auto* value = node.as_string();
        if (value == nullptr) {
            refuseAt(mPath, node.source(),
                     quoted(key) + " is a list of texts: put each of them into quotes");
        }
        found.push_back(value->get());
    }
    return found;
}

std::optional<int64_t> TomlTable::integer(std::string_view key) const {
    if (!has(key)) {
        return std::nullopt;
    }
    const auto* value = at(key).as_integer();
    if (value == nullptr) {
        refuse(key, quoted(key) + " is an integer, without quotes");
    }
    return value->get();
}

bool TomlTable::boolean(std::string_view key) const {
    if (!has(key)) {
        return false;
    }
    const auto* value = at(key).as_boolean();
    if (value == nullptr) {
        refuse(key, quoted(key) + " is true or false, without quotes");
    }
    return value->get();
}

void TomlTable::allowOnly(const std::vector<std::string_view>& keys) const {
    for (const auto& [key, node] : mTable) {
        const std::string_view name = key.str();
        if (std::find(keys.begin(), keys.end(), name) != keys.end()) {
            continue;
        }
        const std::vector<std::string> list(keys.begin(), keys.end());
        refuseAt(mPath, key.source(),
                 mName + " has no key " + excerpt(name) +
                         didYouMean(name, keys, "; its keys are " + joined(list)));
    }
}

}  // namespace mlk::tree

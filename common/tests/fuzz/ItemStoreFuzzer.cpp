// The item store against a std::map: a line an operation. "+section=key=value" adds an item,
// "*section=key=value" gives it another value, "!" clears the store; anything else looks for an
// item.

#include <map>
#include <sstream>
#include <tuple>

#include "common/ConfigKey.h"
#include "common/ItemStore.h"
#include "host/testing/fuzz/Fuzzing.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;

namespace {

// Length first: the order of a walk.
using Rank = std::tuple<size_t, std::string, size_t, std::string>;
using Plain = std::map<Rank, std::string>;

Rank rankOf(const std::string& section, const std::string& key) {
    return {section.size(), section, key.size(), key};
}

void apply(const std::string& line, ItemStore& store, Plain& plain) {
    const std::vector<std::string> words = fuzzing::split(line.substr(1), "=", 3);
    const std::string& section = words[0];
    const std::string key = words.size() > 1 ? words[1] : "";
    const std::string value = words.size() > 2 ? words[2] : "";
    const auto known = plain.find(rankOf(section, key));
    const ItemStore::Item item = store.find(section, key);
    fuzzing::require((item != ItemStore::kNone) == (known != plain.end()), "what is in is found");
    if (item != ItemStore::kNone) {
        fuzzing::requireEqual("the value", store.valueOf(item), known->second);
        fuzzing::require(store.valueOf(item).data()[known->second.size()] == '\0', "a NUL ends it");
    }
    if (line[0] == '+') {
        const bool isNew = store.insert(store.section(section), key, value).isNew;
        fuzzing::require(isNew == (known == plain.end()), "a new item is new");
        plain.insert({rankOf(section, key), value});
    } else if (line[0] == '*' && item != ItemStore::kNone) {
        store.replace(item, value);
        known->second = value;
    }
}

void compare(const ItemStore& store, const Plain& plain) {
    std::ostringstream dump;
    store.write(dump, " ");
    std::string expected;
    std::map<std::string, std::string> sections;
    for (const auto& [rank, value] : plain) {
        const std::string line =
                " " + std::get<1>(rank) + ":" + std::get<3>(rank) + "=" + value + "\n";
        expected += line;
        sections[std::get<1>(rank)] += line;
    }
    fuzzing::require(store.size() == plain.size(), "the number of items");
    fuzzing::requireEqual("the items", dump.str(), expected);
    for (const auto& [section, lines] : sections) {
        std::string text;
        for (const ItemStore::Item item : store.itemsOf(section)) {
            text.append(" ").append(store.sectionOf(item)).append(":").append(store.keyOf(item));
            text.append("=").append(store.valueOf(item)).append("\n");
        }
        fuzzing::requireEqual("the items of a section", text, lines);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ItemStore store;
    Plain plain;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const std::string& line : fuzzing::split(text, "\n", 1000)) {
        if (line.empty()) {
            compare(store, plain);
        } else if (line[0] == '!') {
            store.clear();
            plain.clear();
        } else {
            apply(line, store, plain);
        }
    }
    compare(store, plain);
    ItemStore moved(std::move(store));
    compare(moved, plain);
    return 0;
}

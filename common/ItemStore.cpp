#include "common/ItemStore.h"

#include <log/log.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "common/TextHash.h"
#include "common/TextOrder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kUsualLine = 40;
constexpr size_t kMostExpected = size_t{4} * 1024 * 1024;

static_assert(TextArena::kSlack >= kReadBySorting);

void put(char* place, std::string_view text) {
    std::copy(text.begin(), text.end(), place);
    place[text.size()] = '\0';
}

// As put(), for most texts without a branch that depends on their size. Reads and writes kReadable
// bytes, also of a shorter text.
[[gnu::always_inline]] inline void putReadable(char* place, std::string_view text) {
    constexpr size_t kUsual = ItemStore::kReadable;
    std::memcpy(place, text.data(), kUsual);
    if (text.size() > kUsual) {
        std::memcpy(place + kUsual, text.data() + kUsual, text.size() - kUsual);
    }
    place[text.size()] = '\0';
}

// As "==", which costs a lookup another call.
bool isSame(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end());
}

// The size of the longest value that fits.
uint32_t capacityAt(const char* texts) {
    uint32_t capacity = 0;
    std::memcpy(&capacity, texts - sizeof capacity, sizeof capacity);
    return capacity;
}

}  // namespace

void ItemStore::clear() {
    mItems.clear();
    mSections.clear();
    mItemsByName.clear();
    mSectionsByName.clear();
    mTexts.clear();
    mOrder.clear();
    mIsOrdered = true;
}

void ItemStore::expect(size_t bytes) {
    const size_t items = mItems.size() + std::min(bytes, kMostExpected) / kUsualLine;
    mItems.reserve(items);
    mItemsByName.expect(items);
}

ItemStore::Section ItemStore::section(std::string_view name) {
    const uint64_t hash = hashText(name, 0);
    Section& section = mSectionsByName.findOrAdd(
            shortHash(hash), [&](Section known) { return isSame(mSections[known].name, name); });
    if (section == kNone) {
        char* const copy = mTexts.allocate(name.size() + 1);
        put(copy, name);
        mSections.push_back({{copy, name.size()}, hash, kNone, kNone, 0});
        section = static_cast<Section>(mSections.size() - 1);
    }
    return section;
}

ItemStore::Inserted ItemStore::insert(Section section, std::string_view key,
                                      std::string_view value) {
    return insertBy([](char* place, std::string_view text) { put(place, text); }, section, key,
                    value);
}

ItemStore::Inserted ItemStore::insertReadable(Section section, std::string_view key,
                                              std::string_view value) {
    return insertBy([](char* place, std::string_view text) { putReadable(place, text); }, section,
                    key, value);
}

template <typename Put>
ItemStore::Inserted ItemStore::insertBy(const Put& putText, Section section, std::string_view key,
                                        std::string_view value) {
    SectionEntry& owner = mSections[section];
    Item& item = mItemsByName.findOrAdd(shortHash(hashText(key, owner.hash)), [&](Item known) {
        return mItems[known].section == section && isSame(keyOf(known), key);
    });
    if (item != kNone) {
        return {item, false};
    }
    char* const texts = placeTexts(key.size(), value.size());
    putText(texts, key);
    putText(texts + key.size() + 1, value);
    mItems.push_back({texts, static_cast<uint32_t>(key.size()), static_cast<uint32_t>(value.size()),
                      section, kNone});
    item = static_cast<Item>(mItems.size() - 1);
    (owner.first == kNone ? owner.first : mItems[owner.last].next) = item;
    owner.last = item;
    ++owner.size;
    mIsOrdered = false;
    return {item, true};
}

void ItemStore::replace(Item item, std::string_view value) {
    ItemEntry& entry = mItems[item];
    if (value.size() > capacityAt(entry.texts)) {
        // Doubling: a value that keeps growing wastes no more memory than it needs in the end.
        char* const texts = placeTexts(entry.keySize, value.size() * 2);
        put(texts, keyOf(item));
        entry.texts = texts;
    }
    put(entry.texts + entry.keySize + 1, value);
    entry.valueSize = static_cast<uint32_t>(value.size());
}

ItemStore::Item ItemStore::find(std::string_view section, std::string_view key) const {
    const uint32_t hash = shortHash(hashText(key, hashText(section, 0)));
    return mItemsByName.find(hash, [&](Item known) {
        return isSame(keyOf(known), key) && isSame(sectionOf(known), section);
    });
}

const std::vector<ItemStore::Item>& ItemStore::inOrder() const {
    if (!mIsOrdered) {
        putInOrder();
    }
    return mOrder;
}

std::vector<ItemStore::Item> ItemStore::itemsOf(std::string_view section) const {
    const Section known = mSectionsByName.find(shortHash(hashText(section, 0)), [&](Section one) {
        return isSame(mSections[one].name, section);
    });
    if (known == kNone) {
        return {};
    }
    std::vector<Item> items(mSections[known].size);
    std::vector<NumberedText> keys;
    putInOrder(mSections[known], keys, items.data());
    return items;
}

void ItemStore::log(const char* tag) const {
    // Avoids sorting for lines that the log drops.
    if (__android_log_is_loggable(ANDROID_LOG_DEBUG, tag, ANDROID_LOG_VERBOSE) == 0) {
        return;
    }
    for (const Item item : inOrder()) {
        LOG_PRI(ANDROID_LOG_DEBUG, tag, "\t%s:%s=%s", sectionOf(item).data(), keyOf(item).data(),
                valueOf(item).data());
    }
}

void ItemStore::write(std::ostream& out, std::string_view indent) const {
    for (const Item item : inOrder()) {
        out << indent << sectionOf(item) << ":" << keyOf(item) << "=" << valueOf(item) << "\n";
    }
    out.flush();
}

// Allocates memory for a key and a value.
char* ItemStore::placeTexts(size_t keySize, size_t valueCapacity) {
    const auto capacity = static_cast<uint32_t>(valueCapacity);
    char* const place = mTexts.allocate(sizeof capacity + keySize + valueCapacity + 2);
    std::memcpy(place, &capacity, sizeof capacity);
    return place + sizeof capacity;
}

void ItemStore::putInOrder() const {
    std::vector<NumberedText> texts;
    texts.reserve(mSections.size());
    for (const SectionEntry& section : mSections) {
        texts.emplace_back(section.name, static_cast<Section>(texts.size()));
    }
    sortTexts(texts);
    std::vector<size_t> begins(mSections.size());
    size_t begin = 0;
    for (const NumberedText& text : texts) {
        begins[text.number] = begin;
        begin += mSections[text.number].size;
    }
    mOrder.resize(mItems.size());
    // In the order of insertion, which is the order of the texts in memory.
    for (size_t section = 0; section < mSections.size(); ++section) {
        putInOrder(mSections[section], texts, mOrder.data() + begins[section]);
    }
    mIsOrdered = true;
}

// Writes the sorted items of a section to `items`. Uses `keys` as scratch memory.
void ItemStore::putInOrder(const SectionEntry& section, std::vector<NumberedText>& keys,
                           Item* items) const {
    keys.clear();
    for (Item item = section.first; item != kNone; item = mItems[item].next) {
        keys.emplace_back(keyOf(item), item);
    }
    sortTexts(keys);
    for (const NumberedText& key : keys) {
        *items++ = key.number;
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

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
constexpr size_t kNumber = sizeof(uint32_t);
constexpr size_t kNuls = 2;                      // after key and value
constexpr uint32_t kMostValue = (1U << 31) - 1;  // files have 64 MiB at most, calls less
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

// Writes the number that ItemStore::numberBefore() reads.
void putBefore(char* place, size_t number) {
    const auto narrow = static_cast<uint32_t>(number);
    std::memcpy(place - sizeof narrow, &narrow, sizeof narrow);
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
        mSections.push_back({{copy, name.size()}, hash, 0, kNone});
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
    char* const texts = mTexts.allocate(kNumber + key.size() + value.size() + kNuls) + kNumber;
    putBefore(texts, key.size());
    putText(texts, key);
    putText(texts + key.size() + 1, value);
    mItems.push_back({texts, static_cast<uint32_t>(value.size()) & kMostValue, 0, section});
    item = static_cast<Item>(mItems.size() - 1);
    if (owner.size++ == 0) {
        owner.first = item;
    }
    mIsOrdered = false;
    return {item, true};
}

void ItemStore::replace(Item item, std::string_view value) {
    ItemEntry& entry = mItems[item];
    if (!fits(entry, value.size())) {
        move(entry, value.size());
    }
    put(entry.texts + numberBefore(entry.texts) + 1, value);
    entry.valueSize = static_cast<uint32_t>(value.size()) & kMostValue;
}

void ItemStore::makeRoom(Item item, size_t size) {
    ItemEntry& entry = mItems[item];
    if (!fits(entry, size)) {
        const std::string_view value = valueOf(item);
        move(entry, size);
        put(entry.texts + numberBefore(entry.texts) + 1, value);
    }
}

// Most items are never replaced. They store no capacity: what fits is the size of the present
// value, so that a shorter value gives up the rest.
bool ItemStore::fits(const ItemEntry& entry, size_t size) {
    const uint32_t capacity =
            entry.isRoomy != 0 ? numberBefore(entry.texts - kNumber) : entry.valueSize;
    return size <= capacity;
}

// Moves an item to a place where a value of `size` bytes fits. The caller writes the value.
void ItemStore::move(ItemEntry& entry, size_t size) {
    const std::string_view key(entry.texts, numberBefore(entry.texts));
    // Doubling: a value that keeps growing wastes no more memory than it needs in the end.
    const size_t more = size * 2;
    char* const texts = mTexts.allocate(2 * kNumber + key.size() + more + kNuls) + 2 * kNumber;
    putBefore(texts - kNumber, more);
    putBefore(texts, key.size());
    put(texts, key);
    entry.texts = texts;
    entry.isRoomy = 1;
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
    std::vector<Item> items;
    items.reserve(mSections[known].size);
    for (Item item = mSections[known].first; items.size() < mSections[known].size; ++item) {
        if (mItems[item].section == known) {
            items.push_back(item);
        }
    }
    std::vector<NumberedText> keys;
    sortByKeys(items.data(), items.size(), keys);
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

void ItemStore::putInOrder() const {
    std::vector<NumberedText> texts;
    texts.reserve(mSections.size());
    for (const SectionEntry& section : mSections) {
        texts.emplace_back(section.name, static_cast<Section>(texts.size()));
    }
    sortTexts(texts);
    // Where the next item of each section belongs.
    std::vector<Item> places(mSections.size());
    Item place = 0;
    for (const NumberedText& text : texts) {
        places[text.number] = place;
        place += mSections[text.number].size;
    }
    mOrder.resize(mItems.size());
    for (Item item = 0; item < mItems.size(); ++item) {
        mOrder[places[mItems[item].section]++] = item;
    }
    // In the order of insertion, which is the order of the texts in memory.
    for (size_t section = 0; section < mSections.size(); ++section) {
        const size_t count = mSections[section].size;
        sortByKeys(mOrder.data() + places[section] - count, count, texts);
    }
    mIsOrdered = true;
}

// Sorts items of one section. Uses `keys` as scratch memory.
void ItemStore::sortByKeys(Item* items, size_t count, std::vector<NumberedText>& keys) const {
    keys.clear();
    for (size_t i = 0; i < count; ++i) {
        keys.emplace_back(keyOf(items[i]), items[i]);
    }
    sortTexts(keys);
    for (const NumberedText& key : keys) {
        *items++ = key.number;
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "common/ItemStore.h"

#include <android/log.h>

#include <algorithm>
#include <functional>

#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kFirstBlock = size_t{4} * 1024;
constexpr size_t kLargestBlock = size_t{256} * 1024;
constexpr size_t kFirstIndex = 32;

size_t hashOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

uint32_t hashOf(size_t sectionHash, std::string_view key) {
    const size_t hash = hashOf(key) + sectionHash * 31;
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

// Orders most texts as CompareStr does without looking at them: their length, then how they begin.
uint64_t orderOf(std::string_view text) {
    constexpr size_t kBytes = 6;
    uint64_t order = std::min<size_t>(text.size(), UINT16_MAX);
    for (size_t i = 0; i < kBytes; ++i) {
        order = order << 8 | (i < text.size() ? static_cast<uint8_t>(text[i]) : 0U);
    }
    return order;
}

}  // namespace

void ItemStore::clear() {
    mItems.clear();
    mSections.clear();
    mSectionsByName.clear();
    std::fill(mIndex.begin(), mIndex.end(), kNone);
    mBlock = 0;
    mFilled = 0;
    mOrder.clear();
    mIsOrdered = true;
}

ItemStore::Section ItemStore::section(std::string_view name) {
    const auto known = mSectionsByName.find(name);
    if (known != mSectionsByName.end()) {
        return known->second;
    }
    const auto section = static_cast<Section>(mSections.size());
    const std::string_view kept(copy(name, name.size()), name.size());
    mSections.push_back({kept, hashOf(name), kNone, kNone});
    mSectionsByName.emplace(kept, section);
    return section;
}

ItemStore::Inserted ItemStore::insert(Section section, std::string_view key,
                                      std::string_view value) {
    if (mItems.size() * 2 >= mIndex.size()) {
        growIndex();
    }
    SectionEntry& owner = mSections[section];
    const uint32_t hash = hashOf(owner.hash, key);
    const size_t slot = slotOf(hash, owner.name, key);
    if (mIndex[slot] != kNone) {
        return {mIndex[slot], false};
    }
    const auto item = static_cast<Item>(mItems.size());
    mItems.push_back({copy(key, key.size()), copy(value, value.size()),
                      static_cast<uint32_t>(key.size()), static_cast<uint32_t>(value.size()),
                      static_cast<uint32_t>(value.size()), section, kNone, hash});
    (owner.first == kNone ? owner.first : mItems[owner.last].next) = item;
    owner.last = item;
    mIndex[slot] = item;
    mIsOrdered = false;
    return {item, true};
}

void ItemStore::replace(Item item, std::string_view value) {
    ItemEntry& entry = mItems[item];
    if (value.size() > entry.valueRoom) {
        // Twice what is needed: values that go on growing take no more than the last one does.
        const size_t room = value.size() * 2;
        entry.value = place(room + 1);
        entry.valueRoom = static_cast<uint32_t>(room);
    }
    std::copy(value.begin(), value.end(), entry.value);
    entry.value[value.size()] = '\0';
    entry.valueSize = static_cast<uint32_t>(value.size());
}

ItemStore::Item ItemStore::find(std::string_view section, std::string_view key) const {
    return mItems.empty() ? kNone : mIndex[slotOf(hashOf(hashOf(section), key), section, key)];
}

const std::vector<ItemStore::Item>& ItemStore::inOrder() const {
    if (!mIsOrdered) {
        putInOrder();
    }
    return mOrder;
}

std::vector<ItemStore::Item> ItemStore::itemsOf(std::string_view section) const {
    std::vector<Item> items;
    const auto known = mSectionsByName.find(section);
    if (known != mSectionsByName.end()) {
        appendInOrder(mSections[known->second], items);
    }
    return items;
}

void ItemStore::log(const char* tag) const {
    // Nothing is put in order for lines that nobody reads.
    if (__android_log_is_loggable(ANDROID_LOG_DEBUG, tag, ANDROID_LOG_VERBOSE) == 0) {
        return;
    }
    for (const Item item : inOrder()) {
        __android_log_print(ANDROID_LOG_DEBUG, tag, "\t%s:%s=%s", sectionOf(item).data(),
                            keyOf(item).data(), valueOf(item).data());
    }
}

void ItemStore::write(std::ostream& out, std::string_view indent) const {
    for (const Item item : inOrder()) {
        out << indent << sectionOf(item) << ":" << keyOf(item) << "=" << valueOf(item) << "\n";
    }
    out.flush();
}

// Room for so many bytes.
char* ItemStore::place(size_t size) {
    while (mBlock < mBlocks.size() && mBlocks[mBlock].size - mFilled < size) {
        ++mBlock;
        mFilled = 0;
    }
    if (mBlock == mBlocks.size()) {
        const size_t usual = mBlocks.empty() ? kFirstBlock : mBlocks.back().size * 2;
        const size_t blockSize = std::max(size, std::min(usual, kLargestBlock));
        mBlocks.push_back({std::unique_ptr<char[]>(new char[blockSize]), blockSize});
        mFilled = 0;
    }
    char* const bytes = mBlocks[mBlock].bytes.get() + mFilled;
    mFilled += size;
    return bytes;
}

char* ItemStore::copy(std::string_view text, size_t room) {
    char* const bytes = place(room + 1);
    std::copy(text.begin(), text.end(), bytes);
    bytes[text.size()] = '\0';
    return bytes;
}

// The place of the item of these names in the index, or the free one where it belongs.
size_t ItemStore::slotOf(uint32_t hash, std::string_view section, std::string_view key) const {
    const size_t mask = mIndex.size() - 1;
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Item item = mIndex[slot];
        if (item == kNone ||
            (mItems[item].hash == hash && keyOf(item) == key && sectionOf(item) == section)) {
            return slot;
        }
    }
}

void ItemStore::growIndex() {
    mIndex.assign(std::max(kFirstIndex, mIndex.size() * 2), kNone);
    const size_t mask = mIndex.size() - 1;
    for (Item item = 0; item < mItems.size(); ++item) {
        size_t slot = mItems[item].hash & mask;
        while (mIndex[slot] != kNone) {
            slot = (slot + 1) & mask;
        }
        mIndex[slot] = item;
    }
}

void ItemStore::putInOrder() const {
    std::vector<const SectionEntry*> sections;
    sections.reserve(mSections.size());
    for (const SectionEntry& section : mSections) {
        sections.push_back(&section);
    }
    std::sort(sections.begin(), sections.end(),
              [](const auto* a, const auto* b) { return ConfigKey::CompareStr(a->name, b->name); });
    mOrder.clear();
    mOrder.reserve(mItems.size());
    for (const SectionEntry* section : sections) {
        appendInOrder(*section, mOrder);
    }
    mIsOrdered = true;
}

void ItemStore::appendInOrder(const SectionEntry& section, std::vector<Item>& items) const {
    struct Place {
        uint64_t order;
        Item item;
    };
    std::vector<Place> places;
    for (Item item = section.first; item != kNone; item = mItems[item].next) {
        places.push_back({orderOf(keyOf(item)), item});
    }
    std::sort(places.begin(), places.end(), [this](const Place& a, const Place& b) {
        return a.order != b.order ? a.order < b.order
                                  : ConfigKey::CompareStr(keyOf(a.item), keyOf(b.item));
    });
    for (const Place& place : places) {
        items.push_back(place.item);
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

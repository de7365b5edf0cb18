#include "common/ItemStore.h"

#include <android/log.h>
#include <endian.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kFirstBlock = size_t{4} * 1024;
constexpr size_t kLargestBlock = size_t{256} * 1024;
constexpr size_t kFirstIndex = 32;
// Behind the last text of a block, for what reads a word at a time.
constexpr size_t kSlack = sizeof(uint64_t);
constexpr size_t kUsualLine = 40;
constexpr size_t kMostExpected = size_t{4} * 1024 * 1024;

template <typename Word>
uint64_t wordAt(const char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

uint64_t mix(uint64_t hash, uint64_t word) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
    hash = (hash ^ word) * kOdd;
    return hash ^ (hash >> 29);
}

// Of names of a dozen bytes, which is what std::hash is slow for. Their last bytes are read by a
// word that may overlap the one before.
uint64_t hashOf(std::string_view text, uint64_t seed) {
    const char* const bytes = text.data();
    const size_t size = text.size();
    uint64_t hash = mix(seed, size);
    if (size >= 8) {
        for (size_t at = 0; at + 8 < size; at += 8) {
            hash = mix(hash, wordAt<uint64_t>(bytes + at));
        }
        return mix(hash, wordAt<uint64_t>(bytes + size - 8));
    }
    if (size >= 4) {
        return mix(hash, wordAt<uint32_t>(bytes) << 32 | wordAt<uint32_t>(bytes + size - 4));
    }
    for (const char c : text) {
        hash = mix(hash, static_cast<uint8_t>(c));
    }
    return hash;
}

uint32_t shortHashOf(uint64_t sectionHash, std::string_view key) {
    return static_cast<uint32_t>(hashOf(key, sectionHash) >> 32);
}

void put(char* place, std::string_view text) {
    std::copy(text.begin(), text.end(), place);
    place[text.size()] = '\0';
}

// For how long a value there is room.
uint32_t roomAt(const char* texts) {
    uint32_t room = 0;
    std::memcpy(&room, texts - sizeof room, sizeof room);
    return room;
}

// Whether an index has too few free places to find one soon.
bool isFull(size_t items, size_t slots) {
    return items * 4 >= slots * 3;
}

// Orders most texts as CompareStr does without looking at them: their length, then how they begin.
// Reads eight bytes, which have to be there.
uint64_t orderOf(std::string_view text) {
    constexpr size_t kBytes = 6;
    uint64_t start = be64toh(wordAt<uint64_t>(text.data()));
    if (text.size() < kBytes) {
        start &= ~(UINT64_MAX >> (8 * text.size()));
    }
    return uint64_t{std::min<size_t>(text.size(), UINT16_MAX)} << 48 | start >> 16;
}

}  // namespace

void ItemStore::clear() {
    mItems.clear();
    mSections.clear();
    mSectionsByName.clear();
    std::fill(mIndex.begin(), mIndex.end(), Slot{0, kNone});
    mBlock = 0;
    mFilled = 0;
    mOrder.clear();
    mIsOrdered = true;
}

void ItemStore::expect(size_t bytes) {
    const size_t items = mItems.size() + std::min(bytes, kMostExpected) / kUsualLine;
    mItems.reserve(items);
    size_t slots = std::max(kFirstIndex, mIndex.size());
    while (isFull(items, slots)) {
        slots *= 2;
    }
    if (slots != mIndex.size()) {
        growIndex(slots);
    }
}

ItemStore::Section ItemStore::section(std::string_view name) {
    const auto known = mSectionsByName.find(name);
    if (known != mSectionsByName.end()) {
        return known->second;
    }
    const auto section = static_cast<Section>(mSections.size());
    char* const namePlace = place(name.size() + 1);
    put(namePlace, name);
    const std::string_view kept(namePlace, name.size());
    mSections.push_back({kept, hashOf(name, 0), kNone, kNone});
    mSectionsByName.emplace(kept, section);
    return section;
}

ItemStore::Inserted ItemStore::insert(Section section, std::string_view key,
                                      std::string_view value) {
    if (isFull(mItems.size(), mIndex.size())) {
        growIndex(std::max(kFirstIndex, mIndex.size() * 2));
    }
    SectionEntry& owner = mSections[section];
    const uint32_t hash = shortHashOf(owner.hash, key);
    const size_t slot = slotOf(hash, owner.name, key);
    if (mIndex[slot].item != kNone) {
        return {mIndex[slot].item, false};
    }
    const auto item = static_cast<Item>(mItems.size());
    char* const texts = placeTexts(key, value.size());
    put(texts + key.size() + 1, value);
    mItems.push_back({texts, static_cast<uint32_t>(key.size()), static_cast<uint32_t>(value.size()),
                      section, kNone});
    (owner.first == kNone ? owner.first : mItems[owner.last].next) = item;
    owner.last = item;
    mIndex[slot] = {hash, item};
    mIsOrdered = false;
    return {item, true};
}

void ItemStore::replace(Item item, std::string_view value) {
    ItemEntry& entry = mItems[item];
    if (value.size() > roomAt(entry.texts)) {
        // Twice what is needed: values that go on growing take no more than the last one does.
        entry.texts = placeTexts(keyOf(item), value.size() * 2);
    }
    put(entry.texts + entry.keySize + 1, value);
    entry.valueSize = static_cast<uint32_t>(value.size());
}

ItemStore::Item ItemStore::find(std::string_view section, std::string_view key) const {
    if (mItems.empty()) {
        return kNone;
    }
    return mIndex[slotOf(shortHashOf(hashOf(section, 0), key), section, key)].item;
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
        std::vector<Place> places;
        appendInOrder(mSections[known->second], places, items);
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
        mBlocks.push_back({std::unique_ptr<char[]>(new char[blockSize + kSlack]), blockSize});
        mFilled = 0;
    }
    char* const bytes = mBlocks[mBlock].bytes.get() + mFilled;
    mFilled += size;
    return bytes;
}

// A place for a key and a value, with the key in it.
char* ItemStore::placeTexts(std::string_view key, size_t valueRoom) {
    const auto room = static_cast<uint32_t>(valueRoom);
    char* const texts = place(sizeof room + key.size() + valueRoom + 2) + sizeof room;
    std::memcpy(texts - sizeof room, &room, sizeof room);
    put(texts, key);
    return texts;
}

// The place of the item of these names in the index, or the free one where it belongs.
size_t ItemStore::slotOf(uint32_t hash, std::string_view section, std::string_view key) const {
    const size_t mask = mIndex.size() - 1;
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Item item = mIndex[slot].item;
        if (item == kNone ||
            (mIndex[slot].hash == hash && keyOf(item) == key && sectionOf(item) == section)) {
            return slot;
        }
    }
}

void ItemStore::growIndex(size_t slots) {
    const std::vector<Slot> former = std::move(mIndex);
    mIndex.assign(slots, Slot{0, kNone});
    const size_t mask = mIndex.size() - 1;
    for (const Slot& moved : former) {
        if (moved.item == kNone) {
            continue;
        }
        size_t slot = moved.hash & mask;
        while (mIndex[slot].item != kNone) {
            slot = (slot + 1) & mask;
        }
        mIndex[slot] = moved;
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
    std::vector<Place> places;
    for (const SectionEntry* section : sections) {
        appendInOrder(*section, places, mOrder);
    }
    mIsOrdered = true;
}

void ItemStore::appendInOrder(const SectionEntry& section, std::vector<Place>& places,
                              std::vector<Item>& items) const {
    places.clear();
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

#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

#include "common/HashIndex.h"
#include "common/TextArena.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Configuration items: each has a section, a key in it and a value, and is found by the two names.
 *
 * A walk goes through them in the order of ConfigKey, whatever order they came in. Adding an item
 * and finding one take a time that does not depend on how many there are; the order is made by the
 * first walk after an item was added.
 *
 * Holds copies of all texts, each with a NUL behind it, so that a view's data() is a C string.
 * Views are good until the item's value is replaced or the store is cleared or goes. Not
 * thread-safe: its owner has a lock.
 */
class ItemStore {
  public:
    /** Number of a section of this store, until it is cleared. */
    using Section = uint32_t;
    /** Number of an item of this store, until it is cleared. */
    using Item = uint32_t;
    static constexpr Item kNone = HashIndex::kNone;

    ItemStore() = default;
    /** What was moved from may only be assigned to, or go. */
    ItemStore(ItemStore&&) noexcept = default;
    ItemStore& operator=(ItemStore&&) noexcept = default;

    size_t size() const { return mItems.size(); }
    bool empty() const { return mItems.empty(); }

    /** Drops all items; keeps the memory for the next ones. */
    void clear();

    /** Makes room for the items of a file of so many bytes, as such files usually are. */
    void expect(size_t bytes);

    /** The section of that name, which is new when no item has it. */
    Section section(std::string_view name);

    /** What insert did. */
    struct Inserted {
        Item item;
        bool isNew;
    };

    /** Adds an item. One that the section has already stays as it is. */
    Inserted insert(Section section, std::string_view key, std::string_view value);

    /** Gives an item another value, in the same place where it fits. */
    void replace(Item item, std::string_view value);

    /** The item of these names, or kNone. */
    Item find(std::string_view section, std::string_view key) const;

    std::string_view sectionOf(Item item) const { return mSections[mItems[item].section].name; }
    std::string_view keyOf(Item item) const { return {mItems[item].texts, mItems[item].keySize}; }
    std::string_view valueOf(Item item) const {
        const ItemEntry& entry = mItems[item];
        return {entry.texts + entry.keySize + 1, entry.valueSize};
    }

    /** All items, in order. */
    const std::vector<Item>& inOrder() const;

    /** The items of one section, in order. */
    std::vector<Item> itemsOf(std::string_view section) const;

    /** Logs every item, in order: a tabulator, then "<section>:<key>=<value>". */
    void log(const char* tag) const;

    /** Writes every item, in order: the indent, then "<section>:<key>=<value>" as a line. */
    void write(std::ostream& out, std::string_view indent) const;

  private:
    struct SectionEntry {
        std::string_view name;
        uint64_t hash;
        Item first;
        Item last;
        uint32_t size;  // items
    };
    struct ItemEntry {
        char* texts;  // the room for the value in four bytes; then, here, the key and the value
        uint32_t keySize;
        uint32_t valueSize;
        Section section;
        Item next;  // of the section
    };
    struct Place;  // of a text in an order
    char* placeTexts(std::string_view key, size_t valueRoom);
    void putInOrder() const;
    void putInOrder(const SectionEntry& section, std::vector<Place>& places, Item* items) const;

    std::vector<ItemEntry> mItems;
    std::vector<SectionEntry> mSections;
    HashIndex mItemsByName;
    HashIndex mSectionsByName;
    TextArena mTexts;
    mutable std::vector<Item> mOrder;
    mutable bool mIsOrdered = true;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

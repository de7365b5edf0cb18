#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string_view>
#include <vector>

#include "common/HashIndex.h"
#include "common/TextArena.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

struct NumberedText;

/**
 * Stores configuration items. An item has a section, a key in that section, and a value; section
 * and key identify it.
 *
 * A walk visits the items in the order of ConfigKey, regardless of the order of insertion.
 * Inserting and finding take constant time. The first walk after an insertion sorts the items.
 *
 * The store copies all texts and ends each with a NUL, so that data() of a returned view is a C
 * string. A view is valid until the item's value is replaced or the store is cleared or destroyed.
 * Not thread-safe: the owner has a lock.
 */
class ItemStore {
  public:
    /** Number of a section; valid until the store is cleared. */
    using Section = uint32_t;
    /** Number of an item; valid until the store is cleared. */
    using Item = uint32_t;
    /** The number that no item has. */
    static constexpr Item kNone = HashIndex::kNone;

    ItemStore() = default;
    /** A moved-from store may only be assigned to or destroyed. */
    ItemStore(ItemStore&&) noexcept = default;
    ItemStore& operator=(ItemStore&&) noexcept = default;

    /** The number of items. */
    size_t size() const { return mItems.size(); }
    bool empty() const { return mItems.empty(); }

    /** Removes all items; keeps the memory for later ones. */
    void clear();

    /** Reserves memory for the items that a file of `bytes` bytes usually has. */
    void expect(size_t bytes);

    /** Returns the section of that name; adds the section if it is missing. */
    Section section(std::string_view name);

    /** The result of insert(). */
    struct Inserted {
        Item item;   // the added item, or the one that already has the names
        bool isNew;  // the item was added
    };

    /** Adds an item. An existing item of the same names keeps its value. */
    Inserted insert(Section section, std::string_view key, std::string_view value);

    /** The bytes of a text that insertReadable() reads, even of a shorter one. */
    static constexpr size_t kReadable = TextArena::kSlack;

    /**
     * As insert(), but faster. The first kReadable bytes of both texts must be readable, even if a
     * text is shorter; LineReader and TextArena see to that.
     */
    Inserted insertReadable(Section section, std::string_view key, std::string_view value);

    /** Replaces the value of an item, in place if the new one fits. */
    void replace(Item item, std::string_view value);

    /**
     * Keeps the value of an item, but moves it if necessary, so that the next replace() by a value
     * of at most `size` bytes allocates nothing. A caller that does this for several items first
     * replaces all of them or, if memory runs out, none.
     */
    void makeRoom(Item item, size_t size);

    /** Returns the item of these names, or kNone. */
    Item find(std::string_view section, std::string_view key) const;

    /** The name of a section. */
    std::string_view nameOf(Section section) const { return mSections[section].name; }

    /** The names and the value of an item. */
    std::string_view sectionOf(Item item) const { return mSections[mItems[item].section].name; }
    std::string_view keyOf(Item item) const {
        const char* const key = mItems[item].texts;
        return {key, numberBefore(key)};
    }
    std::string_view valueOf(Item item) const {
        const std::string_view key = keyOf(item);
        return {key.data() + key.size() + 1, mItems[item].valueSize};
    }

    /** Returns all items in order. */
    const std::vector<Item>& inOrder() const;

    /**
     * Returns the items of one section in order. Looks at all items from the section's first one
     * to its last one; usually these are neighbours.
     */
    std::vector<Item> itemsOf(std::string_view section) const;

    /** Logs every item in order: a tab, then "<section>:<key>=<value>". */
    void log(const char* tag) const;

    /** Writes a line for every item in order: the indent, then "<section>:<key>=<value>". */
    void write(std::ostream& out, std::string_view indent) const;

  private:
    struct SectionEntry {
        std::string_view name;
        uint64_t hash;
        uint32_t size;  // items
        Item first;
    };
    // A set has thousands of these in memory for as long as the process runs: what is rarely needed
    // is stored beside the texts or not at all.
    struct ItemEntry {
        char* texts;  // the key, then the value; the four bytes before have the key's size
        uint32_t valueSize : 31;
        uint32_t isRoomy : 1;  // the value's capacity is before the key's size
        Section section;
    };
    static_assert(sizeof(ItemEntry) <= 2 * sizeof(uint64_t));
    static uint32_t numberBefore(const char* place) {
        uint32_t number = 0;
        std::memcpy(&number, place - sizeof number, sizeof number);
        return number;
    }
    template <typename Put>
    Inserted insertBy(const Put& putText, Section section, std::string_view key,
                      std::string_view value);
    static bool fits(const ItemEntry& entry, size_t size);
    void move(ItemEntry& entry, size_t size);
    void putInOrder() const;
    void sortByKeys(Item* items, size_t count, std::vector<NumberedText>& keys) const;

    std::vector<ItemEntry> mItems;
    std::vector<SectionEntry> mSections;
    HashIndex mItemsByName;
    HashIndex mSectionsByName;
    TextArena mTexts;
    mutable std::vector<Item> mOrder;
    mutable bool mIsOrdered = true;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

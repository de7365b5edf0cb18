#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Finds numbered entries by the hash of their name. A hash table with open addressing in a single
 * allocation. The entries and their names belong to the caller. The upper bits of the hashes should
 * differ most. Not thread-safe.
 */
class HashIndex {
  public:
    /** The number that no entry has. */
    static constexpr uint32_t kNone = UINT32_MAX;

    /** Removes all entries; keeps the memory for later ones. */
    void clear() {
        mSlots.assign(mSlots.size(), Slot{0, kNone});
        mSize = 0;
    }

    /** Reserves memory for `size` entries. */
    void expect(size_t size) {
        size_t slots = mSlots.size();
        while (isFull(size, slots)) {
            slots = slots == 0 ? kFirstSlots : slots * 2;
        }
        if (slots != mSlots.size()) {
            grow(slots);
        }
    }

    /** Returns the number with that hash for which `isIt(number)` is true, or kNone. */
    template <typename IsIt>
    uint32_t find(uint32_t hash, const IsIt& isIt) const {
        return mSlots.empty() ? kNone : mSlots[slotOf(hash, isIt)].number;
    }

    /**
     * As find(), but returns a reference. If it refers to kNone, the caller assigns the number of
     * the new entry. Valid until the next call.
     */
    template <typename IsIt>
    uint32_t& findOrAdd(uint32_t hash, const IsIt& isIt) {
        if (isFull(mSize, mSlots.size())) {
            expect(mSize + 1);
        }
        Slot& slot = mSlots[slotOf(hash, isIt)];
        if (slot.number == kNone) {
            slot.hash = hash;
            ++mSize;
        }
        return slot.number;
    }

  private:
    struct Slot {
        uint32_t hash;
        uint32_t number;
    };
    static constexpr size_t kFirstSlots = 32;  // always a power of two

    // Whether too few slots are free for short searches.
    static bool isFull(size_t size, size_t slots) { return size * 4 >= slots * 3; }

    // The slot of the entry, or the free slot where it belongs.
    template <typename IsIt>
    size_t slotOf(uint32_t hash, const IsIt& isIt) const {
        const size_t mask = mSlots.size() - 1;
        size_t slot = hash >> mShift;
        while (mSlots[slot].number != kNone &&
               (mSlots[slot].hash != hash || !isIt(mSlots[slot].number))) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    void grow(size_t slots) {
        const std::vector<Slot> former =
                std::exchange(mSlots, std::vector<Slot>(slots, Slot{0, kNone}));
        mShift = static_cast<uint32_t>(__builtin_clzll(slots)) - 31;
        for (const Slot& moved : former) {
            if (moved.number != kNone) {
                mSlots[slotOf(moved.hash, [](uint32_t) { return false; })] = moved;
            }
        }
    }

    std::vector<Slot> mSlots;
    uint32_t mShift = 0;  // hash >> mShift is the slot where a search begins
    uint32_t mSize = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

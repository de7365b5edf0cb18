#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Allocates memory for many small texts from a few growing blocks. Single texts are never freed;
 * clear() frees all of them at once and keeps the blocks for later texts.
 *
 * Allocated memory does not move, not even when the arena itself is moved. A moved-from arena may
 * only be assigned to or destroyed. Not thread-safe.
 */
class TextArena {
  public:
    /**
     * The bytes after the end of each text that may be read, but not used. After the last text
     * they may also be written, until the next call.
     */
    static constexpr size_t kSlack = 32;

    /**
     * Returns `size` uninitialised bytes, valid until clear() or the end of the arena. Throws
     * std::bad_alloc, which leaves everything allocated so far as it is.
     */
    char* allocate(size_t size) {
        if (size >= mLeft) {  // "=": an empty text needs a block, too, for its slack
            takeBlock(size);
        }
        mLeft -= size;
        return std::exchange(mFree, mFree + size);
    }

    /** Frees all texts for reuse. */
    void clear() {
        mBlocksUsed = 0;
        mLeft = 0;
    }

  private:
    struct Block {
        std::unique_ptr<char[]> bytes;
        size_t size;
    };

    void takeBlock(size_t size);

    std::vector<Block> mBlocks;
    size_t mBlocksUsed = 0;
    char* mFree = nullptr;  // the rest of the last used block
    size_t mLeft = 0;       // the size of that rest
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "common/TextArena.h"

#include <algorithm>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kFirstBlock = 1024;
constexpr size_t kLargestBlock = size_t{256} * 1024;  // for more than one text

}  // namespace

// Moves on to the next block of at least `size` bytes.
void TextArena::takeBlock(size_t size) {
    while (mBlocksUsed < mBlocks.size() && mBlocks[mBlocksUsed].size < size) {
        ++mBlocksUsed;
    }
    if (mBlocksUsed == mBlocks.size()) {
        const size_t usual = mBlocks.empty() ? kFirstBlock : mBlocks.back().size * 2;
        const size_t blockSize = std::max(size, std::min(usual, kLargestBlock));
        mBlocks.push_back({std::unique_ptr<char[]>(new char[blockSize + kSlack]), blockSize});
    }
    mFree = mBlocks[mBlocksUsed].bytes.get();
    mLeft = mBlocks[mBlocksUsed].size;
    ++mBlocksUsed;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

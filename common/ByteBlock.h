#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * 64 bytes of a text, and where symbols stand among them. A line usually fits, so that what it
 * consists of is found without a loop:
 *
 *     const ByteBlock block(line.data());
 *     const uint64_t comments = block.where('#');  // bit 0 is the first byte
 *
 * The compiler makes vector instructions of it.
 */
class ByteBlock {
  public:
    static constexpr size_t kBytes = 64;

    /** @param text  64 readable bytes, which must outlive the object */
    explicit ByteBlock(const char* text) : mText(text) {}

    /** Returns a bit for each byte: set if the byte is the symbol. */
    uint64_t where(char symbol) const {
        uint64_t bits = 0;
        for (size_t at = 0; at < kBytes; at += sizeof(Part)) {
            Part part;
            std::memcpy(&part, mText + at, sizeof part);
            bits |= uint64_t{bitsOf(part == symbol)} << at;
        }
        return bits;
    }

    /** The bits of the first `count` bytes; all bits for a larger count than there are. */
    static constexpr uint64_t before(size_t count) {
        return count < kBytes ? (uint64_t{1} << count) - 1 : UINT64_MAX;
    }
    /** All bits below the lowest set bit; all bits for 0. */
    static constexpr uint64_t beforeFirst(uint64_t bits) { return (bits & (0 - bits)) - 1; }
    /** All bits from the lowest to the highest set bit; 0 for 0. */
    static uint64_t filled(uint64_t bits) {
        return ~beforeFirst(bits) & (UINT64_MAX >> __builtin_clzll(bits | 1));
    }
    /** The index of the lowest set bit; `bits` must not be 0. */
    static size_t firstOf(uint64_t bits) { return static_cast<size_t>(__builtin_ctzll(bits)); }
    /** The index after the highest set bit; `bits` must not be 0. */
    static size_t endOf(uint64_t bits) {
        return kBytes - static_cast<size_t>(__builtin_clzll(bits));
    }

  private:
    using Part [[gnu::vector_size(16)]] = char;
    static constexpr char kLastBit = static_cast<char>(128);

    // A bit for each byte, of which each is 0 or 255.
    template <typename Equal>
    static uint32_t bitsOf(const Equal& equal) {
#ifdef __SSE2__
        return static_cast<uint32_t>(__builtin_ia32_pmovmskb128(reinterpret_cast<Part>(equal)));
#else
        // Each byte keeps another bit. The multiplication adds the bytes of a word, in any order.
        constexpr Part kBits = {1, 2, 4, 8, 16, 32, 64, kLastBit, 1, 2, 4, 8, 16, 32, 64, kLastBit};
        const Part kept = reinterpret_cast<Part>(equal) & kBits;
        uint64_t words[2];
        std::memcpy(words, &kept, sizeof words);
        constexpr uint64_t kAddBytes = 0x0101010101010101;
        const uint64_t low = (words[0] * kAddBytes) >> 56;
        const uint64_t high = (words[1] * kAddBytes) >> 56;
        return static_cast<uint32_t>(low | high << 8);
#endif
    }

    const char* mText;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What the hashes of this process begin with: a random number that no file can know. */
extern uint64_t gHashStart;

/**
 * Hash of a short text, for tables in memory: it differs from process to process, so that no file
 * can hold texts that were chosen to have one hash. Made for names of about twelve bytes, for which
 * std::hash is slow. Inlined everywhere: a call costs a twentieth of the time that reading a line
 * takes.
 *
 * @param seed  0, or the hash of a text that precedes this one
 */
[[gnu::always_inline]] inline uint64_t hashText(std::string_view text, uint64_t seed) {
    const auto mix = [](uint64_t hash, uint64_t word) {
        constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
        hash = (hash ^ word) * kOdd;
        return hash ^ (hash >> 29);
    };
    const auto load = [](auto word, const char* from) -> uint64_t {
        std::memcpy(&word, from, sizeof word);
        return word;
    };
    const char* const bytes = text.data();
    const size_t size = text.size();
    uint64_t hash = mix(gHashStart, size);
    uint64_t last = 0;
    // The last word may overlap the one before it, which is faster than single bytes.
    if (size >= 8) {
        for (size_t at = 0; at + 8 < size; at += 8) {
            hash = mix(hash, load(uint64_t{}, bytes + at));
        }
        last = load(uint64_t{}, bytes + size - 8);
    } else if (size >= 4) {
        last = load(uint32_t{}, bytes) << 32 | load(uint32_t{}, bytes + size - 4);
    } else {
        for (const char c : text) {
            last = last << 8 | static_cast<uint8_t>(c);
        }
    }
    // The seed comes last, so that a processor computes both hashes at the same time.
    return mix(hash ^ seed, last);
}

/** The upper half of a hash, of which the uppermost bits depend on all bytes of the text. */
inline uint32_t shortHash(uint64_t hash) {
    return static_cast<uint32_t>(hash >> 32);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

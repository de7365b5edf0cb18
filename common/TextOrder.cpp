#include "common/TextOrder.h"

#include <algorithm>
#include <cstring>

#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kFew = 16;

using Bytes [[gnu::vector_size(16)]] = char;
using Lanes [[gnu::vector_size(16)]] = int32_t;
constexpr size_t kLanes = sizeof(Lanes) / sizeof(int32_t);

template <typename Value>
Value load(const void* from) {
    Value value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

bool isBefore(const NumberedText& a, const NumberedText& b) {
    return ConfigKey::CompareStr({a.text, a.size}, {b.text, b.size});
}

// The number of bytes with which all texts begin, at most 16. It is larger than the size of a text
// only if no other has that size, because the texts differ.
size_t commonStart(const NumberedText* texts, size_t count) {
    const auto first = load<Bytes>(texts[0].text);
    Bytes differences = {};
    for (size_t i = 1; i < count; ++i) {
        differences |= load<Bytes>(texts[i].text) ^ first;
    }
    uint64_t words[2];
    std::memcpy(words, &differences, sizeof words);
    size_t common = 0;
    for (const uint64_t word : words) {
        if (word != 0) {
            constexpr bool kIsLittle = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
            const int bits = kIsLittle ? __builtin_ctzll(word) : __builtin_clzll(word);
            return common + static_cast<size_t>(bits) / 8;
        }
        common += sizeof word;
    }
    return common;
}

// The first bytes of a text as a number that orders as they do. Bytes after the end of the text are
// in it, too. They never decide: texts of one size differ before their end.
template <typename Number>
Number startOf(const char* text) {
    Number start = 0;
    for (size_t i = 0; i < sizeof start; ++i) {
        start = static_cast<Number>(start << 8 | static_cast<uint8_t>(text[i]));
    }
    return start;  // one load and a swap
}

// Most texts differ in their sort keys: in the size, or in the three bytes after those that all
// have. Long texts have one sort key.
int32_t sortKey(const NumberedText& text, size_t common) {
    constexpr uint32_t kLong = INT8_MAX;
    return text.size < kLong ? static_cast<int32_t>(text.size << 24 |
                                                    startOf<uint32_t>(text.text + common) >> 8)
                             : static_cast<int32_t>(kLong << 24);
}

// Gives each text its rank, the number of texts with lower sort keys. It compares each text with
// all others, four at a time, which is faster than fewer comparisons, because it needs no branch.
void rank(const NumberedText* texts, size_t count, int32_t (&ranks)[kFew]) {
    const size_t common = commonStart(texts, count);
    int32_t keys[kFew];
    std::fill(std::begin(keys), std::end(keys), INT32_MAX);
    for (size_t i = 0; i < count; ++i) {
        keys[i] = sortKey(texts[i], common);
    }
    constexpr size_t kVectors = kFew / kLanes;
    Lanes keysOf[kVectors];
    Lanes ranksOf[kVectors] = {};
    std::memcpy(keysOf, keys, sizeof keys);
    for (size_t i = 0; i < count; ++i) {
        for (size_t vector = 0; vector < kVectors; ++vector) {
            ranksOf[vector] -= keysOf[vector] > keys[i];  // true is -1
        }
    }
    std::memcpy(ranks, ranksOf, sizeof ranks);
}

void sortFew(NumberedText* texts, size_t count) {
    int32_t ranks[kFew];
    rank(texts, count, ranks);
    NumberedText sorted[kFew];
    uint8_t placed[kFew] = {};  // how many texts of a rank are in their places
    for (size_t i = 0; i < count; ++i) {
        const auto begin = static_cast<size_t>(ranks[i]);
        size_t place = begin + placed[begin]++;
        for (; place > begin && isBefore(texts[i], sorted[place - 1]); --place) {
            sorted[place] = sorted[place - 1];
        }
        sorted[place] = texts[i];
    }
    std::copy(sorted, sorted + count, texts);
}

// A text and a sort key of 16 bytes: the size, then the bytes after those that all texts have. Long
// texts have one sort key.
struct Place {
    uint64_t high;
    uint64_t low;
    NumberedText text;

    Place(const NumberedText& of, size_t common) : high(UINT64_MAX), low(0), text(of) {
        constexpr size_t kHighBytes = sizeof high - 1;
        if (of.size < UINT8_MAX) {
            high = uint64_t{of.size} << 56 | startOf<uint64_t>(of.text + common) >> 8;
            low = startOf<uint64_t>(of.text + common + kHighBytes);
        }
    }

    bool operator<(const Place& other) const {
        if (high != other.high) {
            return high < other.high;
        }
        return low != other.low ? low < other.low : isBefore(text, other.text);
    }
};

void sortMany(std::vector<NumberedText>& texts) {
    const size_t common = commonStart(texts.data(), texts.size());
    std::vector<Place> places;
    places.reserve(texts.size());
    for (const NumberedText& text : texts) {
        places.emplace_back(text, common);
    }
    std::sort(places.begin(), places.end());
    std::transform(places.begin(), places.end(), texts.begin(),
                   [](const Place& place) { return place.text; });
}

}  // namespace

void sortTexts(std::vector<NumberedText>& texts) {
    if (texts.size() > kFew) {
        sortMany(texts);
    } else if (texts.size() > 1) {
        sortFew(texts.data(), texts.size());
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

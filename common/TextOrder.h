#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A text, and the number of what it names. */
struct NumberedText {
    const char* text;
    uint32_t size;
    uint32_t number;

    NumberedText() = default;
    NumberedText(std::string_view of, uint32_t numberOfIt)
        : text(of.data()), size(static_cast<uint32_t>(of.size())), number(numberOfIt) {}
};

/** The bytes of each text that sortTexts() may read, even of a shorter text. */
constexpr size_t kReadBySorting = 32;

/**
 * Sorts texts as ConfigKey::CompareStr orders them: by length, then by their bytes. Made for the
 * keys of a section and for the names of sections: sorts up to sixteen texts almost without
 * branches that a processor cannot predict. Throws std::bad_alloc.
 *
 * @param texts  must differ from each other
 */
void sortTexts(std::vector<NumberedText>& texts);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

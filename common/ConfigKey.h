#pragma once

#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Identifies one configuration item: a section and a key in it.
 *
 * Its order is the order of every dump and walk: by category, then by key; texts compare by length
 * first (see CompareStr). Does not own the texts.
 */
struct ConfigKey {
    /**
     * Refers to the two texts, which must outlive the key.
     *
     * @param categoryText  the section name as in the file, with its brackets: "[AUDIO]"
     * @param keyText       the item's key inside that section
     */
    constexpr ConfigKey(std::string_view categoryText, std::string_view keyText)
        : category(categoryText), key(keyText) {}

    /** Orders by category, then by key. Two keys are equal when neither is less than the other. */
    bool operator<(const ConfigKey& other) const;

    /**
     * Orders texts: a shorter one comes first; two of equal length compare by their bytes as
     * unsigned numbers. "[KEY]" comes before "[AUDIO]", and "Z" before "AA".
     *
     * @return true if a comes before b; false if they are equal
     */
    static bool CompareStr(std::string_view a, std::string_view b);

    std::string_view category;
    std::string_view key;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

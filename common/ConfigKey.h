#pragma once

#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Names one configuration item: a section and a key in it.
 *
 * Its order fixes the order of every dump and walk: categories decide before keys, and texts
 * compare by length first (see CompareStr). Refers to the texts of whoever asks: a store has copies
 * of its own. A plain value; safe to use from any thread.
 */
struct ConfigKey {
    /**
     * Refers to the two texts, which have to outlive it.
     *
     * @param categoryText  the section name as it stands in the file, brackets included: "[AUDIO]"
     * @param keyText       the item's key inside that section
     */
    constexpr ConfigKey(std::string_view categoryText, std::string_view keyText)
        : category(categoryText), key(keyText) {}

    /** Orders by category, then by key. Two keys are equal when neither is less than the other. */
    bool operator<(const ConfigKey& other) const;

    /**
     * The order of texts: a shorter one comes first; of two equally long ones the first byte that
     * differs decides, taken as unsigned. "[KEY]" thus comes before "[AUDIO]", and Z before AA.
     *
     * @return true when a comes before b; false when they are equal
     */
    static bool CompareStr(std::string_view a, std::string_view b);

    std::string_view category;
    std::string_view key;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

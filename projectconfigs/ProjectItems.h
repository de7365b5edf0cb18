#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/RowOf.h"
#include "projectconfigs/KnownItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * One getter of IMlkProjectConfigs that answers with an item of the project store.
 *
 * A selector, counted from 0, chooses among the sections or the keys. A method without a selector
 * has one section and one key.
 */
struct ProjectItemRow {
    const char* method;
    size_t first;                    // row of its first item in kKnownItems
    size_t sections;                 // how many sections it has
    size_t keys;                     // how many keys it has in each of them
    const char* otherKey = nullptr;  // key for every further selector; null: no answer
};

/** True if the item decides the answer of that method. */
constexpr bool isReadBy(const KnownItem& item, std::string_view method) {
    const std::string_view reader = item.readers[0];
    return reader.substr(0, reader.find(' ')) == method;
}

/**
 * The row of a getter. In a constant expression, as in kProjectItems, this does not compile for a
 * method without items or with items in the wrong order.
 */
constexpr ProjectItemRow itemsOf(const char* method, const char* otherKey = nullptr) {
    size_t first = 0;
    while (!isReadBy(kKnownItems[first], method)) {
        ++first;  // not beyond the table in a constant expression
    }
    size_t end = first;
    size_t sections = 0;
    for (; end < std::size(kKnownItems) && isReadBy(kKnownItems[end], method); ++end) {
        const bool isSameSection =
                end > first && kKnownItems[end].name.category == kKnownItems[end - 1].name.category;
        sections += isSameSection ? 0 : 1;
    }
    const size_t keys = (end - first) / sections;
    for (size_t row = first; row < end; ++row) {
        const size_t offset = row - first;
        if (kKnownItems[row].name.key != kKnownItems[first + offset % keys].name.key ||
            kKnownItems[row].name.category != kKnownItems[row - offset % keys].name.category) {
            std::abort();
        }
    }
    return {method, first, sections, keys, otherKey};
}

/** All such getters, in the order of the interface. */
inline constexpr ProjectItemRow kProjectItems[] = {
        itemsOf("getClientType"),    itemsOf("getProjectName"),
        itemsOf("getPanelName"),     itemsOf("getOverscanPath"),
        itemsOf("getSSCPath"),       itemsOf("getPQPath"),
        itemsOf("getEQPath"),        itemsOf("getAMPSelection"),
        itemsOf("getAMPAddr"),       itemsOf("getVolumeCurve"),
        itemsOf("getAQPath"),        itemsOf("getHDMIEdidPath", ""),
        itemsOf("getHDMIHdcpPath"),  itemsOf("getPowerOnMode"),
        itemsOf("getPowerLogoPath"), itemsOf("getBootAnimationPath"),
        itemsOf("getInputSource"),   itemsOf("getTunerType"),
        itemsOf("getDPVREnabled"),   itemsOf("getHBBTVEnabled"),
        itemsOf("getIRConfig"),      itemsOf("getRegionName"),
        itemsOf("getTunerConfig"),   itemsOf("getTvChannelDatabasePath"),
        itemsOf("getIRFilter"),
};

/** The index of a method's row. */
constexpr size_t projectItem(std::string_view method) {
    return rowOf(kProjectItems, method);
}

/** The item that two selectors choose; nothing if one of them is out of range. */
constexpr std::optional<ConfigKey> itemOf(const ProjectItemRow& row, uint32_t section,
                                          uint32_t key) {
    if (section >= row.sections) {
        return std::nullopt;
    }
    const size_t ofSection = row.first + section * row.keys;
    if (key < row.keys) {
        return kKnownItems[ofSection + key].name;
    }
    if (row.otherKey == nullptr) {
        return std::nullopt;
    }
    return ConfigKey(kKnownItems[ofSection].name.category, row.otherKey);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

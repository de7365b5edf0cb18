#include "tools/mlktree/Settings.h"

#include <algorithm>

#include "tools/mlktree/Patterns.h"

namespace mlk::tree {

const OwnKey* Settings::find(std::string_view section, std::string_view key) const {
    // A name without wildcards counts before patterns.
    const OwnKey* byPattern = nullptr;
    for (const OwnKey& own : keys) {
        if (own.section == section && own.key == key) {
            return &own;
        }
        if (byPattern == nullptr && fitsWildcards(own.section, section) &&
            fitsWildcards(own.key, key)) {
            byPattern = &own;
        }
    }
    return byPattern;
}

bool Settings::knowsSection(std::string_view section) const {
    return std::any_of(keys.begin(), keys.end(), [&](const OwnKey& own) {
        return own.section == section || fitsWildcards(own.section, section);
    });
}

std::string_view nameOf(OwnType type) {
    switch (type) {
        case OwnType::TEXT:
            return "text";
        case OwnType::PATH:
            return "path";
        case OwnType::BOOLEAN:
            return "boolean";
        case OwnType::INTEGER:
            return "integer";
        case OwnType::CHOICE:
            return "choice";
        case OwnType::PATTERN:
            return "pattern";
    }
    return "";
}

}  // namespace mlk::tree

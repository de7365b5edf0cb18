#include "tools/mlktree/answers/SnapshotJson.h"

#include "tools/common/Text.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

// More than any snapshot has. Deeper texts are refused before anything works through them.
constexpr size_t kMostDepth = 32;

bool isTooDeep(std::string_view text) {
    size_t depth = 0;
    bool isInText = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isInText) {
            i += c == '\\' ? 1 : 0;
            isInText = c != '"';
        } else if (c == '"') {
            isInText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kMostDepth) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            depth -= depth > 0 ? 1 : 0;
        }
    }
    return false;
}

}  // namespace

std::string Where::str() const {
    const std::string before = parent != nullptr ? parent->str() : "";
    if (member.empty()) {
        return parent != nullptr ? before + "[" + std::to_string(index) + "]" : "";
    }
    return before + (before.empty() ? "" : ".") + printable(member);
}

SnapshotJson::Json SnapshotJson::parse(std::string_view text) {
    if (isTooDeep(text)) {
        refuse("its values are nested too deeply");
    }
    std::string plain;
    mIsHidden = hideByteEscapes(text, &plain);
    try {
        return mIsHidden ? Json::parse(plain) : Json::parse(text);
    } catch (const Json::exception&) {
        refuse("it is no JSON");
    }
}

void SnapshotJson::refuse(const std::string& why) const {
    throw UsageError(printable(mName) + " is no snapshot of mlktree: " + why);
}

void SnapshotJson::refuse(const Where& where, const std::string& why) const {
    refuse((where.str().empty() ? "it" : where.str()) + " " + why);
}

const SnapshotJson::Json& SnapshotJson::object(const Json& json, const Where& where) const {
    if (!json.is_object()) {
        refuse(where, "is no object");
    }
    return json;
}

const SnapshotJson::Json& SnapshotJson::array(const Json& json, const Where& where) const {
    if (!json.is_array()) {
        refuse(where, "is no array");
    }
    return json;
}

const SnapshotJson::Json& SnapshotJson::member(const Json& json, std::string_view name,
                                               const Where& where) const {
    const auto found = object(json, where).find(std::string(name));
    if (found == json.end()) {
        refuse(where, "lacks \"" + std::string(name) + "\"");
    }
    return *found;
}

std::string SnapshotJson::restored(const std::string& text) const {
    return mIsHidden ? restoreBytes(text) : text;
}

std::string_view SnapshotJson::text(const Json& json, const Where& where) const {
    if (!json.is_string()) {
        refuse(where, "is no text");
    }
    return mLine.keep(restored(json.get_ref<const std::string&>()));
}

int64_t SnapshotJson::number(const Json& json, const Where& where, int64_t least,
                             int64_t most) const {
    const bool isHuge =
            json.is_number_unsigned() &&
            json.get<uint64_t>() > static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (!json.is_number_integer() || isHuge || json.get<int64_t>() < least ||
        json.get<int64_t>() > most) {
        refuse(where,
               "is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return json.get<int64_t>();
}

}  // namespace mlk::tree

#include "tools/mlkctl/Plain.h"

#include <nlohmann/json.hpp>

#include "tools/common/Text.h"

namespace mlk::ctl {

namespace {

using Json = nlohmann::ordered_json;

// A value that holds no others. `hidden` as hideByteEscapes says.
std::string plain(const Json& value, bool hidden) {
    if (!value.is_string()) {
        return value.dump();
    }
    const auto& text = value.get_ref<const std::string&>();
    return hidden ? restoreBytes(text) : text;
}

// An element of a list.
std::string lineOf(const Json& element, bool hidden) {
    if (!element.is_object()) {
        return plain(element, hidden);
    }
    const char* separator = element.contains("key") ? "=" : "\t";
    std::string line;
    for (const auto& field : element) {
        line += (&field == &element.front() ? "" : separator) + plain(field, hidden);
    }
    return line;
}

}  // namespace

std::optional<std::string> plainOf(std::string_view answer) {
    std::string text;
    const bool hidden = hideByteEscapes(answer, &text);
    const Json value = Json::parse(hidden ? std::string_view(text) : answer);
    if (value.is_array()) {
        std::optional<std::string> lines;
        for (const auto& element : value) {
            const std::string line = lineOf(element, hidden);
            lines = lines ? *lines + '\n' + line : line;
        }
        return lines;
    }
    if (!value.at("success").get<bool>() || value.at("value") == "") {
        return {};
    }
    return plain(value.at("value"), hidden);
}

}  // namespace mlk::ctl

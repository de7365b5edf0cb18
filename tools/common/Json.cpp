#include "tools/common/Json.h"

#include "tools/common/Text.h"

namespace mlk {

JsonObject& JsonObject::text(std::string_view name, std::string_view value) {
    return json(name, jsonString(value));
}

JsonObject& JsonObject::number(std::string_view name, int64_t value) {
    return json(name, std::to_string(value));
}

JsonObject& JsonObject::flag(std::string_view name, bool value) {
    return json(name, value ? "true" : "false");
}

JsonObject& JsonObject::json(std::string_view name, std::string_view value) {
    if (mText.size() > 1) {
        mText += ',';
    }
    appendJsonString(mText, name);
    mText += ':';
    mText += value;
    return *this;
}

std::string jsonArray(const std::vector<std::string>& values) {
    std::string out = "[";
    for (const std::string& value : values) {
        out += (out.size() > 1 ? "," : "") + value;
    }
    return out + "]";
}

std::string jsonLines(const std::vector<std::string>& values) {
    std::string out = "[";
    for (const std::string& value : values) {
        out += (out.size() > 1 ? ",\n" : "\n") + value;
    }
    return out + (values.empty() ? "]" : "\n]");
}

JsonLines::JsonLines(const JsonObject& head, std::string_view name, const TextSink& sink)
    : mSink(sink) {
    std::string text = head.str();
    text.back() = ',';  // the object goes on
    appendJsonString(text, name);
    mSink(text += ":[");
}

void JsonLines::add(std::string_view value) {
    mSink(mIsEmpty ? "\n" : ",\n");
    mSink(value);
    mIsEmpty = false;
}

void JsonLines::end() {
    mSink(mIsEmpty ? "]}\n" : "\n]}\n");
}

std::string jsonTexts(const std::vector<std::string>& texts) {
    std::vector<std::string> values;
    values.reserve(texts.size());
    for (const std::string& text : texts) {
        values.push_back(jsonString(text));
    }
    return jsonArray(values);
}

}  // namespace mlk

#define LOG_TAG "MlkProjectConfigs"

#include "regional/XmlFile.h"

#include <log/log.h>

#include <algorithm>
#include <string_view>

#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

// TinyXML-2 compares an attribute with all preceding ones of its element, and searches the rest of
// a text for the end of a character reference. Both take quadratic time; within these limits a file
// of the largest size loads in seconds.
constexpr size_t kMostAttributes = 256;
constexpr size_t kMostReferences = 4096;

// Moves `at` past the next occurrence of `mark`, or to the end of the text.
void skipPast(std::string_view text, size_t& at, std::string_view mark) {
    const size_t found = text.find(mark, at);
    at = found == std::string_view::npos ? text.size() : found + mark.size();
}

// Counts the attributes of the tag that begins at `at`, and moves `at` past it.
size_t attributesOfTag(std::string_view text, size_t& at) {
    size_t count = 0;
    while (at < text.size() && text[at] != '>') {
        const char symbol = text[at++];
        if (symbol == '"' || symbol == '\'') {
            skipPast(text, at, std::string_view(&symbol, 1));
            ++count;
        }
    }
    return count;
}

size_t mostAttributes(std::string_view text) {
    struct Skipped {
        std::string_view begin;
        std::string_view end;
    };
    constexpr Skipped kSkipped[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}};
    size_t most = 0;
    for (size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
        const auto* const skipped = std::find_if(
                std::begin(kSkipped), std::end(kSkipped),
                [&](const Skipped& s) { return text.compare(at, s.begin.size(), s.begin) == 0; });
        if (skipped != std::end(kSkipped)) {
            at += skipped->begin.size();
            skipPast(text, at, skipped->end);
        } else {
            most = std::max(most, attributesOfTag(text, at));
        }
    }
    return most;
}

size_t references(std::string_view text) {
    constexpr std::string_view kMark = "&#";
    size_t count = 0;
    for (size_t at = text.find(kMark); at != std::string_view::npos; at = text.find(kMark, at)) {
        at += kMark.size();
        ++count;
    }
    return count;
}

}  // namespace

XmlFile::XmlFile(const std::string& path) : mError(load(path)) {}

const char* XmlFile::error() const {
    return mError == tinyxml2::XML_SUCCESS ? nullptr : tinyxml2::XMLDocument::ErrorIDToName(mError);
}

const tinyxml2::XMLElement* XmlFile::first(const char* name) const {
    return mDocument.FirstChildElement(name);
}

tinyxml2::XMLError XmlFile::load(const std::string& path) {
    std::string text;
    switch (readTextFile(path, text)) {
        case ReadResult::MISSING:
            return tinyxml2::XML_ERROR_FILE_NOT_FOUND;
        case ReadResult::UNREADABLE:
            return tinyxml2::XML_ERROR_FILE_COULD_NOT_BE_OPENED;
        case ReadResult::DONE:
            break;
    }
    if (mostAttributes(text) > kMostAttributes || references(text) > kMostReferences) {
        ALOGE("%s: more than %zu attributes in an element or %zu character "
              "references in all",
              path.c_str(), kMostAttributes, kMostReferences);
        return tinyxml2::XML_ERROR_PARSING;
    }
    const tinyxml2::XMLError error = mDocument.Parse(text.data(), text.size());
    if (error != tinyxml2::XML_SUCCESS) {
        ALOGE("%s:%d: no well-formed XML", path.c_str(), mDocument.ErrorLineNum());
    }
    return error;
}

const char* textOfChild(const tinyxml2::XMLElement& parent, const char* name) {
    const tinyxml2::XMLElement* const child = parent.FirstChildElement(name);
    return child != nullptr ? child->GetText() : nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

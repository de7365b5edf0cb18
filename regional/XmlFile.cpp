#define LOG_TAG "MlkProjectConfigs"

#include "regional/XmlFile.h"

#include <log/log.h>

#include <algorithm>
#include <string_view>

#include "common/FileLimits.h"
#include "regional/TextFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

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
    constexpr Skipped kSkipped[] = {
            {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};
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

// What the XML reader expected where it gave up.
const char* expectationOf(tinyxml2::XMLError error) {
    switch (error) {
        case tinyxml2::XML_ERROR_PARSING:
            return "the file ends within an element that begins here";
        case tinyxml2::XML_ERROR_PARSING_ELEMENT:
            return "a tag is not closed by \">\"";
        case tinyxml2::XML_ERROR_PARSING_ATTRIBUTE:
            return "an attribute needs the form name=\"value\"";
        case tinyxml2::XML_ERROR_PARSING_TEXT:
            return "a text is not followed by a tag";
        case tinyxml2::XML_ERROR_PARSING_CDATA:
            return "a CDATA section is not closed by \"]]>\"";
        case tinyxml2::XML_ERROR_PARSING_COMMENT:
            return "a comment is not closed by \"-->\"";
        case tinyxml2::XML_ERROR_PARSING_DECLARATION:
            return "a declaration stands only at the top and ends with \"?>\"";
        case tinyxml2::XML_ERROR_PARSING_UNKNOWN:
            return "a \"<!\" is not closed by \">\"";
        case tinyxml2::XML_ERROR_EMPTY_DOCUMENT:
            return "the file has no element";
        case tinyxml2::XML_ERROR_MISMATCHED_ELEMENT:
            return "an element that begins here is not closed by a tag of its own name";
        case tinyxml2::XML_ELEMENT_DEPTH_EXCEEDED:
            return "elements are nested too deeply";
        default:
            return "the text does not follow the rules of XML";
    }
}

size_t countOf(std::string_view mark, std::string_view text) {
    size_t count = 0;
    for (size_t at = text.find(mark); at != std::string_view::npos; at = text.find(mark, at)) {
        at += mark.size();
        ++count;
    }
    return count;
}

// Looks at the tags only if there are enough quotes in all: most files have few.
bool hasTooManyAttributes(std::string_view text) {
    return countOf("\"", text) + countOf("'", text) > kMostAttributes &&
           mostAttributes(text) > kMostAttributes;
}

}  // namespace

XmlFile::XmlFile(const std::string& path, ReadObserver* observer)
    : mPath(path), mObserver(observer), mError(load()) {}

const char* XmlFile::error() const {
    return mError == tinyxml2::XML_SUCCESS ? nullptr : tinyxml2::XMLDocument::ErrorIDToName(mError);
}

const tinyxml2::XMLElement* XmlFile::first(const char* name) const {
    return mDocument.FirstChildElement(name);
}

tinyxml2::XMLError XmlFile::load() {
    std::string text;
    switch (readTextFile(mPath, text, mObserver)) {
        case ReadResult::MISSING:
            return tinyxml2::XML_ERROR_FILE_NOT_FOUND;
        case ReadResult::UNREADABLE:
            return tinyxml2::XML_ERROR_FILE_COULD_NOT_BE_OPENED;
        case ReadResult::DONE:
            break;
    }
    if (hasTooManyAttributes(text) || countOf("&#", text) > kMostReferences) {
        const std::string most = std::to_string(kMostAttributes) + " attributes in an element or " +
                                 std::to_string(kMostReferences) + " character references in all";
        ALOGE("%s: %s", mPath.c_str(), textOf(ProblemKind::COSTLY_XML, most).c_str());
        if (isObserved()) {
            mObserver->onProblem({mPath, 0, ProblemKind::COSTLY_XML, most});
        }
        return tinyxml2::XML_ERROR_PARSING;
    }
    const tinyxml2::XMLError error = mDocument.Parse(text.data(), text.size());
    if (error != tinyxml2::XML_SUCCESS) {
        const char* const expected = expectationOf(error);
        ALOGE("%s:%d: %s", mPath.c_str(), mDocument.ErrorLineNum(),
              textOf(ProblemKind::MALFORMED_XML, expected).c_str());
        if (isObserved()) {
            mObserver->onProblem({mPath, static_cast<size_t>(mDocument.ErrorLineNum()),
                                  ProblemKind::MALFORMED_XML, expected});
        }
    }
    return error;
}

void XmlFile::complain(const tinyxml2::XMLElement& element, ProblemKind kind) const {
    ALOGE("%s:%d: %s", mPath.c_str(), element.GetLineNum(), textOf(kind).c_str());
    tellProblem(element, kind);
}

void XmlFile::tellProblem(const tinyxml2::XMLElement& element, ProblemKind kind) const {
    if (isObserved()) {
        mObserver->onProblem({mPath, static_cast<size_t>(element.GetLineNum()), kind, {}});
    }
}

void XmlFile::tell(const tinyxml2::XMLElement& element, LineUse use, ReadLine read) const {
    if (!isObserved()) {
        return;
    }
    read.path = mPath;
    read.number = static_cast<size_t>(element.GetLineNum());
    read.column = 0;
    read.use = use;
    if (read.key.data() == nullptr) {
        read.key = element.Name();
    }
    mObserver->onLine(read);
}

void XmlFile::tellIgnored(const tinyxml2::XMLElement* first, const tinyxml2::XMLElement* end,
                          std::string_view owner) const {
    if (!isObserved()) {
        return;
    }
    for (; first != nullptr && first != end; first = first->NextSiblingElement()) {
        ReadLine read;
        read.owner = owner;
        tell(*first, LineUse::IGNORED, read);
    }
}

const char* textOfChild(const tinyxml2::XMLElement& parent, const char* name) {
    const tinyxml2::XMLElement* const child = parent.FirstChildElement(name);
    return child != nullptr ? child->GetText() : nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <tinyxml2.h>

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * An XML file, loaded completely. Entities are resolved; blanks and line breaks in texts are kept.
 * One thread at a time.
 *
 * A configured path may lead to any file. Besides those that readTextFile refuses, a file is
 * refused if it has so many attributes or character references that loading it would take long.
 */
class XmlFile {
  public:
    /** Loads the file; error() tells whether that succeeded. Logs where a file is malformed. */
    explicit XmlFile(const std::string& path);

    /** Returns TinyXML-2's name of the loading error; null if the file is loaded. */
    const char* error() const;

    /** Returns the first top-level element of this name; null if there is none. */
    const tinyxml2::XMLElement* first(const char* name) const;

  private:
    tinyxml2::XMLError load(const std::string& path);

    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
    const tinyxml2::XMLError mError;
};

/** Returns the text of the first child element of that name; null without a child or a text. */
const char* textOfChild(const tinyxml2::XMLElement& parent, const char* name);

/** Returns the text; an empty one for null. */
inline const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

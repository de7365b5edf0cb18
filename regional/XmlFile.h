#pragma once

#include <tinyxml2.h>

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * An XML file, loaded whole: entities are resolved, blanks and line breaks of texts are kept. One
 * thread at a time.
 *
 * What the configuration names is not trusted to be ours: beside what readTextFile refuses, a file
 * is refused that only its size in attributes or character references makes expensive to load.
 */
class XmlFile {
  public:
    /** Loads the file; error() tells whether that worked. The log says where a file is broken. */
    explicit XmlFile(const std::string& path);

    /** TinyXML-2's name of the loading error; null when the file is loaded. */
    const char* error() const;

    /** The first element at the top that has this name; null when there is none. */
    const tinyxml2::XMLElement* first(const char* name) const;

  private:
    tinyxml2::XMLError load(const std::string& path);

    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
    const tinyxml2::XMLError mError;
};

/** Text of the first child element of that name; null when there is no child or it has no text. */
const char* textOfChild(const tinyxml2::XMLElement& parent, const char* name);

/** The text, or an empty one for null. */
inline const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <tinyxml2.h>

#include <string>
#include <string_view>

#include "common/ReadObserver.h"

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
    /**
     * Loads the file; error() tells whether that succeeded. Logs where a file is malformed.
     *
     * @param observer  hears of problems, and what tell() is given; must outlive the object; null
     *                  for none
     */
    explicit XmlFile(const std::string& path, ReadObserver* observer = nullptr);

    /** Returns TinyXML-2's name of the loading error; null if the file is loaded. */
    const char* error() const;

    /** Returns the first top-level element of this name, or null. */
    const tinyxml2::XMLElement* first(const char* name) const;

    /** Logs an error about an element: "path:line: problem". */
    void complain(const tinyxml2::XMLElement& element, ProblemKind kind) const;

    /**
     * Tells the observer, if there is one, of a problem that the caller logs in words of its own.
     */
    void tellProblem(const tinyxml2::XMLElement& element, ProblemKind kind) const;

    /** True if somebody wants to hear what becomes of the elements. */
    bool isObserved() const { return mObserver != nullptr; }

    /**
     * Tells the observer, if there is one, what became of an element.
     *
     * @param use   what became of it
     * @param read  the rest: owner, section, key, value and whether the item is new. A key that was
     *              not set becomes the element's name
     */
    void tell(const tinyxml2::XMLElement& element, LineUse use, ReadLine read) const;

    /**
     * Tells the observer, if there is one, that elements are ignored.
     *
     * @param first  the first of these siblings; null for none
     * @param end    the sibling after the last of them; null for all from the first on
     * @param owner  the TV system that they belong to; empty for none
     */
    void tellIgnored(const tinyxml2::XMLElement* first, const tinyxml2::XMLElement* end,
                     std::string_view owner = "") const;

    /** The first top-level element; null for an empty file. */
    const tinyxml2::XMLElement* top() const { return mDocument.FirstChildElement(); }

  private:
    tinyxml2::XMLError load();

    const std::string mPath;
    ReadObserver* const mObserver;
    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
    const tinyxml2::XMLError mError;
};

/** Returns the text of the first child element of that name; null without a child or a text. */
const char* textOfChild(const tinyxml2::XMLElement& parent, const char* name);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Finding.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** An attribute or an element as it stands in the source, and its place. */
struct SourceName {
    std::string name;
    Place place;
};

/** The XML files of a line that were read whole. */
std::vector<const FileLines*> xmlFilesOf(const ProductLine& line);

/** The element that begins a block of a format: "TvSystem", "COUNTRY_FREQ_MAP"... */
std::string_view blockElementOf(FileFormat format);

/** The elements that may stand in an element of that name; null for the top level. */
std::vector<std::string_view> elementsIn(FileFormat format, const char* parent);

/** The attributes of an element, in their order. */
std::vector<SourceName> attributesOf(const ProductLine& line, const FileLines& file,
                                     const ReadLine& read);

/** The elements in a block that the reader ignores as a whole. */
std::vector<SourceName> elementsInIgnored(const ProductLine& line, const FileLines& file,
                                          const ReadLine& block);

/** The lines of a file that its reader complains about. */
class Complaints {
  public:
    explicit Complaints(const FileLines& file);

    bool has(const ReadLine& read) const { return mLines.count(read.number) > 0; }

  private:
    std::set<size_t> mLines;
};

}  // namespace mlk::tree

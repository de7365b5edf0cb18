#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/FileLines.h"
#include "tools/mlktree/Finding.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

/**
 * The place of a text in a line.
 *
 * @param needle  what the caret shall point to; empty for the beginning of the line's text. The
 *                column is that of its first occurrence; of an XML element, that in its source line
 */
Place placeOf(const ProductLine& line, const FileLines& file, const ReadLine& read,
              std::string_view needle = "");

/** The column of a text in a line of a text file; the needle is that of placeOf(). */
size_t columnOf(const ReadLine& read, std::string_view needle = "");

/** The place of a whole file. */
Place placeOf(const FileLines& file);

/**
 * Takes the findings of one rule. One thread at a time.
 *
 * The number of findings is limited: nobody reads more, and a file that is full of mistakes must
 * take neither long nor much memory. The last one says that there may be more.
 */
class Reporter {
  public:
    static constexpr size_t kMostOfFile = 1'000;
    static constexpr size_t kMostOfRule = 10'000;

    Reporter(const ProductLine& line, const Rule& rule) : mLine(line), mRule(rule) {}

    /**
     * Reports a finding that concerns the sets that use the file.
     *
     * @param message  one sentence without a full stop: what is wrong, and what is right
     * @param related  the line that is shadowed, the line that names a missing file, ...
     */
    void report(Place place, std::string message, std::vector<Related> related = {});

    /** Reports a finding that makes what others find in those lines of its file its followers. */
    void reportSpoilt(Place place, Finding::Lines lines, std::string message,
                      std::vector<Related> related = {});

    /** The same as report(), for other sets; see Finding::sets. */
    void reportIn(std::vector<std::string> sets, Place place, std::string message,
                  std::vector<Related> related = {});

    /** The findings so far. */
    std::vector<Finding> take() { return std::move(mFindings); }

  private:
    const ProductLine& mLine;
    const Rule& mRule;
    std::vector<Finding> mFindings;
    std::map<std::string, size_t> mCounts;  // by file
    std::string mLastFile;                  // with the sets that it has
    std::vector<std::string> mLastSets;
};

}  // namespace mlk::tree

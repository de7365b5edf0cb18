#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "common/HashIndex.h"
#include "tools/mlktree/FileLines.h"

namespace mlk::tree {

/** What a line of a text file reads: all of ReadLine but the file, the number, and isNew. */
struct LineContent {
    FileFormat format;
    const ReadLine* line; /**< some line that reads so */
};

/**
 * Numbers the different contents of lines. The models of a product line are near copies of each
 * other: what depends on nothing but the content of a line is computed once for all lines alike.
 */
class LineContents {
  public:
    /**
     * Gives each line of a text file the number of its content. Any thread may call.
     *
     * @param file  must outlive the object
     */
    void add(FileLines& file);

    /** The contents by their numbers, in no order. Not to be called beside add(). */
    const std::vector<LineContent>& all() const { return mContents; }

  private:
    std::mutex mMutex;  // guards the members below in add()
    std::vector<LineContent> mContents;
    vendor::morlak::mlkconfigs::V1_0::implementation::HashIndex mNumbers;
};

}  // namespace mlk::tree

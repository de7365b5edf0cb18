#pragma once

#include <string>
#include <string_view>

#include "tools/common/Output.h"

namespace mlk::tree {

/** A file that a command writes from its beginning. One that is not finished stays cut. */
class WrittenFile {
  public:
    /** @throw UsageError if it cannot be opened, as do the other functions if it cannot be written
     */
    explicit WrittenFile(const std::string& path);
    ~WrittenFile();
    WrittenFile(const WrittenFile&) = delete;
    WrittenFile& operator=(const WrittenFile&) = delete;

    void write(std::string_view text);
    /** Writes what is left; afterwards the file is closed. */
    void finish();

  private:
    std::string mPath;
    int mDescriptor;
    Output mOutput;
};

}  // namespace mlk::tree

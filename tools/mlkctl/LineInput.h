#pragma once

#include <string>
#include <string_view>

namespace mlk::ctl {

/// Lines from a descriptor, read in large pieces and held to a length.
class LineInput {
  public:
    enum class Next {
        LINE,
        TOO_LONG,  ///< There was a line, but it had more bytes than the limit; all of it is
                   ///< skipped.
        END,
    };

    /// limit: how many bytes a line may have, its newline not counted.
    LineInput(int descriptor, size_t limit) : mDescriptor(descriptor), mLimit(limit) {}
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /// Whether next() has a complete line already and will not have to wait for one.
    bool hasLine();

    /// The next line, without its newline; the last one may have none. Waits for it. The line is
    /// valid until the next call. Throws std::system_error when reading fails.
    Next next(std::string_view* line);

  private:
    bool fill();

    const int mDescriptor;
    const size_t mLimit;
    std::string mBuffer;
    size_t mBegin = 0;       // where the next line begins
    size_t mSearched = 0;    // no newline between mBegin and here
    bool mSkipping = false;  // in a line that is too long
};

}  // namespace mlk::ctl

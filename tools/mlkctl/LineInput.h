#pragma once

#include <string>
#include <string_view>

namespace mlk::ctl {

/** Reads lines of bounded length from a descriptor, in large pieces. */
class LineInput {
  public:
    enum class Next {
        LINE,
        TOO_LONG,  // the line has more bytes than the limit; all of it is skipped
        END,
    };

    /** limit: the greatest number of bytes of a line, without its newline. */
    LineInput(int descriptor, size_t limit) : mDescriptor(descriptor), mLimit(limit) {}
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /** Whether next() has a complete line already and does not wait. */
    bool hasLine();

    /**
     * Waits for the next line and returns it without its newline, which the last line may lack. The
     * line is valid until the next call. Throws std::system_error if reading fails.
     */
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

#pragma once

#include <string>
#include <string_view>

namespace mlk {

/**
 * Collects what goes to standard output and writes it in large pieces. A failure to write throws
 * std::system_error with its reason: EPIPE if nobody reads any more. The destructor drops what has
 * not been flushed, because it could not report a failure.
 */
class Output {
  public:
    explicit Output(int descriptor);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    /** Writes the text and a newline. */
    void line(std::string_view text);
    void flush();

    /** Writes bytes of a service or a file; on a terminal, control characters are escaped. */
    void bytes(std::string_view text);
    /** Whether the output is a terminal, so that a person reads it. */
    bool isTerminal() const { return mIsTerminal; }
    int descriptor() const { return mDescriptor; }

  private:
    int mDescriptor;
    bool mIsTerminal;
    std::string mPending;
};

}  // namespace mlk

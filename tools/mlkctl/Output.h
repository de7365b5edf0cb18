#pragma once

#include <string>
#include <string_view>

namespace mlk::ctl {

/// What goes to standard output, collected and written in large pieces. Every failure to write is a
/// std::system_error whose code says why: EPIPE when nobody reads any more. What has not been
/// flushed when the object goes is lost, for its destructor could not tell of a failure.
class Output {
  public:
    explicit Output(int descriptor);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    /// The text and a newline.
    void line(std::string_view text);
    void flush();

    /// Bytes of a service or a file as they are; on a terminal, what it would obey is escaped.
    void bytes(std::string_view text);
    /// Whether a person looks at it, and no program reads it.
    bool isTerminal() const { return mIsTerminal; }

  private:
    int mDescriptor;
    bool mIsTerminal;
    std::string mPending;
};

}  // namespace mlk::ctl

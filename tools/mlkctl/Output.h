#pragma once

#include <string>
#include <string_view>

namespace mlk::ctl {

/// What goes to standard output, collected and written in large pieces. Every failure to write is a
/// std::system_error whose code says why: EPIPE when nobody reads any more. What has not been
/// flushed when the object goes is lost, for its destructor could not tell of a failure.
class Output {
  public:
    explicit Output(int descriptor) : mDescriptor(descriptor) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    /// The text and a newline.
    void line(std::string_view text);
    void flush();

  private:
    int mDescriptor;
    std::string mPending;
};

}  // namespace mlk::ctl

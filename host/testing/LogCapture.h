#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk::testing {

/// One message that this process gave to the Android log.
struct LogLine {
    int priority;      ///< an android_LogPriority
    std::string tag;   ///< the tag as given
    std::string text;  ///< the message as given, newlines included
};

/// Takes every line that this process gives to the Android log while the object lives, instead of
/// standard error; nothing is filtered out. Afterwards the log goes where it went before. Captures
/// may nest: each has all lines of its own life time. Lines may come from any thread; the methods
/// may be called from any thread.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All lines so far, oldest first.
    std::vector<LogLine> lines() const;

    /// All lines so far, oldest first: the letter of the priority, a slash and the text, as in
    /// "E/Open x fail!". What a test expects of a line is both.
    std::vector<std::string> brief() const;

    /// The texts of all lines so far, oldest first; for what says something about every line.
    std::vector<std::string> texts() const;

    /// The texts of the lines with exactly this android_LogPriority and this tag, oldest first.
    std::vector<std::string> texts(int priority, std::string_view tag) const;

    /// Forgets the lines so far.
    void clear();

  private:
    std::vector<LogLine> mLines;  ///< Guarded by the lock of all captures (LogCapture.cpp).
    int mFormerPriority;
};

}  // namespace mlk::testing

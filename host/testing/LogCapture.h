#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk::testing {

/** A message that this process logged. */
struct LogLine {
    int priority;      // an android_LogPriority
    std::string tag;   // as given
    std::string text;  // as given, newlines included
};

/**
 * Captures every line that this process logs while the object lives, unfiltered, instead of writing
 * it to standard error. The destructor restores the log. Captures may nest: each has all lines of
 * its own lifetime. Thread-safe.
 */
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /** All lines so far, oldest first. */
    std::vector<LogLine> lines() const;

    /**
     * All lines so far, oldest first: the letter of the priority, a slash and the text, as in
     * "E/Open x fail!". Tests compare both.
     */
    std::vector<std::string> brief() const;

    /** The texts of all lines so far, oldest first; for checks of every line. */
    std::vector<std::string> texts() const;

    /** The texts of the lines with exactly this android_LogPriority and this tag, oldest first. */
    std::vector<std::string> texts(int priority, std::string_view tag) const;

    /** Forgets the lines so far. */
    void clear();

  private:
    std::vector<LogLine> mLines;  // guarded by the lock of all captures (LogCapture.cpp)
    int mFormerPriority;
};

}  // namespace mlk::testing

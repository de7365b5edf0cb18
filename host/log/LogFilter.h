#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mlk::host {

/// Which log messages are shown: rules in logcat's filter syntax, "MlkTvConfigs:D *:E". Rules are
/// separated by blanks or commas; each is a tag, ":" and a priority (one of V D I W E F S, in
/// either case), and shows the tag's messages of that priority and above, S none. A tag alone
/// stands for "tag:V", "*" is the rule for all tags without one of their own ("*" alone is "*:D");
/// of several rules for one tag the last counts. Without a rule for "*" it is "*:I". Immutable once
/// parsed.
class LogFilter {
  public:
    /// Parses the text of ANDROID_LOG_TAGS. Pieces that are no rule are left out and, when
    /// `unknown` is given, added to it as they were written.
    explicit LogFilter(std::string_view text, std::vector<std::string>* unknown = nullptr);

    /// Whether a message of this android_LogPriority and tag is shown.
    bool shows(int priority, std::string_view tag) const;

    /// The least android_LogPriority that any rule shows; ANDROID_LOG_SILENT when none shows
    /// anything.
    int lowest() const;

  private:
    bool addRule(std::string_view rule);

    std::unordered_map<std::string, int> mTags;
    int mOthers;
};

}  // namespace mlk::host

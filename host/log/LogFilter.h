#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mlk::host {

/**
 * Decides which log messages are shown. Rules have logcat's filter syntax: "MlkTvConfigs:D *:E".
 * Blanks or commas separate rules. A rule is a tag, ":" and a priority (one of V D I W E F S, in
 * either case); it shows the tag's messages of that priority and above, S none. A tag alone means
 * "tag:V". "*" is the rule for all tags without a rule ("*" alone means "*:D"). Of several rules
 * for one tag the last counts. The default for "*" is "*:I". Immutable.
 */
class LogFilter {
  public:
    /**
     * Parses the text of ANDROID_LOG_TAGS. Malformed rules are skipped and, if `unknown` is given,
     * appended to it as written.
     */
    explicit LogFilter(std::string_view text, std::vector<std::string>* unknown = nullptr);

    /** Whether a message of this android_LogPriority and tag is shown. */
    bool shows(int priority, std::string_view tag) const;

    /**
     * The lowest android_LogPriority that any rule shows; ANDROID_LOG_SILENT when no rule shows
     * anything.
     */
    int lowest() const;

  private:
    bool addRule(std::string_view rule);

    std::unordered_map<std::string, int> mTags;
    int mOthers;
};

}  // namespace mlk::host

#include "tools/mlktree/AllowComments.h"

#include <algorithm>
#include <optional>

#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::LineUse;
using vendor::morlak::mlkconfigs::V1_0::implementation::ReadLine;

constexpr std::string_view kBlanks = " \t\r\n";  // those of trimmed()
constexpr std::string_view kMark = "mlktree:";
constexpr std::string_view kXmlBegin = "<!--";
constexpr std::string_view kXmlEnd = "-->";

// Takes the first word off a text.
std::string_view takeWord(std::string_view& text) {
    text = trimmed(text);
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text = trimmed(text.substr(word.size()));
    return word;
}

// What a comment says to mlktree, without the signs of the comment.
std::optional<AllowComment> parse(const Place& place, std::string_view comment) {
    comment = trimmed(comment);
    if (!beginsWith(comment, kMark)) {
        return std::nullopt;
    }
    comment.remove_prefix(kMark.size());
    AllowComment found;
    found.place = place;
    found.instruction = takeWord(comment);
    found.rule = takeWord(comment);
    found.reason = comment;
    return found;
}

// A comment's text without its signs; nothing if the line is no comment.
std::optional<std::string_view> commentOf(const ReadLine& line) {
    if (line.use != LineUse::NOTHING) {
        return std::nullopt;
    }
    const std::string_view text = trimmed(line.text);
    if (beginsWith(text, "//")) {
        return text.substr(2);
    }
    if (beginsWith(text, "#")) {
        return text.substr(std::min(text.find_first_not_of('#'), text.size()));
    }
    return std::nullopt;
}

bool isBlank(const ReadLine& line) {
    return line.use == LineUse::NOTHING && trimmed(line.text).empty();
}

// Gives each comment the line that comes next.
class Targets {
  public:
    void add(AllowComment comment) {
        comment.isAtBeginning = mIsAtBeginning;
        mFound.push_back(std::move(comment));
    }
    void meet(size_t line) {
        for (; mWaiting < mFound.size(); ++mWaiting) {
            mFound[mWaiting].target = line;
        }
        mIsAtBeginning = false;
    }
    std::vector<AllowComment> take() { return std::move(mFound); }

  private:
    std::vector<AllowComment> mFound;
    size_t mWaiting = 0;  // the first that has no target yet
    bool mIsAtBeginning = true;
};

}  // namespace

std::vector<AllowComment> allowComments(const std::string& file,
                                        const std::vector<ReadLine>& lines) {
    Targets targets;
    for (const ReadLine& line : lines) {
        const auto comment = commentOf(line);
        if (comment) {
            const size_t begin = line.text.find_first_not_of(kBlanks);
            if (auto found = parse({file, line.number, line.column + begin}, *comment)) {
                targets.add(std::move(*found));
            }
        } else if (!isBlank(line)) {
            targets.meet(line.number);
        }
    }
    return targets.take();
}

std::vector<AllowComment> allowCommentsOfXml(const std::string& file,
                                             const std::vector<std::string_view>& lines) {
    Targets targets;
    bool isInside = false;  // of a comment
    Place begin;
    std::string comment;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        size_t at = 0;
        while (at < line.size()) {
            const std::string_view sign = isInside ? kXmlEnd : kXmlBegin;
            const size_t found = line.find(sign, at);
            const std::string_view before = line.substr(at, found - at);
            if (isInside) {
                comment += before;
            } else if (!trimmed(before).empty() && !beginsWith(trimmed(before), "<?xml")) {
                targets.meet(i + 1);
            }
            if (found == std::string_view::npos) {
                break;
            }
            at = found + sign.size();
            if (isInside) {
                if (auto allowed = parse(begin, comment)) {
                    targets.add(std::move(*allowed));
                }
            } else {
                begin = {file, i + 1, found + 1};
                comment.clear();
            }
            isInside = !isInside;
        }
        comment += ' ';
    }
    return targets.take();
}

}  // namespace mlk::tree

#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/Ansi.h"

#include <algorithm>

#include "projectconfigs/KnownItems.h"
#include "tools/common/Json.h"
#include "tools/mlktree/Nearest.h"

namespace mlk::tree {

namespace {

constexpr size_t kLabelWidth = 15;  // with the blanks around it

}  // namespace

std::string Page::styled(const char* code, const std::string& text) const {
    return mIsColoured ? code + text + ansi::kPlain : text;
}

void Page::title(std::string_view text) {
    mText += (mText.empty() ? "" : "\n") + styled(ansi::kBold, shownText(text)) + "\n";
    mLabel.clear();
}

void Page::row(std::string_view label, std::string_view text) {
    std::string head = "  " + (label == mLabel ? std::string() : std::string(label));
    head.append(kLabelWidth - std::min(kLabelWidth, head.size()), ' ');
    mText += styled(ansi::kDim, head) + shownText(text) + "\n";
    mLabel = label;
}

void Page::source(const std::string& file, size_t line) {
    const std::string_view source = mLine.sources().line(file, line);
    if (source.find_first_not_of(" \t\r\n") != std::string_view::npos) {
        mText += std::string(kLabelWidth + 4, ' ') + styled(ansi::kDim, shownLine(source, 0).text) +
                 "\n";
    }
}

std::string originJson(std::string_view value, const std::string& file, size_t line,
                       std::string_view layer) {
    return JsonObject()
            .text("value", value)
            .text("file", file)
            .number("line", static_cast<int64_t>(line))
            .text("layer", layer)
            .str();
}

std::string placeJson(const std::string& file, size_t line, std::string_view layer) {
    return JsonObject()
            .text("file", file)
            .number("line", static_cast<int64_t>(line))
            .text("layer", layer)
            .str();
}

std::string suggestionOf(std::string_view word, const std::vector<std::string_view>& candidates) {
    const std::string_view name = nearest(word, candidates);
    return name.empty() ? std::string() : "; did you mean " + std::string(name) + "?";
}

}  // namespace mlk::tree

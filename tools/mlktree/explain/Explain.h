#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/ExplainWords.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/** An explanation: for a person, and for a program. */
struct Explanation {
    std::string text; /**< lines */
    std::string json; /**< a line, or several */
};

/** What `explain` is asked, besides the set. */
struct Request {
    const Question& question;
    const Arguments& arguments;
    bool isColoured;
};

// What can be explained. Each throws NotFound, or UsageError if an option is wrong.
Explanation explainItems(const SetModel& set, const Request& request);
Explanation explainFeature(const SetModel& set, const Request& request);
Explanation explainAudio(const SetModel& set, const Request& request);
Explanation explainCountry(const SetModel& set, const Request& request);
Explanation explainFile(const ProductLine& line, const Request& request);

/** An explanation as lines with labels at their left. */
class Page {
  public:
    Page(const ProductLine& line, bool isColoured) : mLine(line), mIsColoured(isColoured) {}

    /** Begins an explanation with what is explained. */
    void title(std::string_view text);
    /** A line with a label; the same label again is left out. */
    void row(std::string_view label, std::string_view text);
    /** A source line, so that its comment can be read, too. */
    void source(const std::string& file, size_t line);
    /** Lines as they are. */
    void add(std::string_view lines) { mText += lines; }

    std::string take() { return std::move(mText); }

  private:
    std::string styled(const char* code, const std::string& text) const;

    const ProductLine& mLine;
    const bool mIsColoured;
    std::string mLabel;
    std::string mText;
};

/** The members "value", "file", "line" and "layer" that explain a value. */
std::string originJson(std::string_view value, const std::string& file, size_t line,
                       std::string_view layer);

/** Members "file", "line" and "layer". */
std::string placeJson(const std::string& file, size_t line, std::string_view layer);

/** An item as `explain --format json` prints it. */
std::string itemJson(const SetItem& item);

/** "; did you mean X?", or an empty text. */
std::string suggestionOf(std::string_view word, const std::vector<std::string_view>& candidates);

}  // namespace mlk::tree

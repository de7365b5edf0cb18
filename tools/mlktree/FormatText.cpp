// Findings for people and for editors: file:line:column: severity: message [rule].

#include "tools/mlktree/Ansi.h"
#include "tools/mlktree/Formats.h"
#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

namespace {

std::string_view colourOf(Severity severity) {
    return severity == Severity::ERROR     ? ansi::kBoldRed
           : severity == Severity::WARNING ? ansi::kBoldYellow
                                           : ansi::kBoldCyan;
}

class Printer {
  public:
    Printer(const FormatContext& context, const TextSink& sink) : mContext(context), mSink(sink) {}

    void print(const Finding& finding) {
        mSink(head(finding.place, nameOf(finding.severity), colourOf(finding.severity)));
        mSink(in(ansi::kBold, shownText(finding.message)) +
              in(ansi::kDim, " [" + finding.rule + "]") + "\n");
        printSource(finding.place);
        for (const Related& related : finding.related) {
            mSink(head(related.place, "note", ansi::kBoldCyan) + shownText(related.message) + "\n");
        }
        const std::string sets = setsInWords(finding);
        if (!sets.empty()) {
            mSink(in(ansi::kDim, "    " + sets) + "\n");
        }
    }

  private:
    std::string in(std::string_view colour, const std::string& text) const {
        return mContext.isColoured ? std::string(colour) + text + std::string(ansi::kPlain) : text;
    }

    std::string head(const Place& place, std::string_view severity, std::string_view colour) const {
        std::string where = shownText(place.file);
        if (place.line != 0) {
            where += ":" + std::to_string(place.line);
        }
        if (place.line != 0 && place.column != 0) {
            where += ":" + std::to_string(place.column);
        }
        return in(ansi::kBold, where + ":") + " " + in(colour, std::string(severity) + ":") + " ";
    }

    void printSource(const Place& place) {
        if (place.line == 0) {
            return;
        }
        const std::string_view source = mContext.lineOf(place.file, place.line);
        if (source.find_first_not_of(" \t\r\n") == std::string_view::npos) {
            return;
        }
        const ShownLine shown = shownLine(source, place.column);
        mSink("    " + shown.text + "\n    " + std::string(shown.caret, ' ') +
              in(ansi::kBoldGreen, "^") + "\n");
    }

    const FormatContext& mContext;
    const TextSink& mSink;
};

}  // namespace

void formatText(const CheckReport& report, const FormatContext& context, const TextSink& sink) {
    Printer printer(context, sink);
    for (const Finding& finding : report.findings) {
        printer.print(finding);
    }
    sink(summaryOf(report) + "\n");
}

}  // namespace mlk::tree

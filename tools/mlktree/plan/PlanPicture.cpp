#include "tools/mlktree/plan/PlanPicture.h"

#include <algorithm>
#include <cmath>

#include "tools/common/Wrap.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/XmlText.h"
#include "tools/mlktree/plan/PlanRows.h"

namespace mlk::tree {

namespace {

// In units of the picture, which are pixels unless it is scaled.
constexpr int64_t kWidth = 1000;
constexpr int64_t kMargin = 12;
constexpr int64_t kInner = kWidth - 2 * kMargin;
constexpr int64_t kBarHeight = 34;
constexpr int64_t kLaneHeight = kBarHeight + 4;
constexpr int64_t kAxisHeight = 30;
constexpr int64_t kRowGap = 14;
constexpr int64_t kTop = 74;
constexpr int64_t kChannelsInARow = 20;
constexpr int64_t kMarks = 10;
constexpr size_t kFills = 6;

// Pairs of fill and text with a contrast of more than 7; the strokes with more than 3.
constexpr std::string_view kStyle = R"svg(<style>
text { font-family: sans-serif; font-size: 11px; fill: #1b1b1b }
.page { fill: #ffffff }
.head { font-size: 17px; font-weight: bold }
.quiet { fill: #4a4a4a }
.name, .modulation { text-anchor: middle }
.modulation { font-size: 7px }
.axis, .mark { stroke: #6b6b6b }
.bar { stroke: #5a5a5a; stroke-width: 0.7 }
.fill0 { fill: #cfe3f7 } .fill1 { fill: #fbe3c4 } .fill2 { fill: #cdebd6 }
.fill3 { fill: #e8dbf6 } .fill4 { fill: #f8d7df } .fill5 { fill: #e6e3c3 }
.repeated { stroke: #b00020; stroke-width: 2.5; stroke-dasharray: 4 2 }
.gap { fill: url(#gaps); stroke: #6b6b6b; stroke-dasharray: 2 2 }
.overlap { fill: url(#overlaps); stroke: #b00020 }
.gapline { stroke: #6b6b6b } .overlapline { stroke: #b00020; stroke-width: 2 }
@media (prefers-color-scheme: dark) {
text { fill: #f2f2f2 }
.page { fill: #16181b }
.quiet { fill: #c4c4c4 }
.axis, .mark, .gapline { stroke: #a0a0a0 }
.bar { stroke: #b5b5b5 }
.fill0 { fill: #17466f } .fill1 { fill: #66400f } .fill2 { fill: #19502f }
.fill3 { fill: #4b336c } .fill4 { fill: #68283b } .fill5 { fill: #4b4819 }
.repeated, .overlap, .overlapline { stroke: #ff8a94 }
.gap { stroke: #a0a0a0 }
}
</style>
<defs>
<pattern id="gaps" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)"><line class="gapline" y2="6"/></pattern>
<pattern id="overlaps" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(-45)"><line class="overlapline" y2="6"/></pattern>
</defs>
)svg";

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}

// Hundredths are fine enough for a picture.
std::string attribute(const char* name, double value) {
    const auto hundredths = static_cast<int64_t>(std::llround(value * 100));
    const int64_t size = std::abs(hundredths);
    std::string text = (hundredths < 0 ? "-" : "") + std::to_string(size / 100);
    if (size % 100 != 0) {
        text += '.' + std::to_string(100 + size % 100).substr(1);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return attribute(name, text);
}

std::string box(const std::string& kind, double x, int64_t y, double width, int64_t height) {
    return "<rect" + attribute("class", kind) + attribute("x", x) +
           attribute("y", static_cast<double>(y)) + attribute("width", width) +
           attribute("height", static_cast<double>(height)) + "/>";
}

std::string words(const std::string& kind, double x, double y, std::string_view text) {
    return "<text" + (kind.empty() ? "" : attribute("class", kind)) + attribute("x", x) +
           attribute("y", y) + ">" + xmlText(text) + "</text>";
}

std::string titled(const std::string& title, const std::string& shapes) {
    return "<g><title>" + xmlText(title) + "</title>" + shapes + "</g>\n";
}

std::string describe(const PlanView& plan, size_t channel) {
    const ViewedChannel& it = plan.channels[channel];
    const std::string repeated = repeatedOf(plan, channel);
    return it.name() + ": channel " + std::to_string(it.number) + ", " + megahertz(it.frequency) +
           " MHz, " + megahertz(it.bandwidth / 1000) + " MHz wide, " +
           modulationText(it.modulation) +
           (it.line != 0 ? ", line " + std::to_string(it.line) : "") +
           (repeated.empty() ? "" : "; repeats " + repeated);
}

std::string describe(const PlanView& plan, const char* kind, const Meeting& meeting) {
    return std::string(kind) + " of " + megahertz(meeting.width()) + " MHz between " +
           plan.channels[meeting.lower].name() + " and " + plan.channels[meeting.upper].name();
}

class Picture {
  public:
    Picture(const PlanView& plan, const TextSink& sink)
        : mPlan(plan),
          mSink(sink),
          mRows(rowsOf(plan, kChannelsInARow)),
          mGaps(plan.channels.size()),
          mOverlaps(plan.channels.size()) {
        for (const Meeting& gap : plan.gaps) {
            mGaps[gap.lower].push_back(&gap);
        }
        for (const Meeting& overlap : plan.overlaps) {
            mOverlaps[overlap.upper].push_back(&overlap);
        }
        for (const ViewedChannel& channel : plan.channels) {
            if (std::find(mModulations.begin(), mModulations.end(), channel.modulation) ==
                mModulations.end()) {
                mModulations.push_back(channel.modulation);
            }
        }
        std::sort(mModulations.begin(), mModulations.end());
    }

    void draw() {
        int64_t height = kTop;
        for (const PlanRow& row : mRows.rows) {
            height += heightOf(row);
        }
        mSink("<svg xmlns=\"http://www.w3.org/2000/svg\"" +
              attribute("viewBox", "0 0 " + std::to_string(kWidth) + " " + std::to_string(height)) +
              attribute("width", std::to_string(kWidth)) +
              attribute("height", std::to_string(height)) +
              " role=\"img\" aria-labelledby=\"plan-title plan-description\" "
              "style=\"max-width: 100%; height: auto\">\n");
        const std::string title = "Channel plan " + mPlan.country + " " + mPlan.name;
        mSink("<title id=\"plan-title\">" + xmlText(title) + "</title>\n" +
              "<desc id=\"plan-description\">" + xmlText(description()) + "</desc>\n");
        mSink(kStyle);
        mSink(box("page", 0, 0, kWidth, height) + "\n" + words("head", kMargin, 24, title) +
              words("quiet", kMargin, 42, mPlan.file + "; MHz; " + summaryOf(mPlan)) + "\n");
        drawLegend();
        int64_t top = kTop;
        for (const PlanRow& row : mRows.rows) {
            drawAxis(row, top);
            for (const PlacedChannel& placed : row.channels) {
                drawChannel(row, placed, top);
            }
            // A gap stands after the channel below it, an overlap at the one above.
            for (const PlacedChannel& placed : row.channels) {
                for (const Meeting* const gap : mGaps[placed.channel]) {
                    drawGap(row, *gap, top);
                }
                for (const Meeting* const overlap : mOverlaps[placed.channel]) {
                    drawOverlap(row, *overlap, top);
                }
            }
            top += heightOf(row);
        }
        mSink("</svg>\n");
    }

  private:
    static int64_t heightOf(const PlanRow& row) {
        return static_cast<int64_t>(row.lanes) * kLaneHeight + kAxisHeight + kRowGap;
    }

    double at(const PlanRow& row, int64_t khz) const {
        const double part = static_cast<double>(std::clamp(khz, row.low, row.high) - row.low) /
                            static_cast<double>(mRows.span);
        return kMargin + part * kInner;
    }

    std::string description() const {
        if (mPlan.channels.empty()) {
            return "The plan has no channel.";
        }
        const ViewedChannel& highest = *std::max_element(
                mPlan.channels.begin(), mPlan.channels.end(),
                [](const ViewedChannel& a, const ViewedChannel& b) { return a.high < b.high; });
        return counted(mPlan.channels.size(), "channel", "channels") + " from " +
               megahertz(mPlan.channels[mPlan.byFrequency.front()].low) + " to " +
               megahertz(highest.high) + " MHz: " + summaryOf(mPlan) + ".";
    }

    std::string fillOf(int32_t modulation) const {
        const auto place = std::find(mModulations.begin(), mModulations.end(), modulation);
        return "fill" + std::to_string(static_cast<size_t>(place - mModulations.begin()) % kFills);
    }

    void drawLegend() {
        constexpr int64_t kBoxWidth = 16;
        constexpr int64_t kLetter = 7;
        constexpr int64_t kTopOfBoxes = 50;
        int64_t x = kMargin;
        const auto add = [&](const std::string& kind, const std::string& text) {
            const int64_t width = kBoxWidth + 6 + static_cast<int64_t>(text.size()) * kLetter + 12;
            if (x + width > kWidth) {
                return;  // the tooltips have them all
            }
            mSink(box(kind, static_cast<double>(x), kTopOfBoxes, kBoxWidth, 11) +
                  words("quiet", static_cast<double>(x + kBoxWidth + 5), kTopOfBoxes + 10, text) +
                  "\n");
            x += width;
        };
        if (!mPlan.gaps.empty()) {
            add("gap", "gap");
        }
        if (!mPlan.overlaps.empty()) {
            add("overlap", "overlap");
        }
        if (mPlan.repeated() != 0) {
            add("bar repeated page", "repeated");
        }
        for (const int32_t modulation : mModulations) {
            add("bar " + fillOf(modulation), modulationText(modulation));
        }
    }

    void drawAxis(const PlanRow& row, int64_t top) {
        const int64_t y = top + static_cast<int64_t>(row.lanes) * kLaneHeight;
        const int64_t distance = markDistance(mRows.span, kMarks);
        const auto line = [](const char* kind, double x1, double x2, int64_t y1, int64_t y2) {
            return std::string("<line class=\"") + kind + "\"" + attribute("x1", x1) +
                   attribute("x2", x2) + attribute("y1", static_cast<double>(y1)) +
                   attribute("y2", static_cast<double>(y2)) + "/>";
        };
        std::string marks = line("axis", at(row, row.low), at(row, row.high), y, y);
        for (int64_t mark = row.low; mark <= row.high; mark += distance) {
            const double x = at(row, mark);
            const bool isFirst = mark == row.low;
            const bool isLast = mark + distance > row.high;
            marks += line("mark", x, x, y, y + 4) + "<text class=\"quiet\" text-anchor=\"" +
                     (isFirst  ? "start"
                      : isLast ? "end"
                               : "middle") +
                     "\"" + attribute("x", x) + attribute("y", static_cast<double>(y + 16)) + ">" +
                     megahertz(mark) + "</text>";
        }
        mSink(marks + "\n");
    }

    void drawChannel(const PlanRow& row, const PlacedChannel& placed, int64_t top) {
        const ViewedChannel& channel = mPlan.channels[placed.channel];
        const int64_t y = topOf(row, placed.lane, top);
        const double x = at(row, channel.low);
        const double width = std::max(at(row, channel.high) - x, 1.0);
        const bool isRepeated = channel.sameFrequencyAs || channel.sameNameAs;
        std::string shapes =
                box("bar " + fillOf(channel.modulation) + (isRepeated ? " repeated" : ""), x, y,
                    width, kBarHeight);
        constexpr double kLetter = 7;
        constexpr double kSmallLetter = 5.2;
        const auto add = [&](const char* kind, const std::string& text, double letter,
                             int64_t down) {
            if (static_cast<double>(columnsOf(shownText(text))) * letter < width) {
                shapes += words(kind, x + width / 2, static_cast<double>(y + down), text);
            }
        };
        add("name", channel.name(), kLetter, 15);
        add("modulation", modulationText(channel.modulation), kSmallLetter, 28);
        mSink(titled(describe(mPlan, placed.channel), shapes));
    }

    // The first lane is the lowest, at the axis.
    static int64_t topOf(const PlanRow& row, size_t lane, int64_t top) {
        return top + static_cast<int64_t>(row.lanes - 1 - lane) * kLaneHeight + 2;
    }

    void drawGap(const PlanRow& row, const Meeting& gap, int64_t top) {
        const double x = at(row, gap.low);
        const double width = std::max(at(row, gap.high) - x, 2.0);
        const std::string text = megahertz(gap.width()) + " MHz";
        const int64_t y = topOf(row, 0, top) + kBarHeight - 10;
        std::string shapes = box("gap", std::min(x, kWidth - kMargin - 2.0), y, width, 10);
        constexpr double kLetter = 6.5;
        if (static_cast<double>(text.size()) * kLetter < width) {
            shapes += words("name quiet", x + width / 2, static_cast<double>(y - 4), text);
        }
        mSink(titled(describe(mPlan, "Gap", gap), shapes));
    }

    void drawOverlap(const PlanRow& row, const Meeting& overlap, int64_t top) {
        const double x = at(row, overlap.low);
        const double width = std::max(at(row, overlap.high) - x, 2.0);
        const auto lanes = static_cast<int64_t>(row.lanes);
        mSink(titled(describe(mPlan, "Overlap", overlap),
                     box("overlap", std::min(x, kWidth - kMargin - 2.0), top, width,
                         lanes * kLaneHeight)));
    }

    const PlanView& mPlan;
    const TextSink& mSink;
    const PlanRows mRows;
    std::vector<std::vector<const Meeting*>> mGaps;      // by the channel below
    std::vector<std::vector<const Meeting*>> mOverlaps;  // by the channel above
    std::vector<int32_t> mModulations;
};

}  // namespace

void drawPlan(const PlanView& plan, const TextSink& sink) {
    Picture(plan, sink).draw();
}

}  // namespace mlk::tree

#include "tools/mlktree/Reporter.h"

#include <algorithm>
#include <utility>

#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

// An element's attributes may stand on the lines after its name.
constexpr size_t kLinesOfElement = 8;
// An XML file may be one line of many megabytes.
constexpr size_t kMostOfLine = 4096;

bool isPartOf(std::string_view part, std::string_view text) {
    return part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size();
}

Place placeInXml(const ProductLine& line, const FileLines& file, const ReadLine& read,
                 std::string_view needle) {
    Place place{file.path(), read.number, 0};
    for (size_t i = 0; i < kLinesOfElement; ++i) {
        const std::string_view source =
                line.sources().line(file.path(), read.number + i).substr(0, kMostOfLine);
        const size_t found = source.find(needle);
        if (found != std::string_view::npos) {
            place.line = read.number + i;
            place.column = found + 1;
            return place;
        }
        if (source.find('>') != std::string_view::npos) {
            break;
        }
    }
    const size_t begin =
            line.sources().line(file.path(), read.number).substr(0, kMostOfLine).find('<');
    place.column = begin != std::string_view::npos ? begin + 1 : 0;
    return place;
}

}  // namespace

Place placeOf(const ProductLine& line, const FileLines& file, const ReadLine& read,
              std::string_view needle) {
    if (read.column == 0) {
        return placeInXml(line, file, read, needle.empty() ? "<" : needle);
    }
    return {file.path(), read.number, columnOf(read, needle)};
}

size_t columnOf(const ReadLine& read, std::string_view needle) {
    const bool isPart = isPartOf(needle, read.text) && !needle.empty();
    const size_t found =
            isPart ? static_cast<size_t>(needle.data() - read.text.data()) : read.text.find(needle);
    return read.column + (found != std::string_view::npos ? found : 0);
}

Place placeOf(const FileLines& file) {
    return {file.path(), 0, 0};
}

void Reporter::report(Place place, std::string message, std::vector<Related> related) {
    if (mFindings.empty() || mLastFile != place.file) {
        mLastSets = mLine.setsOf(place.file);
        mLastFile = place.file;
    }
    reportIn(mLastSets, std::move(place), std::move(message), std::move(related));
}

void Reporter::reportSpoilt(Place place, Finding::Lines lines, std::string message,
                            std::vector<Related> related) {
    const size_t before = mFindings.size();
    report(std::move(place), std::move(message), std::move(related));
    if (mFindings.size() > before) {
        mFindings.back().spoilt = lines;
    }
}

namespace {

// A message is one line, whatever the paths in it have: control bytes become escapes.
void escapeControlBytes(std::string& text) {
    const auto isControl = [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; };
    for (auto at = std::find_if(text.begin(), text.end(), isControl); at != text.end();
         at = std::find_if(text.begin(), text.end(), isControl)) {
        const std::string escape = quoted(std::string_view(&*at, 1));
        const auto position = static_cast<size_t>(at - text.begin());
        text.replace(position, 1, escape, 1, escape.size() - 2);
    }
}

}  // namespace

void Reporter::reportIn(std::vector<std::string> sets, Place place, std::string message,
                        std::vector<Related> related) {
    const size_t count = ++mCounts[place.file];
    if (count > kMostOfFile || mFindings.size() == kMostOfRule) {
        return;
    }
    if (count == kMostOfFile || mFindings.size() + 1 == kMostOfRule) {
        message += "; there may be more such findings";
    }
    escapeControlBytes(message);
    for (Related& each : related) {
        escapeControlBytes(each.message);
    }
    mFindings.push_back({std::string(mRule.name),
                         mRule.severity,
                         std::move(place),
                         std::move(message),
                         std::move(sets),
                         std::move(related),
                         {}});
}

}  // namespace mlk::tree

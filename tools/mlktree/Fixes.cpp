#include "tools/mlktree/Fixes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "host/text/Utf8.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/LineMends.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

constexpr size_t kContext = 3;  // lines around a change

// Whether a carriage return at the end of a line becomes part of a name or of the models' list.
// Then all lines of the file end without one: an editor adds them to all.
bool keepsCarriageReturns(const FileLines& file) {
    const bool isOfModels = file.format() == FileFormat::SYSTEM;
    return (isOfModels || isList(file.format())) &&
           std::any_of(file.lines().begin(), file.lines().end(), [&](const ReadLine& read) {
               const std::string_view kept = isOfModels ? read.text : read.key;
               return read.use == LineUse::ITEM && !kept.empty() && kept.back() == '\r';
           });
}

// By line number: whether the service uses the line, so that its characters matter.
std::vector<bool> usedLines(const FileLines& file, size_t count) {
    std::vector<bool> used(count + 1);
    for (const ReadLine& read : file.lines()) {
        // A byte order mark makes a remark of the first line something else.
        const bool isMarked = read.number == 1 && beginsWith(read.text, kByteOrderMark);
        if (read.number <= count && (read.use != LineUse::NOTHING || isMarked)) {
            used[read.number] = true;
        }
    }
    // A plan's line of several pieces: if it were shorter, they would end elsewhere.
    for (const ReadLine& read : file.lines()) {
        if (read.number <= count && read.isCut && file.format() == FileFormat::CHANNEL_PLAN) {
            used[read.number] = false;
        }
    }
    return used;
}

// The whole file with its mends.
std::string textOf(const MendedFile& mended, const std::vector<std::string_view>& former,
                   bool isEnded) {
    std::string text;
    auto next = mended.lines.begin();
    for (size_t i = 0; i < former.size(); ++i) {
        if (next != mended.lines.end() && next->number == i + 1) {
            text += next->after;
            ++next;
        } else {
            text += former[i];
        }
        const bool isUnended = i + 1 == former.size() && !isEnded && !mended.endsLastLine;
        text += isUnended ? "" : "\n";
    }
    return text;
}

// The lines that, mended, have taken the place of one that gave its item the value before.
std::set<size_t> rivalsIn(const FileLines& before, const FileLines& after) {
    std::map<size_t, const ReadLine*> items;
    for (const ReadLine& read : after.lines()) {
        if (read.use == LineUse::ITEM) {
            items[read.number] = &read;
        }
    }
    std::set<size_t> rivals;
    for (const ReadLine& read : before.lines()) {
        const auto same = read.use == LineUse::ITEM && before.counts(read) ? items.find(read.number)
                                                                           : items.end();
        const bool isSame = same != items.end() && same->second->section == read.section &&
                            same->second->key == read.key;
        if (isSame && !after.counts(*same->second)) {
            rivals.insert(after.find(read.section, read.key)->number);
        }
    }
    return rivals;
}

// Takes back the mends that have made a line a rival: its own, or that of its section's name.
void takeBack(MendedFile& mended, const std::set<size_t>& rivals, const FileLines& after) {
    std::set<size_t> back;
    const auto isMended = [&](size_t number) {
        return std::any_of(mended.lines.begin(), mended.lines.end(),
                           [&](const MendedLine& line) { return line.number == number; });
    };
    size_t section = 0;  // the last mended name of a section
    for (const ReadLine& read : after.lines()) {
        if (read.use == LineUse::SECTION) {
            section = isMended(read.number) ? read.number : 0;
        }
        if (rivals.count(read.number) > 0) {
            back.insert(isMended(read.number) ? read.number : section);
        }
    }
    const auto goes = [&](const MendedLine& line) { return back.count(line.number) > 0; };
    mended.lines.erase(std::remove_if(mended.lines.begin(), mended.lines.end(), goes),
                       mended.lines.end());
}

// A line that nobody has read must not become the one that counts: of two lines of one name only
// their author knows which is right. Leaves the mends that do no such harm.
void keepItems(const ProductLine& line, const FileLines& file, MendedFile& mended) {
    const std::vector<std::string_view>& former = line.sources().lines(file.path());
    const bool isEnded = line.sources().endsInLineFeed(file.path());
    const bool hasNames = hasItems(file.format()) || file.format() == FileFormat::CUSTOMER ||
                          file.format() == FileFormat::SYSTEM;
    for (;;) {
        mended.text = textOf(mended, former, isEnded);
        // In a file of features the first of two lines counts, so that the last one has no rival.
        if (!hasNames || mended.lines.empty()) {
            return;
        }
        const std::unique_ptr<FileLines> after =
                readText(line.tree(), file.path(), file.format(), mended.text);
        const std::set<size_t> rivals = rivalsIn(file, *after);
        if (rivals.empty()) {
            return;
        }
        const size_t count = mended.lines.size();
        takeBack(mended, rivals, *after);
        if (mended.lines.size() == count) {
            mended.lines.clear();
            mended.endsLastLine = false;
        }
    }
}

std::optional<MendedFile> mendFile(const ProductLine& line, const FileLines& file) {
    const std::vector<std::string_view>& former = line.sources().lines(file.path());
    const std::vector<bool> isUsed = usedLines(file, former.size());
    const bool dropsCarriageReturns = keepsCarriageReturns(file);
    MendedFile mended;
    mended.path = file.path();
    for (size_t i = 0; i < former.size(); ++i) {
        std::string text =
                mendedLine({file.format(), i == 0, isUsed[i + 1], dropsCarriageReturns}, former[i]);
        const bool isUnended =
                i + 1 == former.size() && !line.sources().endsInLineFeed(file.path());
        mended.endsLastLine = isUnended && file.format() == FileFormat::TV_FEATURES &&
                              text.find('=') != std::string::npos;
        if (text != former[i]) {
            mended.lines.push_back({i + 1, std::string(former[i]), std::move(text)});
        }
    }
    if (!mended.lines.empty() || mended.endsLastLine) {
        keepItems(line, file, mended);
    }
    const bool isSame = mended.lines.empty() && !mended.endsLastLine;
    return isSame ? std::nullopt : std::optional(std::move(mended));
}

// A property's file with a line end, which belongs to the value.
std::optional<MendedFile> mendProperty(const ProductLine& line, const std::string& path) {
    const std::vector<std::string_view>& former = line.sources().lines(path);
    if (former.size() != 1 || trimmed(former.front()).empty() ||
        !line.sources().endsInLineFeed(path)) {
        return std::nullopt;
    }
    MendedFile mended;
    mended.path = path;
    mended.text = former.front();
    mended.text.erase(mended.text.find_last_not_of('\r') + 1);
    mended.lines.push_back({1, std::string(former.front()), mended.text});
    mended.dropsLastEnd = true;
    return mended;
}

}  // namespace

std::vector<MendedFile> mend(const ProductLine& line) {
    std::vector<MendedFile> files;
    for (const std::string& key : line.properties().keys()) {
        std::optional<MendedFile> mended = line.properties().isGiven(key)
                                                   ? std::nullopt
                                                   : mendProperty(line, "data/property/" + key);
        if (mended) {
            files.push_back(std::move(*mended));
        }
    }
    for (const auto& [path, file] : line.files()) {
        // A file that readers refuse is not touched either.
        if (!file->exists() || file->isUnreadable() || !isMendable(file->format())) {
            continue;
        }
        if (std::optional<MendedFile> mended = mendFile(line, *file)) {
            files.push_back(std::move(*mended));
        }
    }
    return files;
}

std::string diffOf(const MendedFile& file, const std::vector<std::string_view>& former) {
    std::vector<std::string> after(former.begin(), former.end());
    std::vector<size_t> changed;  // positions, from 0
    for (const MendedLine& line : file.lines) {
        after[line.number - 1] = line.after;
        changed.push_back(line.number - 1);
    }
    if (file.endsLastLine && (changed.empty() || changed.back() + 1 != former.size())) {
        changed.push_back(former.size() - 1);
    }
    std::string diff = "--- a/" + file.path + "\n+++ b/" + file.path + "\n";
    for (size_t first = 0; first < changed.size();) {
        size_t last = first;
        while (last + 1 < changed.size() && changed[last + 1] - changed[last] <= 2 * kContext) {
            ++last;
        }
        const size_t begin = changed[first] - std::min(changed[first], kContext);
        const size_t end = std::min(changed[last] + kContext + 1, former.size());
        const std::string range = std::to_string(begin + 1) + "," + std::to_string(end - begin);
        diff.append("@@ -").append(range).append(" +").append(range).append(" @@\n");
        for (size_t i = begin; i < end; ++i) {
            if (!std::binary_search(changed.begin(), changed.end(), i)) {
                diff += " " + std::string(former[i]) + "\n";
                continue;
            }
            const bool gainsEnd = file.endsLastLine && i + 1 == former.size();
            diff += "-" + std::string(former[i]) +
                    (gainsEnd ? "\n\\ No newline at end of file\n+" : "\n+") + after[i] + "\n";
            const bool losesEnd = file.dropsLastEnd && i + 1 == former.size();
            diff += losesEnd ? "\\ No newline at end of file\n" : "";
        }
        first = last + 1;
    }
    return diff;
}

}  // namespace mlk::tree

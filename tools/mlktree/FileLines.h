#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/FileFormat.h"
#include "common/HashIndex.h"
#include "common/ReadObserver.h"
#include "common/TextArena.h"

namespace mlk::tree {

using vendor::morlak::mlkconfigs::V1_0::HidlFreqListItem;
using vendor::morlak::mlkconfigs::V1_0::implementation::FileFormat;
using vendor::morlak::mlkconfigs::V1_0::implementation::LineUse;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProblemKind;
using vendor::morlak::mlkconfigs::V1_0::implementation::ReadLine;
using vendor::morlak::mlkconfigs::V1_0::implementation::ReadObserver;
using vendor::morlak::mlkconfigs::V1_0::implementation::ReadProblem;

/** "project or board file" and so on, for messages. */
std::string_view nameOf(FileFormat format);

/** True for the files that say which set this is. Their keyword counts anywhere in a line. */
bool isIdentity(FileFormat format);

/** True for the formats that are XML: their reader tells elements, not lines. */
bool isXml(FileFormat format);

/** What the reader complained about; line 0 for the whole file. */
struct Problem {
    size_t line;
    ProblemKind kind;
    std::string detail;

    /** As the service logs it. */
    std::string text() const { return textOf(kind, detail); }
    /** True if the file could not be read, or not whole. */
    bool isReadFailure() const {
        return kind == ProblemKind::UNREADABLE || kind == ProblemKind::TOO_LARGE ||
               kind == ProblemKind::READ_ERROR;
    }
};

/**
 * What the service's reader makes of one file of the tree, line by line. Read once, then immutable
 * and thread-safe. The views of the lines belong to this object.
 */
class FileLines : public ReadObserver {
  public:
    FileLines(std::string path, FileFormat format) : mPath(std::move(path)), mFormat(format) {}

    /** Relative to the tree. */
    const std::string& path() const { return mPath; }
    FileFormat format() const { return mFormat; }

    /** False if nothing has that path. */
    bool exists() const { return mExists; }
    /** True if the file exists but is not used, because it cannot be read whole. */
    bool isUnreadable() const;

    /** In the order of the file; `path` of a line is empty. An XML file has its elements here. */
    const std::vector<ReadLine>& lines() const { return mLines; }
    const std::vector<Problem>& problems() const { return mProblems; }

    /** Of a channel plan: the channel of each line with use ITEM, in their order. */
    const std::vector<HidlFreqListItem>& channels() const { return mChannels; }

    /** The line that gives the item its value, by the format's rule; null if none does. */
    const ReadLine* find(std::string_view section, std::string_view key) const;

    /** Whether a line, one of lines(), gives its item the value. */
    bool counts(const ReadLine& line) const { return mCounts[indexOf(line)]; }

    /** Items that do not count, because another line gives their item the value. */
    const std::vector<const ReadLine*>& outdone() const { return mOutdone; }

    /** The content of each line, by its number in LineContents; empty for an XML file. */
    const std::vector<uint32_t>& contents() const { return mContents; }
    /** The content of a line, one of lines() of a text file. */
    uint32_t contentOf(const ReadLine& line) const { return mContents[indexOf(line)]; }

    /** Sections, TV systems or countries that occur, from name to their first line. */
    const std::map<std::string_view, const ReadLine*>& sections() const { return mSections; }

    // Used while the file is read (FileReading.cpp).
    void onLine(const ReadLine& line) override;
    void onProblem(const ReadProblem& problem) override;
    void finish(bool exists, std::vector<HidlFreqListItem> channels);
    void setContents(std::vector<uint32_t> contents) { mContents = std::move(contents); }

  private:
    static uint32_t hashOf(std::string_view section, std::string_view key);

    size_t indexOf(const ReadLine& line) const {
        return static_cast<size_t>(&line - mLines.data());
    }

    std::string_view keep(std::string_view text);

    const std::string mPath;
    const FileFormat mFormat;
    bool mExists = false;
    vendor::morlak::mlkconfigs::V1_0::implementation::TextArena mTexts;
    std::string_view mLastSection;
    std::vector<ReadLine> mLines;
    std::vector<Problem> mProblems;
    std::vector<HidlFreqListItem> mChannels;
    std::map<std::string_view, const ReadLine*> mSections;
    // The lines that count, by the hash of section and key.
    vendor::morlak::mlkconfigs::V1_0::implementation::HashIndex mItems;
    std::vector<bool> mCounts;  // of each line
    std::vector<const ReadLine*> mOutdone;
    std::vector<uint32_t> mContents;  // of each line
};

/** True if the file exists and was read whole, so that what it lacks can be told. */
inline bool isUsable(const FileLines* file) {
    return file != nullptr && file->exists() && !file->isUnreadable();
}

}  // namespace mlk::tree

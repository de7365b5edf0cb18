#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "common/ByteBlock.h"
#include "common/File.h"
#include "common/FileLimits.h"
#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads a text file line by line and holds no more than a chunk of it in memory:
 *
 *     LineReader reader(path, 256, kTag);
 *     std::string_view line;
 *     while (reader.next(line)) { ... }
 *
 * Used for project, board, customer and system files, lists, auxiliary files and saved identities.
 * XML files, channel plans and files delivered to clients have readers of their own.
 *
 * A line longer than the limit is cut: next() returns its beginning, skips the rest, and logs an
 * error with file, line number and limit. One thread at a time.
 *
 * A file that cannot be opened reads as empty; the log reports it unless the file is missing. A
 * read error, or a file larger than its limit, ends the lines early and is logged. failed() tells
 * such an end from the end of the file. A caller that needs the whole file asks failed() after the
 * last line and drops the lines if it is true. Lines returned before the failure are correct; the
 * line during which it happens is not returned.
 */
class LineReader {
  public:
    /** The bytes that may be read, but not used, from any byte of a line on. */
    static constexpr size_t kReadable = ByteBlock::kBytes;

    /**
     * Opens the file.
     *
     * @param path        the file; anything but a regular file is refused
     * @param bufferSize  one more than the limit of a line: a line has at most bufferSize - 1
     *                    bytes, not counting its line feed
     * @param logTag      tag of the log lines; must outlive the reader
     * @param mostBytes   limit of the file's size, skipped bytes included
     * @param observer    hears of problems, and what tell() is given; null for none
     */
    LineReader(std::string path, size_t bufferSize, const char* logTag,
               size_t mostBytes = kMostProjectBytes, ReadObserver* observer = nullptr);

    /** False if the file could not be opened, or was larger than mostBytes when opened. */
    bool isOpen() const { return mBuffer != nullptr; }

    /**
     * True if the file exists but next() did not return all its lines: it could not be opened, has
     * more than mostBytes, or could not be read to its end. False for a missing file.
     */
    bool failed() const { return mFailed; }

    /**
     * Gives the next line without its line feed; a carriage return before it stays. A NUL byte
     * ends the text of its line. The last line needs no line feed.
     *
     * @param line  set to the line, valid until the next call; untouched if no line is left
     * @return false at the end of the file and after a failure, see failed()
     */
    bool next(std::string_view& line);

    /**
     * Gives the text after the first "=" of a line. A line without "=" is logged.
     *
     * @param line   the line that next() gave last
     * @param value  set to the text, a part of the line; untouched if there is no "="
     * @return false if there is no "="
     */
    bool valueOf(std::string_view line, std::string_view& value) const;

    /** Path of the file. */
    const std::string& path() const { return mPath; }

    /** Size of the file in bytes when it was opened. */
    size_t size() const { return mFile.size(); }

    /** Number of the line that next() gave last, from 1; 0 before the first. */
    size_t lineNumber() const { return mLineNumber; }

    /** Logs an error about the line that next() gave last: "path:line: problem". */
    void complain(ProblemKind kind, std::string_view detail = "") const;

    /** True if somebody wants to hear what becomes of the lines. */
    bool isObserved() const { return mObserver != nullptr; }

    /**
     * Tells the observer, if there is one, what became of the line that next() gave last. Adds the
     * path, the number, and whether the line was cut or ended at a NUL.
     *
     * @param text  that line, as next() gave it
     * @param read  the rest: use, section, key, value and whether the item is new
     */
    [[gnu::cold]] void tell(std::string_view text, const ReadLine& read) const;
    void tell(std::string_view text, LineUse use) const {
        if (isObserved()) {
            tellUse(text, use);
        }
    }

    /** Tells the observer, if there is one, that the line has an item that is new. */
    void tellItem(std::string_view text, std::string_view key, std::string_view value) const {
        if (isObserved()) {
            tellKeyAndValue(text, key, value);
        }
    }

  private:
    // Out of line: a reader without an observer pays for a branch a line only.
    [[gnu::cold]] void tellUse(std::string_view text, LineUse use) const;
    [[gnu::cold]] void tellKeyAndValue(std::string_view text, std::string_view key,
                                       std::string_view value) const;
    bool nextUnended(std::string_view& line);
    [[gnu::cold]] std::string_view cut(std::string_view line);
    [[gnu::cold]] std::string_view endAtNul(std::string_view line);
    bool fill();
    bool skipRestOfLine();
    void fail(const std::string& place, size_t line, ProblemKind kind, std::string_view detail);

    const std::string mPath;
    const size_t mLimit;
    const size_t mMostBytes;
    const char* const mLogTag;
    ReadObserver* const mObserver;
    File mFile;
    std::unique_ptr<char[]> mBuffer;
    size_t mCapacity = 0;
    size_t mBegin = 0;  // mBuffer[mBegin, mEnd) is read but not returned yet
    size_t mEnd = 0;
    bool mHasNul = false;  // a NUL may be in that range
    size_t mRead = 0;      // bytes read so far
    bool mAtEnd = false;   // nothing is left to read
    bool mFailed = false;
    bool mInLongLine = false;
    size_t mLineNumber = 0;
    size_t mLastCut = 0;  // number of the last line that was too long
    size_t mLastNul = 0;  // number of the last line that had a NUL
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

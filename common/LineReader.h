#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "common/File.h"
#include "common/FileLimits.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Hands out the lines of a text file, one after the other, without ever holding more than a chunk
 * of it:
 *
 *     LineReader reader(path, 256, kTag);
 *     std::string_view line;
 *     while (reader.next(line)) { ... }
 *
 * Every text format of the configuration partitions is read by this class, so that all of them
 * bound a line in the same way: a line too long is handed out cut to the limit, the rest of it is
 * skipped, and an error line of the log names file, line number and limit. One thread at a time.
 *
 * A file that cannot be opened reads as empty; unless it is merely missing, the log says so. A read
 * error, or more bytes than a file of its kind may have, ends the lines early, with one error line
 * that names the file. failed() tells such an end from that of the file: what a whole answer or a
 * later write is made from has to ask it after the last line, and to drop the lines where it is
 * true. Each line that was handed out before is one of the file's; the one that the failure met is
 * not handed out.
 */
class LineReader {
  public:
    /**
     * Opens the file.
     *
     * @param path        the file; only a regular one is read
     * @param bufferSize  N, the size of the fixed buffer that the format is defined for: a line has
     *                    at most N - 1 bytes, its line feed not counted
     * @param logTag      tag of the log lines; has to outlive the reader
     * @param mostBytes   what the file may have; all bytes count, those that are skipped too
     */
    LineReader(std::string path, size_t bufferSize, const char* logTag,
               size_t mostBytes = kMostProjectBytes);

    /** False when the file could not be opened, or was larger than mostBytes already. */
    bool isOpen() const { return mBuffer != nullptr; }

    /**
     * True when the file exists but its lines are not all there: it could not be opened, has more
     * than mostBytes, or could not be read to its end. False for a missing file.
     */
    bool failed() const { return mFailed; }

    /**
     * Gives the next line, without its line feed; a carriage return before that stays. A NUL byte
     * ends the text of its line. The last line needs no line feed.
     *
     * @param line  set to the line, which is valid until the next call; untouched at the end
     * @return false at the end of the file, and where failed() says why there are no more
     */
    bool next(std::string_view& line);

    /**
     * For a line that assigns something: gives the text after its first "=". A line without one has
     * nothing to say and is complained about.
     *
     * @param line   the line handed out last
     * @param value  set to the text, a part of the line; untouched when there is none
     */
    bool valueOf(std::string_view line, std::string_view& value) const;

    const std::string& path() const { return mPath; }

    /** Bytes of the file. */
    size_t size() const { return mFile.size(); }

    /** Number of the line handed out last, from 1; 0 before the first. */
    size_t lineNumber() const { return mLineNumber; }

    /** Logs an error about the line handed out last: "path:line: problem". */
    void complain(const std::string& problem) const;

  private:
    bool nextUnended(std::string_view& line);
    std::string_view cut(std::string_view line) const;
    bool fill();
    bool skipRestOfLine();
    void fail(const std::string& problem);

    const std::string mPath;
    const size_t mLimit;
    const size_t mMostBytes;
    const char* const mLogTag;
    File mFile;
    std::unique_ptr<char[]> mBuffer;
    size_t mCapacity = 0;
    size_t mBegin = 0;  // what is read and not handed out yet: mBuffer[mBegin, mEnd)
    size_t mEnd = 0;
    bool mHasNul = false;  // somewhere in that
    size_t mRead = 0;      // bytes of the file
    bool mAtEnd = false;   // there is no more to read
    bool mFailed = false;
    bool mInLongLine = false;
    size_t mLineNumber = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

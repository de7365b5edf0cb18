#include "common/LineReader.h"

#include <log/log.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kChunk = size_t{32} * 1024;

}  // namespace

LineReader::LineReader(std::string path, size_t bufferSize, const char* logTag, size_t mostBytes,
                       ReadObserver* observer)
    : mPath(std::move(path)),
      mLimit(bufferSize - 1),
      mMostBytes(mostBytes),
      mLogTag(logTag),
      mObserver(observer),
      mFile(mPath) {
    if (mFile.isOpen() && mFile.size() > mMostBytes) {
        fail(mPath, 0, ProblemKind::TOO_LARGE, largerThan(mMostBytes));
    } else if (mFile.isOpen()) {
        // The buffer always holds one byte more than the limit, which tells that a line is too
        // long. Files of the kernel report size 0.
        const size_t wanted = mFile.size() == 0 ? kChunk : mFile.size() + 1;
        mCapacity = std::max(bufferSize, std::min(kChunk, wanted));
        mBuffer.reset(new char[mCapacity + kReadable]);
    } else if (!mFile.isMissing()) {
        fail(mPath, 0, ProblemKind::UNREADABLE, mFile.reason());
    }
}

bool LineReader::next(std::string_view& line) {
    if (mBegin == mEnd) {
        if (!nextUnended(line)) {
            return false;
        }
    } else {
        const std::string_view unread(mBuffer.get() + mBegin, mEnd - mBegin);
        const uint64_t ends = ByteBlock(unread.data()).where('\n');
        const size_t length =
                ends != 0 ? ByteBlock::firstOf(ends) : unread.find('\n', ByteBlock::kBytes);
        if (length != std::string_view::npos) {
            mBegin += length + 1;
            line = {unread.data(), length};
        } else if (!nextUnended(line)) {
            return false;
        }
    }
    ++mLineNumber;
    if (line.size() > mLimit) {
        line = cut(line);
    }
    if (mHasNul) {
        line = endAtNul(line);
    }
    return true;
}

std::string_view LineReader::endAtNul(std::string_view line) {
    const size_t nul = line.find('\0');
    if (nul != std::string_view::npos) {
        mLastNul = mLineNumber;
    }
    return line.substr(0, nul);
}

// As next(), when the buffer has no line feed.
bool LineReader::nextUnended(std::string_view& line) {
    if (!isOpen() || (mInLongLine && !skipRestOfLine())) {
        return false;
    }
    size_t searched = 0;
    for (;;) {
        const std::string_view unread(mBuffer.get() + mBegin, mEnd - mBegin);
        const size_t length = unread.find('\n', searched);
        if (length != std::string_view::npos) {
            mBegin += length + 1;
            line = unread.substr(0, length);
            return true;
        }
        if (unread.size() > mLimit) {
            mInLongLine = true;
            mBegin = mEnd;
            line = unread;
            return true;
        }
        searched = unread.size();
        if (!fill()) {
            if (mBegin == mEnd) {  // also after a failure: a part of a line does not count
                return false;
            }
            line = std::string_view(mBuffer.get() + mBegin, mEnd - mBegin);
            mBegin = mEnd;
            return true;
        }
    }
}

// Logs a line that is too long and returns its beginning.
std::string_view LineReader::cut(std::string_view line) {
    mLastCut = mLineNumber;
    complain(ProblemKind::LONG_LINE, std::to_string(mLimit));
    return line.substr(0, mLimit);
}

bool LineReader::valueOf(std::string_view line, std::string_view& value) const {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        complain(ProblemKind::NO_EQUALS);
        return false;
    }
    value = line.substr(equals + 1);
    return true;
}

void LineReader::complain(ProblemKind kind, std::string_view detail) const {
    LOG_PRI(ANDROID_LOG_ERROR, mLogTag, "%s:%zu: %s", mPath.c_str(), mLineNumber,
            textOf(kind, detail).c_str());
    if (mObserver != nullptr) {
        mObserver->onProblem({mPath, mLineNumber, kind, detail});
    }
}

void LineReader::tell(std::string_view text, const ReadLine& read) const {
    if (mObserver == nullptr) {
        return;
    }
    ReadLine line = read;
    line.path = mPath;
    line.number = mLineNumber;
    line.text = text;
    line.isCut = mLineNumber == mLastCut;
    line.hasNul = mLineNumber == mLastNul;
    mObserver->onLine(line);
}

void LineReader::tellUse(std::string_view text, LineUse use) const {
    ReadLine read;
    read.use = use;
    tell(text, read);
}

void LineReader::tellKeyAndValue(std::string_view text, std::string_view key,
                                 std::string_view value) const {
    ReadLine read;
    read.use = LineUse::ITEM;
    read.key = key;
    read.value = value;
    tell(text, read);
}

// Refills the buffer after the unread bytes. False at the end of the file and on a failure, which
// drops the unread bytes.
bool LineReader::fill() {
    std::memmove(mBuffer.get(), mBuffer.get() + mBegin, mEnd - mBegin);
    mEnd -= mBegin;
    mBegin = 0;
    if (mAtEnd) {
        return false;
    }
    const size_t free = mCapacity - mEnd;
    const ssize_t result = mFile.read(mBuffer.get() + mEnd, free);
    if (result < 0) {
        const std::string reason = std::generic_category().message(errno);
        fail(mPath + ":" + std::to_string(mLineNumber), mLineNumber, ProblemKind::READ_ERROR,
             reason);
        return false;
    }
    const auto count = static_cast<size_t>(result);
    mRead += count;
    if (mRead > mMostBytes) {
        fail(mPath, 0, ProblemKind::TOO_LARGE, largerThan(mMostBytes));
        return false;
    }
    // Saves the read at the end of a file that has not grown.
    mAtEnd = count == 0 || (count < free && mRead == mFile.size());
    // Text files have no NUL; one search here saves one for each line.
    const std::string_view added(mBuffer.get() + mEnd, count);
    mHasNul = (mHasNul && mEnd > 0) || added.find('\0') != std::string_view::npos;
    mEnd += count;
    std::memset(mBuffer.get() + mEnd, 0, kReadable);  // so that it has no line feeds
    return count > 0;
}

// Ends the reading and logs the problem. The line is for the observer, 0 for the whole file.
void LineReader::fail(const std::string& place, size_t line, ProblemKind kind,
                      std::string_view detail) {
    mFailed = true;
    mAtEnd = true;
    mBegin = mEnd = 0;
    LOG_PRI(ANDROID_LOG_ERROR, mLogTag, "%s: %s", place.c_str(), textOf(kind, detail).c_str());
    if (mObserver != nullptr) {
        mObserver->onProblem({mPath, line, kind, detail});
    }
}

// False if the file ends within that line.
bool LineReader::skipRestOfLine() {
    for (;;) {
        const std::string_view rest(mBuffer.get() + mBegin, mEnd - mBegin);
        const size_t length = rest.find('\n');
        if (length != std::string_view::npos) {
            mBegin += length + 1;
            mInLongLine = false;
            return true;
        }
        mBegin = mEnd;
        if (!fill()) {
            return false;
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

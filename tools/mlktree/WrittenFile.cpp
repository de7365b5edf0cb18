#include "tools/mlktree/WrittenFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

UsageError notWritten(const std::string& path, const std::error_code& code) {
    return UsageError((path.empty() ? "\"\"" : path) + " cannot be written: " + code.message());
}

int openedForWriting(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        throw notWritten(path, {errno, std::generic_category()});
    }
    return descriptor;
}

}  // namespace

WrittenFile::WrittenFile(const std::string& path)
    : mPath(path), mDescriptor(openedForWriting(path)), mOutput(mDescriptor) {}

WrittenFile::~WrittenFile() {
    if (mDescriptor >= 0) {
        close(mDescriptor);
    }
}

void WrittenFile::write(std::string_view text) {
    try {
        mOutput.write(text);
    } catch (const std::system_error& error) {
        // The output's own message speaks of standard output.
        throw notWritten(mPath, error.code());
    }
}

void WrittenFile::finish() {
    try {
        mOutput.flush();
    } catch (const std::system_error& error) {
        throw notWritten(mPath, error.code());
    }
    if (close(std::exchange(mDescriptor, -1)) != 0) {
        throw notWritten(mPath, {errno, std::generic_category()});
    }
}

}  // namespace mlk::tree

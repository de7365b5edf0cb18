#include "tvconfigs/FileConfigEditor.h"

#include <android/log.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>

#include "common/SaveFile.h"
#include "tvconfigs/LogTag.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kPathSize = 128;   // the NUL at its end included
constexpr size_t kLineSize = 1024;  // the same
constexpr size_t kBlockSize = size_t{1} << 14U;
// A real file has 2 KiB and 28 entries. Clients may name any file.
constexpr size_t kFileSize = size_t{1} << 22U;
constexpr size_t kEntries = size_t{1} << 16U;

std::string pathOf(const char* path) {
    return path == nullptr ? std::string() : std::string(path, strnlen(path, kPathSize - 1));
}

/// An entry as the file has it. Formatted into a line buffer and written up to its first line feed:
/// one that does not fit is the buffer's whole content.
std::string lineOf(const std::string& key, const std::string& value) {
    std::string line = key + '=' + value + '\n';
    line.resize(std::min(line.size(), kLineSize - 1));
    const size_t end = line.find('\n');
    if (end == std::string::npos) {
        line += '\0';
    } else {
        line.resize(end + 1);
    }
    return line;
}

/// Whether a file that may be written has exactly this text.
bool holds(const char* path, const std::string& text) {
    File file(path, O_RDWR);
    if (!file.isOpen() || file.size() != text.size()) {
        return false;
    }
    std::string content(text.size(), '\0');
    size_t end = 0;
    while (end < content.size()) {
        const ssize_t count = file.read(content.data() + end, content.size() - end);
        if (count <= 0) {
            return false;
        }
        end += static_cast<size_t>(count);
    }
    return content == text;
}

/// The entry of that key that counts, or the end.
template <typename Items>
auto firstOf(Items& items, const char* key) {
    return std::find_if(items.begin(), items.end(),
                        [&](const auto& item) { return item.first == key; });
}

/// Whether the line buffer takes another character; the log says so when it does not.
bool hasRoom(const std::string& line) {
    if (line.size() < kLineSize) {
        return true;
    }
    __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "ERROR: line out of buf size=%d",
                        static_cast<int>(kLineSize));
    return false;
}

}  // namespace

FileConfigEditor::FileConfigEditor(const char* path) : mPath(pathOf(path)) {
    Update(mPath.c_str());
}

bool FileConfigEditor::Update(const char* path) {
    const std::string name = path == nullptr ? "" : path;
    File file(name);
    if (!file.isOpen()) {
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "ERROR: Open %s fail!", name.c_str());
        return false;
    }
    // An error line on purpose: which file counts is seen with every filter.
    __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "Open %s success!", name.c_str());
    Items items;
    std::string problem;
    try {
        problem = ReadItems(file, items);
    } catch (const std::bad_alloc&) {
        problem = "out of memory";
    }
    if (!problem.empty()) {
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "ERROR: Read %s fail! %s",
                            name.c_str(), problem.c_str());
        return false;
    }
    mItems = std::move(items);
    return true;
}

// Gives what kept the file from being read whole, or nothing.
std::string FileConfigEditor::ReadItems(File& file, Items& items) {
    const auto block = std::make_unique<char[]>(kBlockSize);
    std::string line;
    line.reserve(kLineSize);
    size_t total = 0;
    for (;;) {
        const ssize_t count = file.read(block.get(), kBlockSize);
        if (count < 0) {
            return std::generic_category().message(errno);
        }
        if (count == 0) {
            break;
        }
        const std::string_view bytes(block.get(), static_cast<size_t>(count));
        total += bytes.size();
        if (total > kFileSize) {
            return "more than " + std::to_string(kFileSize) + " bytes";
        }
        for (const char byte : bytes) {
            if (!TakeByte(byte, line, items)) {
                return {};
            }
            if (items.size() > kEntries) {
                return "more than " + std::to_string(kEntries) + " entries";
            }
        }
    }
    hasRoom(line);  // at the end of the file too, a full line is one that is too long
    return {};
}

bool FileConfigEditor::TakeByte(char byte, std::string& line, Items& items) {
    // In this order: a NUL byte behind a full line is no error, while a carriage return, a line
    // feed or the end of the file is one.
    if (byte == '\0' || !hasRoom(line)) {
        return false;
    }
    if (byte == '\n') {
        if (line.empty() || line.front() != '#') {
            AddLine(line.c_str(), items);
        }
        line.clear();
    } else if (byte != '\r') {
        line += byte;
    }
    return true;
}

bool FileConfigEditor::AddLine(const char* line, Items& items) {
    const char* const equals = strrchr(line, '=');
    if (equals == nullptr) {
        return false;
    }
    items.emplace_back(std::string(line, equals), equals + 1);
    return true;
}

bool FileConfigEditor::UpdateList(const char* line) {
    return line != nullptr && AddLine(line, mItems);
}

bool FileConfigEditor::UpdateValue(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return false;
    }
    const auto item = firstOf(mItems, key);
    if (item == mItems.end()) {
        return false;
    }
    item->second = value;
    return true;
}

bool FileConfigEditor::Save(const char* path) {
    if (path == nullptr) {
        return false;
    }
    std::string text;
    for (const auto& [key, value] : mItems) {
        text += lineOf(key, value);
    }
    // Each start sets an entry to what it is: that wears no flash, and waits for none.
    if (mIsStored && holds(path, text)) {
        return true;
    }
    const Saved saved = saveFile(path, std::move(text));
    mIsStored = saved == Saved::DONE;
    if (saved == Saved::NOT_WRITTEN) {
        const std::string reason = std::generic_category().message(errno);
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "ERROR: Write %s fail! %s", path,
                            reason.c_str());
    }
    return saved != Saved::NOT_OPENED;
}

bool FileConfigEditor::Set(const char* key, const char* value) {
    return UpdateValue(key, value) && Save(mPath.c_str());
}

bool FileConfigEditor::Get(const char* key, char* value) const {
    if (key == nullptr || value == nullptr) {
        return false;
    }
    const auto item = firstOf(mItems, key);
    if (item == mItems.end()) {
        return false;
    }
    snprintf(value, kValueSize, "%s", item->second.c_str());
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

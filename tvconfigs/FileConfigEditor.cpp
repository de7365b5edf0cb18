#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/FileConfigEditor.h"

#include <log/log.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/FileLimits.h"
#include "common/ReadProblem.h"
#include "common/SaveFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kBlockSize = size_t{1} << 14U;

std::string pathOf(const char* path) {
    return path == nullptr ? std::string() : std::string(path, strnlen(path, kFeaturePathSize - 1));
}

// An entry as it is written: the content of a line buffer up to its first line feed, or all of it
// if the line feed does not fit.
std::string lineOf(const std::string& key, const std::string& value) {
    std::string line = key + '=' + value + '\n';
    line.resize(std::min(line.size(), kFeatureLineSize - 1));
    const size_t end = line.find('\n');
    if (end == std::string::npos) {
        line += '\0';
    } else {
        line.resize(end + 1);
    }
    return line;
}

// Whether a file holds exactly this text and may be written.
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

// The first entry of the key, or the end.
template <typename Items>
auto firstOf(Items& items, const char* key) {
    return std::find_if(items.begin(), items.end(),
                        [&](const auto& item) { return item.first == key; });
}

// The value of the key's first entry, if there is one that can be set to `value`; else null.
template <typename Items>
auto* valueToSet(Items& items, const char* key, const char* value) {
    const auto item = key == nullptr || value == nullptr ? items.end() : firstOf(items, key);
    return item == items.end() ? nullptr : &item->second;
}

// Whether the line buffer takes another character. Logs it if not.
bool checkRoom(const std::string& line) {
    if (line.size() < kFeatureLineSize) {
        return true;
    }
    ALOGE("ERROR: line out of buf size=%d", static_cast<int>(kFeatureLineSize));
    return false;
}

}  // namespace

// Follows the lines of the file for the observer.
class FileConfigEditor::Lines {
  public:
    Lines(const std::string& path, ReadObserver* observer) : mObserver(observer) {
        mRead.path = path;
    }

    /** Moves to the next line and tells the observer, if there is one, what became of it. */
    void tell(const std::string& line, LineUse use, const Item* item = nullptr) {
        ++mRead.number;
        if (mObserver == nullptr) {
            return;
        }
        mRead.use = use;
        mRead.text = line;
        mRead.key = item != nullptr ? std::string_view(item->first) : "";
        mRead.value = item != nullptr ? std::string_view(item->second) : "";
        mObserver->onLine(mRead);
    }
    /** The same for a line that is too long, or has a NUL, and so ends the reading. */
    void tellEnd(const std::string& line, bool isTooLong) {
        if (isTooLong && mObserver != nullptr) {
            mObserver->onProblem({mRead.path, mRead.number + 1, ProblemKind::LAST_LINE,
                                  std::to_string(kFeatureLineSize - 1)});
        }
        mRead.isCut = isTooLong;
        mRead.hasNul = !isTooLong;
        tell(line, LineUse::LOST);
    }

  private:
    ReadObserver* const mObserver;
    ReadLine mRead;
};

FileConfigEditor::FileConfigEditor(const char* path, ReadObserver* observer)
    : mPath(pathOf(path)), mObserver(observer) {
    Update(mPath.c_str());
}

bool FileConfigEditor::Update(const char* path, Items* former) {
    const std::string name = path == nullptr ? "" : path;
    File file(name);
    if (!file.isOpen()) {
        ALOGE("ERROR: Open %s fail!", name.c_str());
        if (file.isMissing()) {
            return false;
        }
        const std::string reason = file.reason();
        ALOGE("%s: %s", name.c_str(), textOf(ProblemKind::UNREADABLE, reason).c_str());
        if (mObserver != nullptr) {
            mObserver->onProblem({name, 0, ProblemKind::UNREADABLE, reason});
        }
        return false;
    }
    // An error line on purpose: every filter shows which file is in use.
    ALOGE("Open %s success!", name.c_str());
    Items items;
    std::string problem;
    try {
        problem = ReadItems(file, items, Lines(name, mObserver));
    } catch (const std::bad_alloc&) {
        problem = "out of memory";
    }
    if (!problem.empty()) {
        ALOGE("ERROR: Read %s fail! %s", name.c_str(), problem.c_str());
        if (mObserver != nullptr) {
            mObserver->onProblem({name, 0, ProblemKind::UNREADABLE, problem});
        }
        return false;
    }
    std::swap(mItems, items);
    if (former != nullptr) {
        *former = std::move(items);
    }
    return true;
}

// Returns what kept the file from being read whole, or an empty text.
std::string FileConfigEditor::ReadItems(File& file, Items& items, Lines lines) {
    const auto block = std::make_unique<char[]>(kBlockSize);
    std::string line;
    line.reserve(kFeatureLineSize);
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
        if (total > kMostFeatureBytes) {
            return "more than " + std::to_string(kMostFeatureBytes) + " bytes";
        }
        for (const char byte : bytes) {
            if (!TakeByte(byte, line, items, lines)) {
                lines.tellEnd(line, byte != '\0');
                return {};
            }
            if (items.size() > kMostFeatures) {
                return "more than " + std::to_string(kMostFeatures) + " entries";
            }
        }
    }
    const bool fits = checkRoom(line);  // a full line is too long at the end of the file, too
    if (!fits) {
        lines.tellEnd(line, true);
    } else if (!line.empty()) {
        lines.tell(line, LineUse::LOST);
    }
    return {};
}

bool FileConfigEditor::TakeByte(char byte, std::string& line, Items& items, Lines& lines) {
    // The order matters: after a full line, a NUL byte is no error, but a carriage return, a line
    // feed or the end of the file is one.
    if (byte == '\0' || !checkRoom(line)) {
        return false;
    }
    if (byte == '\n') {
        if (line.empty() || line.front() == '#') {
            lines.tell(line, LineUse::NOTHING);
        } else if (AddLine(line.c_str(), items)) {
            lines.tell(line, LineUse::ITEM, &items.back());
        } else {
            lines.tell(line, LineUse::IGNORED);
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
    std::string* const stored = valueToSet(mItems, key, value);
    if (stored == nullptr) {
        return false;
    }
    *stored = value;
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
    // Each start sets an entry to its present value. That need not write to flash, or wait for it.
    if (mIsStored && holds(path, text)) {
        return true;
    }
    const Saved saved = saveFile(path, std::move(text));
    mIsStored = saved == Saved::DONE;
    if (saved == Saved::NOT_WRITTEN) {
        const std::string reason = std::generic_category().message(errno);
        ALOGE("ERROR: Write %s fail! %s", path, reason.c_str());
    }
    return saved != Saved::NOT_OPENED;
}

bool FileConfigEditor::Set(const char* key, const char* value) {
    std::string* const stored = valueToSet(mItems, key, value);
    if (stored == nullptr) {
        return false;
    }
    std::string other = value;
    stored->swap(other);
    try {
        return Save(mPath.c_str());
    } catch (const std::bad_alloc&) {
        // Otherwise the next change of another entry would write this one.
        stored->swap(other);
        throw;
    }
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

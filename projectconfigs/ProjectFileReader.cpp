#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectFileReader.h"

#include <log/log.h>

#include <algorithm>
#include <set>
#include <utility>

#include "common/Decimal.h"
#include "common/LineReader.h"
#include "common/Partitions.h"
#include "common/Paths.h"
#include "common/Texts.h"
#include "projectconfigs/ChainKeywords.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr auto npos = std::string_view::npos;

// Removes the comment and the carriage returns at the end of what is left.
std::string_view withoutComment(std::string_view text) {
    text = text.substr(0, text.find('#'));
    while (!text.empty() && text.back() == '\r') {
        text.remove_suffix(1);
    }
    return text;
}

bool hasSymbols(std::string_view text) {
    return text.find('"') != npos || text.find(';') != npos;
}

// Removes quotes and semicolons everywhere, and then spaces at both ends. The result is a part of
// the text, unless there is a quote or semicolon in the middle: then it is in scratch.
std::string_view withoutSymbols(std::string_view text, TextArena& scratch) {
    const auto isSymbol = [](char c) { return c == '"' || c == ';'; };
    const auto goes = [&](char c) { return c == ' ' || isSymbol(c); };
    while (!text.empty() && goes(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && goes(text.back())) {
        text.remove_suffix(1);
    }
    if (!hasSymbols(text)) {
        return text;
    }
    char* const copy = scratch.allocate(text.size());
    const char* const end = std::remove_copy_if(text.begin(), text.end(), copy, isSymbol);
    return {copy, static_cast<size_t>(end - copy)};
}

// The part of a line from the first to the last byte that has a bit.
std::string_view partOf(std::string_view line, uint64_t bits) {
    if (bits == 0) {
        return line.substr(0, 0);
    }
    const size_t begin = ByteBlock::firstOf(bits);
    return {line.data() + begin, ByteBlock::endOf(bits) - begin};
}

// Finds the cleaned key and value of most lines: those that have a "=", all before the comment in
// the first 64 bytes, and no quote or semicolon within key or value. False for other lines.
//
// The line must be one of a LineReader.
bool splitUsualLine(std::string_view line, std::string_view& key, std::string_view& value) {
    const ByteBlock block(line.data());
    const uint64_t comments = block.where('#') & ByteBlock::before(line.size());
    size_t size = comments != 0 ? ByteBlock::firstOf(comments) : line.size();
    while (size > 0 && line[size - 1] == '\r') {
        --size;
    }
    const uint64_t code = ByteBlock::before(size);
    const uint64_t equals = block.where('=') & code;
    if (equals == 0 || size > ByteBlock::kBytes) {
        return false;
    }
    const uint64_t symbols = (block.where('"') | block.where(';')) & code;
    const uint64_t kept = code & ~symbols & ~block.where(' ');
    const uint64_t beforeEquals = ByteBlock::beforeFirst(equals);
    const uint64_t keyBits = kept & beforeEquals;
    const uint64_t valueBits = kept & ~(beforeEquals << 1 | 1);
    key = partOf(line, keyBits);
    value = partOf(line, valueBits);
    return (symbols & (ByteBlock::filled(keyBits) | ByteBlock::filled(valueBits))) == 0;
}

bool contains(std::string_view line, std::string_view word) {
    return line.find(word) != npos;
}

// The readers call these only if somebody observes.
[[gnu::cold]] void tellSection(const LineReader& reader, std::string_view line,
                               std::string_view name) {
    ReadLine read;
    read.use = LineUse::SECTION;
    read.section = name;
    reader.tell(line, read);
}

[[gnu::cold]] void tellItem(const LineReader& reader, std::string_view line,
                            std::string_view section, std::string_view key, std::string_view value,
                            bool isNew) {
    ReadLine read;
    read.use = LineUse::ITEM;
    read.section = section;
    read.key = key;
    read.value = value;
    read.isNew = isNew;
    reader.tell(line, read);
}

// Adds the number to those that the observer has heard of.
[[gnu::cold]] void tellModel(const LineReader& reader, std::string_view line, int32_t number,
                             std::string_view path, std::set<int32_t>& told) {
    const std::string key = std::string(keyword::kModel) + std::to_string(number);
    tellItem(reader, line, "", key, path, told.insert(number).second);
}

}  // namespace

ProjectFileReader::ProjectFileReader(const char* tvdataPath, const char* tvconfigsPath,
                                     const char* impdataPath, ReadObserver* observer)
    : mTvdataPath(orEmpty(tvdataPath)),
      mTvconfigsPath(orEmpty(tvconfigsPath)),
      mImpdataPath(orEmpty(impdataPath)),
      mObserver(observer) {}

bool ProjectFileReader::isMissing(const std::string& path, const char* function, int sourceLine) {
    if (pathExists(path)) {
        return false;
    }
    ALOGD("[%s %d] %s don't exist.", function, sourceLine, path.c_str());
    return true;
}

void ProjectFileReader::parse_customer_ini(const char* path, std::string& customerId,
                                           std::string& sysIniPath) {
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    LineReader reader(path, kListBufferSize, LOG_TAG, kMostProjectBytes, mObserver);
    std::string_view line;
    std::string_view value;
    bool hasCustomerId = false;
    bool hasSystemFile = false;
    while (reader.next(line)) {
        const bool isCustomerId = contains(line, keyword::kCustomerId);
        if (!isCustomerId && !contains(line, keyword::kSystemFile)) {
            reader.tell(line, LineUse::NOTHING);
            continue;
        }
        if (!reader.valueOf(line, value)) {
            reader.tell(line, LineUse::IGNORED);
            continue;
        }
        value = eraseSymbol(value);
        if (reader.isObserved()) {
            bool& isKnown = isCustomerId ? hasCustomerId : hasSystemFile;
            tellItem(reader, line, "", isCustomerId ? keyword::kCustomerId : keyword::kSystemFile,
                     value, !isKnown);
            isKnown = true;
        }
        if (isCustomerId) {
            customerId = value;
        } else {
            sysIniPath = PatchIniItemPath(value);
        }
    }
}

void ProjectFileReader::parse_sys_ini(const char* path, int32_t projectId,
                                      std::string& projectIniPath, uint32_t& maxIdx) {
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    LineReader reader(path, kListBufferSize, LOG_TAG, kMostProjectBytes, mObserver);
    std::string_view line;
    std::string_view value;
    std::set<int32_t> told;
    while (reader.next(line)) {
        const size_t model = line.find(keyword::kModel);
        if (model == npos) {
            reader.tell(line, LineUse::NOTHING);
            continue;
        }
        if (!reader.valueOf(line, value)) {
            reader.tell(line, LineUse::IGNORED);
            continue;
        }
        const int32_t number = parseDecimal(line.substr(model + keyword::kModel.size()));
        if (reader.isObserved()) {
            tellModel(reader, line, number, eraseSymbol(value), told);
        }
        // Unsigned: a negative number counts as larger than all others.
        maxIdx = std::max(maxIdx, static_cast<uint32_t>(number));
        if (number == projectId) {
            projectIniPath = PatchIniItemPath(eraseSymbol(value));
        }
    }
}

bool ProjectFileReader::parse_project_ini(const char* path, ItemStore& items) {
    if (path == nullptr) {
        ALOGD("path is null");
        return true;
    }
    if (isMissing(path, __func__, __LINE__)) {
        return true;
    }
    LineReader reader(path, kProjectBufferSize, LOG_TAG, kMostProjectBytes, mObserver);
    items.expect(reader.size());
    ItemStore::Section section = items.section("");
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty() || line.front() == '\r' || line.front() == '#') {
            reader.tell(line, LineUse::NOTHING);
        } else if (line.front() == '[') {
            const std::string_view name = eraseSymbol(line);
            section = items.section(name);
            if (reader.isObserved()) {
                tellSection(reader, line, name);
            }
        } else {
            addNewItem(items, section, line, reader);
        }
    }
    return !reader.failed();
}

std::string_view ProjectFileReader::eraseSymbol(std::string_view text) {
    mScratch.clear();
    return withoutSymbols(withoutComment(text), mScratch);
}

std::string_view ProjectFileReader::cleanPath(std::string_view value) {
    return PatchIniItemPath(eraseSymbol(value));
}

void ProjectFileReader::addNewItem(ItemStore& items, ItemStore::Section section,
                                   std::string_view wholeLine, const LineReader& reader) {
    std::string_view key;
    std::string_view written;
    mScratch.clear();
    if (!splitUsualLine(wholeLine, key, written)) {
        const std::string_view line = withoutComment(wholeLine);
        const size_t equals = line.find('=');
        key = withoutSymbols(line.substr(0, equals), mScratch);
        written = equals == npos ? key : withoutSymbols(line.substr(equals + 1), mScratch);
    }
    if (reader.isObserved()) {
        // Told before it is added, so that nothing has to be kept for an observer that is not
        // there.
        const std::string_view name = items.nameOf(section);
        tellItem(reader, wholeLine, name, key, written, items.find(name, key) == ItemStore::kNone);
    }
    const std::string_view value = PatchIniItemPath(written);
    const auto [item, isNew] = items.insertReadable(section, key, value);
    if (!isNew) {
        const std::string text(value);
        ALOGD("[%s %d] update value (%s -> %s) due to the same key (%s)", __func__, __LINE__,
              items.valueOf(item).data(), text.c_str(), items.keyOf(item).data());
        items.replace(item, value);
    }
}

std::string_view ProjectFileReader::PatchIniItemPath(std::string_view value) {
    if (!beginsWith(value, "/")) {
        return value;
    }
    // The prefix need not be followed by a "/".
    const std::pair<std::string_view, std::string_view> prefixes[] = {
            {partition::kTvconfigs, mTvconfigsPath},
            {partition::kTvdata, mTvdataPath},
            {partition::kImpdata, mImpdataPath}};
    for (const auto& [prefix, mountPoint] : prefixes) {
        if (beginsWith(value, prefix)) {
            const std::string_view rest = value.substr(prefix.size());
            char* const patched = mScratch.allocate(mountPoint.size() + rest.size());
            std::copy(rest.begin(), rest.end(),
                      std::copy(mountPoint.begin(), mountPoint.end(), patched));
            return {patched, mountPoint.size() + rest.size()};
        }
    }
    return value;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "tools/mlktree/report/FileTable.h"

#include <sys/stat.h>

#include <algorithm>
#include <set>

#include "tools/common/Json.h"
#include "tools/mlktree/rules/MeaningUnused.h"

namespace mlk::tree {

namespace {

bool isText(const ReportedFile& file) {
    const bool isRead = file.lines != nullptr && file.lines->format() != FileFormat::OPAQUE;
    return file.exists && file.bytes <= FileTable::kMostBytesOfFile && isRead;
}

std::string kindOf(const FileLines* lines) {
    if (lines == nullptr || lines->format() == FileFormat::OPAQUE) {
        return "file that a set hands out";
    }
    return std::string(nameOf(lines->format()));
}

// Line, value, and the line that counts, in threes: the lines that a later one replaces.
std::string lostJson(const FileLines& file, TextTable& texts) {
    NumberList lost;
    for (const ReadLine& read : file.lines()) {
        if (read.use != LineUse::ITEM) {
            continue;
        }
        const ReadLine* const current = file.find(read.section, read.key);
        if (current != nullptr && current != &read) {
            lost.add(read.number).add(texts.idOf(read.value)).add(current->number);
        }
    }
    return lost.json();
}

}  // namespace

FileTable::FileTable(const ProductLine& line, const std::vector<std::string>& found) : mLine(line) {
    std::map<std::string, ReportedFile> files;
    for (const auto& [path, lines] : line.files()) {
        files[path].lines = lines.get();
        files[path].kind = kindOf(lines.get());
    }
    for (const auto& [path, namings] : line.namedPaths()) {
        if (files.count(path) == 0) {
            files[path].kind = kindOf(nullptr);
        }
    }
    for (const std::string& path : unusedFilesOf(line)) {
        files[path].kind = "file that nothing names";
        files[path].isUnused = true;
    }
    for (const std::string& path : found) {
        ReportedFile& file = files[path];
        if (file.kind.empty()) {
            file.kind = "other file";
            file.hasText = true;
        }
    }
    for (auto& [path, file] : files) {
        struct stat info {};
        file.path = path;
        file.exists = stat(line.tree().host(path).c_str(), &info) == 0;
        const bool isFile = file.exists && S_ISREG(info.st_mode);
        file.bytes = isFile ? static_cast<uint64_t>(info.st_size) : 0;
        file.hasText = (file.hasText && isFile && file.bytes <= kMostBytesOfFile) || isText(file);
        mFiles.push_back(std::move(file));
    }
    for (size_t i = 0; i < mFiles.size(); ++i) {
        mIds.emplace(mFiles[i].path, i);
    }
}

size_t FileTable::idOf(std::string_view path) const {
    const auto found = mIds.find(path);
    return found != mIds.end() ? found->second : mFiles.size();
}

std::string FileTable::jsonOf(const ReportedFile& file, TextTable& texts) const {
    JsonObject object;
    object.number("path", static_cast<int64_t>(texts.idOf(file.path)))
            .number("kind", static_cast<int64_t>(texts.idOf(file.kind)))
            .number("bytes", static_cast<int64_t>(file.bytes))
            .number("exists", file.exists ? 1 : 0)
            .number("unused", file.isUnused ? 1 : 0);
    NumberList sets;
    for (const std::string& group : mLine.setsOf(file.path)) {
        sets.add(texts.idOf(group));
    }
    object.json("sets", sets.json());
    NumberList namings;  // file and line in turns; -1 for a name that the service has itself
    for (const Naming& naming : mLine.namings(file.path)) {
        const bool hasLine = naming.file != nullptr && naming.line != nullptr;
        namings.addSigned(hasLine ? static_cast<int64_t>(idOf(naming.file->path())) : -1)
                .add(hasLine ? naming.line->number : 0);
    }
    object.json("named", namings.json());
    if (file.lines != nullptr && file.lines->format() == FileFormat::PROJECT) {
        object.json("lost", lostJson(*file.lines, texts));
    }
    if (file.hasText) {
        NumberList lines;
        for (const std::string_view line : mLine.sources().lines(file.path)) {
            lines.add(texts.idOf(line.substr(0, kMostBytesOfLine)));
        }
        object.json("lines", lines.json());
    }
    return object.str();
}

std::string FileTable::json(TextTable& texts) const {
    std::vector<std::string> files;
    files.reserve(mFiles.size());
    for (const ReportedFile& file : mFiles) {
        files.push_back(jsonOf(file, texts));
    }
    return jsonArray(files);
}

}  // namespace mlk::tree

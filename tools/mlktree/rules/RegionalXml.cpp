#include "tools/mlktree/rules/RegionalXml.h"

#include <algorithm>

#include "regional/RegionalNames.h"
#include "tools/mlktree/Reporter.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;

// What lies further away is not looked at: a file may be one line of many megabytes.
constexpr size_t kMostLines = 64;
constexpr size_t kMostOfLine = 4096;

std::string_view sourceLine(const ProductLine& line, const FileLines& file, size_t number) {
    return line.sources().line(file.path(), number).substr(0, kMostOfLine);
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.' || c == ':';
}

std::string_view nameAt(std::string_view text, size_t at) {
    size_t end = at;
    while (end < text.size() && isNameCharacter(text[end])) {
        ++end;
    }
    return text.substr(at, end - at);
}

}  // namespace

std::vector<const FileLines*> xmlFilesOf(const ProductLine& line) {
    std::vector<const FileLines*> files;
    for (const auto& [path, file] : line.files()) {
        if (isXml(file->format()) && isUsable(file.get())) {
            files.push_back(file.get());
        }
    }
    return files;
}

std::string_view blockElementOf(FileFormat format) {
    if (format == FileFormat::TV_SYSTEMS) {
        return element::kTvSystem;
    }
    return format == FileFormat::COUNTRY_MAP ? element::kCountry : element::kPlansOfCountry;
}

std::vector<std::string_view> elementsIn(FileFormat format, const char* parent) {
    std::vector<std::string_view> names;
    for (const product::ElementRow& row : product::kElements) {
        const bool isChild = parent == nullptr || row.parent == nullptr
                                     ? parent == row.parent
                                     : std::string_view(row.parent) == parent;
        if (row.file == format && isChild) {
            names.emplace_back(row.name);
        }
    }
    return names;
}

std::vector<SourceName> attributesOf(const ProductLine& line, const FileLines& file,
                                     const ReadLine& read) {
    std::vector<SourceName> names;
    // The element's own line may have others before it.
    Place begin = placeOf(line, file, read, "<" + std::string(read.key));
    size_t at = begin.column;
    char quote = '\0';
    for (size_t i = 0; i < kMostLines; ++i, at = 0) {
        const std::string_view text = sourceLine(line, file, read.number + i);
        at += i == 0 ? nameAt(text, at).size() : 0;
        for (; at < text.size(); ++at) {
            const char c = text[at];
            if (quote != '\0') {
                quote = c == quote ? '\0' : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                return names;
            } else if (isNameCharacter(c)) {
                const std::string_view name = nameAt(text, at);
                names.push_back({std::string(name), {file.path(), read.number + i, at + 1}});
                at += name.size() - 1;
            }
        }
    }
    return names;
}

std::vector<SourceName> elementsInIgnored(const ProductLine& line, const FileLines& file,
                                          const ReadLine& block) {
    std::vector<SourceName> names;
    const std::string begin = "<" + std::string(block.key);
    const std::string end = "</" + std::string(block.key);
    const std::string_view first = sourceLine(line, file, block.number);
    const size_t close = first.find('>', std::min(first.find(begin), first.size()));
    if (close != std::string_view::npos && first[close - 1] == '/') {
        return names;
    }
    for (size_t i = 0; i < kMostLines; ++i) {
        const std::string_view text = sourceLine(line, file, block.number + i);
        for (size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
            if (text.substr(at, end.size()) == end) {
                return names;
            }
            ++at;
            const std::string_view name = nameAt(text, at);
            if (!name.empty() && name != block.key) {
                names.push_back({std::string(name), {file.path(), block.number + i, at + 1}});
            }
        }
    }
    return names;
}

Complaints::Complaints(const FileLines& file) {
    for (const Problem& problem : file.problems()) {
        mLines.insert(problem.line);
    }
}

}  // namespace mlk::tree

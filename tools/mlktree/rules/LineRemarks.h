#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Reporter.h"

namespace mlk::tree {

/** What a rule has to say about a line. */
struct Remark {
    size_t column; /**< where the caret shall stand; see columnOf() */
    std::string message;
    bool isSpoiling = false; /**< what other rules find in the line follows from this */
};

/**
 * Looks at a line of a text file. The answer depends on the format and on the content of the line
 * alone, not on its file, its number, or isNew: it holds for all lines that read alike.
 */
using LineCheck = std::optional<Remark> (*)(FileFormat format, const ReadLine& read);

/** The numbers of the contents for which a test of format and line holds. */
template <typename Test>
std::vector<bool> contentsThat(const ProductLine& line, const Test& test) {
    std::vector<bool> contents(line.contents().size());
    for (size_t i = 0; i < contents.size(); ++i) {
        contents[i] = test(line.contents()[i].format, *line.contents()[i].line);
    }
    return contents;
}

/** The lines of a file that have one of these contents, in their order. */
std::vector<const ReadLine*> linesThat(const FileLines& file, const std::vector<bool>& contents);

/** Reports each line of files of these formats, of all text files if none is named, that gets a
 * remark. */
void remarkLines(const ProductLine& line, Reporter& reporter,
                 std::initializer_list<FileFormat> formats, LineCheck check);

/** The same as the function of a rule. */
template <LineCheck kCheck, FileFormat... kFormats>
void checkLines(const ProductLine& line, Reporter& reporter) {
    remarkLines(line, reporter, {kFormats...}, kCheck);
}

}  // namespace mlk::tree

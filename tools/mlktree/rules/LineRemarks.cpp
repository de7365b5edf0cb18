#include "tools/mlktree/rules/LineRemarks.h"

#include <algorithm>
#include <utility>

namespace mlk::tree {

std::vector<const ReadLine*> linesThat(const FileLines& file, const std::vector<bool>& contents) {
    std::vector<const ReadLine*> lines;
    for (size_t i = 0; i < file.contents().size(); ++i) {
        if (contents[file.contents()[i]]) {
            lines.push_back(&file.lines()[i]);
        }
    }
    return lines;
}

void remarkLines(const ProductLine& line, Reporter& reporter,
                 std::initializer_list<FileFormat> formats, LineCheck check) {
    const auto isOfFormat = [&](FileFormat format) {
        return formats.size() == 0 ||
               std::find(formats.begin(), formats.end(), format) != formats.end();
    };
    const std::vector<bool> remarkable =
            contentsThat(line, [&](FileFormat format, const ReadLine& read) {
                return isOfFormat(format) && check(format, read);
            });
    if (std::find(remarkable.begin(), remarkable.end(), true) == remarkable.end()) {
        return;
    }
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine* const read : linesThat(*file, remarkable)) {
            // Made anew for each line: a file full of mistakes has many remarks.
            Remark remark = *check(file->format(), *read);
            const Place place{path, read->number, remark.column};
            if (remark.isSpoiling) {
                reporter.reportSpoilt(place, {read->number, read->number},
                                      std::move(remark.message));
            } else {
                reporter.report(place, std::move(remark.message));
            }
        }
    }
}

}  // namespace mlk::tree

// Collects the comments of a whole product line.

#include <iterator>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Suppressions.h"

namespace mlk::tree {

std::vector<AllowComment> allowCommentsOf(const ProductLine& line) {
    std::vector<AllowComment> all;
    for (const auto& [path, file] : line.files()) {
        std::vector<AllowComment> found =
                isXml(file->format()) ? allowCommentsOfXml(path, line.sources().lines(path))
                                      : allowComments(path, file->lines());
        std::move(found.begin(), found.end(), std::back_inserter(all));
    }
    return all;
}

}  // namespace mlk::tree

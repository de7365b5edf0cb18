#include "tools/mlktree/Finding.h"

#include <tuple>

namespace mlk::tree {

std::string_view nameOf(Severity severity) {
    switch (severity) {
        case Severity::OFF:
            return "off";
        case Severity::NOTE:
            return "note";
        case Severity::WARNING:
            return "warning";
        case Severity::ERROR:
            return "error";
    }
    return "";
}

bool operator<(const Finding& a, const Finding& b) {
    const auto key = [](const Finding& f) {
        return std::tie(f.place.file, f.place.line, f.place.column, f.rule, f.message);
    };
    return key(a) < key(b);
}

}  // namespace mlk::tree

#include "common/ReadProblem.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

struct Row {
    ProblemKind kind;
    const char* beforeDetail;
    const char* afterDetail;
    bool isWholeFileLost;
};
constexpr Row kRows[] = {
        {ProblemKind::UNREADABLE, "cannot be read: ", "", true},
        {ProblemKind::TOO_LARGE, "cannot be read: ", "", true},
        {ProblemKind::READ_ERROR, "cannot be read further: ", "", true},
        {ProblemKind::MALFORMED_XML, "no well-formed XML: ", "", true},
        {ProblemKind::COSTLY_XML, "more than ", "", true},
        {ProblemKind::LONG_LINE, "line longer than ", " bytes, its rest is skipped", false},
        {ProblemKind::LAST_LINE, "line longer than ", " bytes, the file is read up to it", false},
        {ProblemKind::NO_EQUALS, "no \"=\", line skipped", "", false},
        {ProblemKind::NO_VALUE, "no value, line skipped", "", false},
        {ProblemKind::ONLY_COMMAS, "nothing but commas, line skipped", "", false},
        {ProblemKind::NO_INDEX, "no index in the first ", " bytes", false},
        {ProblemKind::NO_TYPE, "TV system without type, skipped", "", false},
        {ProblemKind::INCOMPLETE_ITEM, "item without category, key or value, skipped", "", false},
        {ProblemKind::NO_COUNTRY, "country without COUNTRY_NAME, skipped", "", false},
};

constexpr bool isInOrder() {
    size_t next = 0;
    for (const Row& row : kRows) {
        if (static_cast<size_t>(row.kind) != next++) {
            return false;
        }
    }
    return next == static_cast<size_t>(ProblemKind::NO_COUNTRY) + 1;
}
static_assert(isInOrder(), "each kind has its row, in the order of the kinds");

const Row& rowOf(ProblemKind kind) {
    return kRows[static_cast<size_t>(kind)];
}

}  // namespace

std::string textOf(ProblemKind kind, std::string_view detail) {
    const Row& row = rowOf(kind);
    return std::string(row.beforeDetail).append(detail).append(row.afterDetail);
}

bool isWholeFileLost(ProblemKind kind) {
    return rowOf(kind).isWholeFileLost;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

#include "tools/mlktree/matrix/MatrixFormats.h"

#include "tools/common/Json.h"
#include "tools/common/Text.h"
#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

namespace {

// A field that may hold anything; an empty text is told from one that is not there.
std::string csv(std::string_view text) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string out = "\"";
    for (const char sign : text) {
        out += sign;
        if (sign == '"') {
            out += '"';
        }
    }
    return out + '"';
}

// Characters that mean something in Markdown or HTML do not.
std::string markdown(std::string_view text) {
    std::string out;
    for (const char sign : shownText(text)) {
        switch (sign) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            default:
                if (std::string_view("\\`*_{}[]()#+!|~@").find(sign) != std::string_view::npos) {
                    out += '\\';
                }
                out += sign;
        }
    }
    return out;
}

std::string json(const Matrix& matrix, size_t row) {
    std::vector<std::string> values;
    for (const MatrixValue& value : matrix.valuesOf(row)) {
        values.push_back(JsonObject()
                                 .json("value", value.value ? jsonString(*value.value) : "null")
                                 .json("sets", matrix.groups().jsonOf(value.sets))
                                 .str());
    }
    const MatrixRow& it = matrix.rows()[row];
    JsonObject object;
    object.text("kind", nameOf(it.kind));
    if (it.kind == RowKind::ITEM) {
        object.text("section", it.section);
    }
    return object.text("key", it.key).json("values", jsonArray(values)).str();
}

}  // namespace

std::string cellText(const MatrixCell& cell) {
    return !cell ? "-" : cell->empty() ? "\"\"" : shownText(*cell);
}

std::vector<std::string> columnNames(const Matrix& matrix) {
    std::vector<std::string> names;
    names.reserve(matrix.columns().size());
    for (size_t column = 0; column < matrix.columns().size(); ++column) {
        names.push_back(matrix.groups().nameOf(matrix.setsOf(column)));
    }
    return names;
}

void matrixJson(const Matrix& matrix, const MatrixStyle& /* style */, const TextSink& sink) {
    JsonLines rows(JsonObject()
                           .number("version", 1)
                           .number("sets", static_cast<int64_t>(matrix.setCount())),
                   "rows", sink);
    for (size_t row = 0; row < matrix.rows().size(); ++row) {
        rows.add(json(matrix, row));
    }
    rows.end();
}

void matrixCsv(const Matrix& matrix, const MatrixStyle& /* style */, const TextSink& sink) {
    std::string line = "kind,section,key";
    for (const std::string& name : columnNames(matrix)) {
        line += ',' + csv(name);
    }
    sink(line + "\r\n");
    for (size_t row = 0; row < matrix.rows().size(); ++row) {
        const MatrixRow& it = matrix.rows()[row];
        line = std::string(nameOf(it.kind)) + ',' +
               (it.kind == RowKind::ITEM ? csv(it.section) : "") + ',' + csv(it.key);
        for (size_t column = 0; column < matrix.columns().size(); ++column) {
            const MatrixCell cell = matrix.cell(row, column);
            line += ',' + (cell ? csv(*cell) : "");
        }
        sink(line + "\r\n");
    }
}

void matrixMarkdown(const Matrix& matrix, const MatrixStyle& /* style */, const TextSink& sink) {
    std::string head = "| |";
    std::string rule = "|---|";
    for (const std::string& name : columnNames(matrix)) {
        head += ' ' + markdown(name) + " |";
        rule += "---|";
    }
    sink(head + '\n' + rule + '\n');
    for (size_t row = 0; row < matrix.rows().size(); ++row) {
        std::string line = "| " + markdown(matrix.rows()[row].name()) + " |";
        for (size_t column = 0; column < matrix.columns().size(); ++column) {
            const MatrixCell cell = matrix.cell(row, column);
            line += !cell ? " |" : ' ' + (cell->empty() ? "\"\"" : markdown(*cell)) + " |";
        }
        sink(line + '\n');
    }
}

const std::vector<std::pair<std::string_view, MatrixFormat>>& matrixFormats() {
    static const std::vector<std::pair<std::string_view, MatrixFormat>> kFormats = {
            {"text", matrixText},
            {"json", matrixJson},
            {"csv", matrixCsv},
            {"markdown", matrixMarkdown}};
    return kFormats;
}

}  // namespace mlk::tree

// A matrix for a person.

#include <algorithm>

#include "tools/common/Wrap.h"
#include "tools/mlktree/Ansi.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/matrix/MatrixFormats.h"

namespace mlk::tree {

namespace {

constexpr size_t kGap = 2;           // blanks between columns
constexpr size_t kLongestHead = 24;  // longer names are explained in a list
constexpr size_t kWidestCell = 34;
constexpr size_t kLeastCell = 8;
constexpr std::string_view kBreaks = "/_,;";
constexpr std::string_view kPathBreaks = "/";

// The characters after which a line may end. Names of files stay whole where they fit.
std::string_view breaksOf(std::string_view text, size_t width) {
    size_t longest = 0;
    size_t begin = 0;
    for (size_t at = 0; at <= text.size(); ++at) {
        if (at == text.size() || text[at] == '/') {
            longest = std::max(longest, columnsOf(text.substr(begin, at + 1 - begin)));
            begin = at + 1;
        }
    }
    const bool isPath = text.find('/') != std::string_view::npos;
    return isPath && longest <= width ? kPathBreaks : kBreaks;
}

/** Columns side by side, in blocks that are as wide as the terminal. */
class MatrixTable {
  public:
    MatrixTable(const Matrix& matrix, const MatrixStyle& style) : mMatrix(matrix), mStyle(style) {
        mNames = columnNames(matrix);
        mHasLetters = std::any_of(mNames.begin(), mNames.end(), [](const std::string& name) {
            return columnsOf(shownText(name)) > kLongestHead;
        });
        for (const MatrixRow& row : matrix.rows()) {
            mLabels.push_back(shownText(row.name()));
            mLabelWidth = std::max(mLabelWidth, columnsOf(mLabels.back()));
        }
        mLabelWidth = std::min(mLabelWidth, std::max(style.width / 2, kLeastCell));
        findBlocks();
    }

    size_t blocks() const { return mBlocks.size(); }

    void print(const TextSink& sink) const {
        if (mHasLetters) {
            printNames(sink);
        }
        for (size_t i = 0; i < mBlocks.size(); ++i) {
            if (i > 0) {
                sink("\n");
            }
            printBlock(mBlocks[i], sink);
        }
    }

  private:
    struct Block {
        size_t first = 0;
        std::vector<size_t> widths; /**< of its columns */
    };
    using Lines = std::vector<std::string>;

    std::string headOf(size_t column) const {
        return mHasLetters ? lettersOf(column) : shownText(mNames[column]);
    }

    // The width of a column; values that are longer than `widest` are wrapped.
    size_t widthOf(size_t column, size_t widest) const {
        const size_t used = mLabelWidth + kGap;
        const size_t left = mStyle.width > used ? mStyle.width - used : 0;
        const size_t most = std::clamp(left, kLeastCell, widest);
        const size_t head = columnsOf(headOf(column));
        size_t width = head;
        for (size_t row = 0; row < mLabels.size() && width < most; ++row) {
            width = std::max(width, columnsOf(cellText(mMatrix.cell(row, column))));
        }
        return std::min(width, std::max(most, head));
    }

    // Values stay whole if all columns fit beside each other then.
    void findBlocks() {
        addBlocks(mStyle.width);
        if (mBlocks.size() > 1) {
            mBlocks.clear();
            addBlocks(kWidestCell);
        }
    }

    void addBlocks(size_t widest) {
        size_t used = 0;
        for (size_t column = 0; column < mNames.size(); ++column) {
            const size_t width = widthOf(column, widest);
            used += kGap + width;
            if (mBlocks.empty() || used > mStyle.width) {
                mBlocks.push_back({column, {}});
                used = mLabelWidth + kGap + width;
            }
            mBlocks.back().widths.push_back(width);
        }
    }

    void printNames(const TextSink& sink) const {
        const size_t indent = columnsOf(headOf(mNames.size() - 1)) + kGap;
        for (size_t i = 0; i < mNames.size(); ++i) {
            std::string begin = headOf(i);
            begin.append(indent - begin.size(), ' ');
            sink(paragraph(begin, shownText(mNames[i]), indent,
                           std::max(mStyle.width, indent + kLeastCell)));
        }
        sink("\n");
    }

    void printBlock(const Block& block, const TextSink& sink) const {
        std::vector<Lines> cells = {{""}};
        std::vector<const char*> styles(block.widths.size() + 1, ansi::kBold);
        for (size_t i = 0; i < block.widths.size(); ++i) {
            cells.push_back({headOf(block.first + i)});
        }
        printLines(block, cells, styles, sink);
        for (size_t row = 0; row < mLabels.size(); ++row) {
            cells.assign(1, wrapped(mLabels[row], mLabelWidth, kBreaks));
            styles.assign(1, "");
            const MatrixCell usual = mMatrix.cell(row, 0);
            for (size_t i = 0; i < block.widths.size(); ++i) {
                const MatrixCell cell = mMatrix.cell(row, block.first + i);
                const std::string text = cellText(cell);
                cells.push_back(wrapped(text, block.widths[i], breaksOf(text, block.widths[i])));
                // What differs from the first column stands out.
                styles.push_back(!cell ? ansi::kDim : cell != usual ? ansi::kBold : "");
            }
            printLines(block, cells, styles, sink);
        }
    }

    // Prints cells of several lines each beside each other.
    void printLines(const Block& block, const std::vector<Lines>& cells,
                    const std::vector<const char*>& styles, const TextSink& sink) const {
        size_t height = 0;
        for (const Lines& cell : cells) {
            height = std::max(height, cell.size());
        }
        for (size_t line = 0; line < height; ++line) {
            std::string text;
            size_t end = 0;    // where the text ends
            size_t begin = 0;  // where the next cell begins
            for (size_t i = 0; i < cells.size(); ++i) {
                const std::string piece = line < cells[i].size() ? cells[i][line] : "";
                if (!piece.empty()) {
                    const bool isStyled = mStyle.isColoured && *styles[i] != '\0';
                    text.append(begin - end, ' ');
                    text += isStyled ? styles[i] + piece + ansi::kPlain : piece;
                    end = begin + columnsOf(piece);
                }
                begin += (i == 0 ? mLabelWidth : block.widths[i - 1]) + kGap;
            }
            sink(text + "\n");
        }
    }

    const Matrix& mMatrix;
    const MatrixStyle& mStyle;
    std::vector<std::string> mNames;
    std::vector<std::string> mLabels;
    bool mHasLetters = false;
    size_t mLabelWidth = 0;
    std::vector<Block> mBlocks;
};

}  // namespace

std::string lettersOf(size_t column) {
    constexpr size_t kLetters = 26;
    std::string letters;
    for (size_t left = column + 1; left > 0; left = (left - 1) / kLetters) {
        letters.insert(letters.begin(), static_cast<char>('A' + (left - 1) % kLetters));
    }
    return letters;
}

void matrixList(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink) {
    constexpr size_t kIndent = 2;
    constexpr size_t kWidestValue = 40;
    constexpr NameLimits kLimits = {20, 8, 12, 8};
    for (size_t row = 0; row < matrix.rows().size(); ++row) {
        const std::string name = shownText(matrix.rows()[row].name());
        sink(style.isColoured ? ansi::kBold + name + ansi::kPlain + "\n" : name + "\n");
        const std::vector<MatrixValue> values = matrix.valuesOf(row);
        size_t width = 0;
        for (const MatrixValue& value : values) {
            width = std::max(width, columnsOf(cellText(value.value)));
        }
        width = std::min(width, kWidestValue);
        const size_t indent = kIndent + width + kGap;
        for (const MatrixValue& value : values) {
            const std::string text = cellText(value.value);
            const std::string sets = shownText(matrix.groups().nameOf(value.sets, kLimits));
            std::string begin = std::string(kIndent, ' ') + text;
            if (columnsOf(text) > width) {
                sink(begin + "\n");
                begin.clear();
            }
            begin.append(indent - columnsOf(begin), ' ');
            sink(paragraph(begin, sets, indent, std::max(style.width, indent + kLeastCell)));
        }
    }
}

void matrixText(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink) {
    if (matrix.rows().empty()) {
        return;
    }
    // More columns than characters fit a line are no table, without looking at them.
    const bool isMany = matrix.columns().size() > style.width;
    if (style.layout == MatrixLayout::LIST || (style.layout == MatrixLayout::AUTO && isMany)) {
        return matrixList(matrix, style, sink);
    }
    const MatrixTable table(matrix, style);
    if (style.layout == MatrixLayout::AUTO && table.blocks() > kMostBlocks) {
        return matrixList(matrix, style, sink);
    }
    table.print(sink);
}

}  // namespace mlk::tree

// A table that draws only the cells that are in sight, so that its size does not matter. A person
// moves in it with the arrow keys, Home, End, Page Up and Page Down; Enter chooses a cell.

const ROW_HEIGHT = 28;  // as parts.css has it

class Grid {
    // options: label; corner (text); rows, columns (counts); rowName(row), columnName(column);
    // cell(row, column), which gives {text, differs, none}; headWidth, columnWidth (pixels);
    // chosen(row, column), called for a cell that was chosen; -1 for a heading
    constructor(options) {
        this.options = options;
        this.active = {row: 0, column: 0};  // with the headings: row 0 and column 0
        this.sheet = el("div", {class: "sheet", role: "presentation"});
        this.element = el("div", {class: "grid screen", role: "grid", "aria-label": options.label,
                                  "aria-rowcount": options.rows + 1, "aria-colcount": options.columns + 1,
                                  scroll: () => this.drawSoon(), keydown: (event) => this.onKey(event),
                                  click: (event) => this.onClick(event)}, this.sheet);
        const watch = new ResizeObserver(() => this.drawSoon());
        watch.observe(this.element);
        whenGone(() => watch.disconnect());
        this.element.style.height = `${Math.min((options.rows + 1) * ROW_HEIGHT + 18, Math.max(innerHeight * 0.7, 240))}px`;
        this.sheet.style.height = `${(options.rows + 1) * ROW_HEIGHT}px`;
    }

    // On a narrow screen the names of rows take less than half of it.
    headWidth() {
        return Math.min(this.options.headWidth, Math.round(this.element.clientWidth * 0.45));
    }

    drawSoon() {
        if (!this.isDrawing) {
            this.isDrawing = true;
            requestAnimationFrame(() => this.draw());
        }
    }

    // First and last position in sight of what is laid out one after the other.
    inSight(from, room, step, count) {
        const first = Math.max(0, Math.floor(from / step) - 1);
        return [first, Math.min(count - 1, Math.ceil((from + room) / step) + 1)];
    }

    draw() {
        this.isDrawing = false;
        const {rows, columns, columnWidth} = this.options;
        const {scrollTop, scrollLeft, clientWidth, clientHeight} = this.element;
        const hadFocus = this.sheet.contains(document.activeElement);
        const head = this.headWidth();
        this.sheet.style.width = `${head + columns * columnWidth}px`;
        const [top, bottom] = this.inSight(scrollTop, clientHeight, ROW_HEIGHT, rows);
        const [left, right] = this.inSight(scrollLeft, clientWidth - head, columnWidth, columns);
        const drawn = [];
        for (let row = top; row <= bottom; ++row) {
            drawn.push(this.drawRow(row + 1, (row + 1) * ROW_HEIGHT, left, right, scrollLeft));
        }
        // Last, because it lies above the others.
        drawn.push(this.drawRow(0, scrollTop, left, right, scrollLeft));
        this.sheet.replaceChildren(...drawn);
        if (hadFocus) {
            const cell = this.activeCell();
            (cell || this.element).focus({preventScroll: true});
        } else if (!this.activeCell()) {
            this.sheet.querySelector(".cell").setAttribute("tabindex", "0");
        }
    }

    // One row; number 0 is the headings.
    drawRow(row, top, left, right, scrollLeft) {
        const {columnWidth, corner} = this.options;
        const head = this.headWidth();
        const line = el("div", {role: "row", "aria-rowindex": row + 1});
        line.style.transform = `translateY(${top}px)`;
        for (let column = left; column <= right; ++column) {
            line.append(this.drawCell(row, column + 1, head + column * columnWidth, columnWidth));
        }
        const name = this.drawCell(row, 0, scrollLeft, head, corner);
        line.append(name);
        return line;
    }

    drawCell(row, column, left, width, corner) {
        const {rowName, columnName, cell} = this.options;
        const isHead = row === 0 || column === 0;
        const role = row === 0 ? "columnheader" : column === 0 ? "rowheader" : "gridcell";
        const what = row === 0 ? {text: column === 0 ? corner : columnName(column - 1)}
                   : column === 0 ? {text: rowName(row - 1)} : cell(row - 1, column - 1);
        const isActive = row === this.active.row && column === this.active.column;
        const kind = `cell${isHead ? " head" : ""}${what.differs ? " differs" : ""}${what.none ? " none" : ""}`;
        const node = el("div", {class: kind, role, "aria-colindex": column + 1, tabindex: isActive ? "0" : "-1",
                                title: what.text.length > 12 && what.text,
                                "data-row": row, "data-column": column}, what.text);
        if (what.differs) {
            node.setAttribute("aria-label", shown(`differs: ${what.text}`));
        }
        node.style.left = `${left}px`;
        node.style.width = `${width}px`;
        return node;
    }

    activeCell() {
        return this.sheet.querySelector(`[data-row="${this.active.row}"][data-column="${this.active.column}"]`);
    }

    onClick(event) {
        const cell = event.target.closest(".cell");
        if (cell) {
            this.moveTo(Number(cell.dataset.row), Number(cell.dataset.column));
            this.choose();
        }
    }

    choose() {
        this.options.chosen(this.active.row - 1, this.active.column - 1);
    }

    onKey(event) {
        const page = Math.max(1, Math.floor(this.element.clientHeight / ROW_HEIGHT) - 2);
        const {row, column} = this.active;
        const moves = {
            ArrowUp: [row - 1, column], ArrowDown: [row + 1, column], ArrowLeft: [row, column - 1],
            ArrowRight: [row, column + 1], PageUp: [row - page, column], PageDown: [row + page, column],
            Home: [event.ctrlKey ? 0 : row, 0], End: [event.ctrlKey ? this.options.rows : row, this.options.columns],
        };
        if (event.key === "Enter" || event.key === " ") {
            this.choose();
        } else if (moves[event.key]) {
            this.moveTo(...moves[event.key]);
        } else {
            return;
        }
        event.preventDefault();
    }

    moveTo(row, column) {
        const {rows, columns, columnWidth} = this.options;
        this.active = {row: Math.min(Math.max(row, 0), rows), column: Math.min(Math.max(column, 0), columns)};
        const top = this.active.row * ROW_HEIGHT;
        const left = (this.active.column - 1) * columnWidth;
        const box = this.element;
        if (this.active.row > 0) {
            box.scrollTop = Math.min(Math.max(box.scrollTop, top + ROW_HEIGHT - box.clientHeight), top - ROW_HEIGHT);
        }
        if (this.active.column > 0) {
            const room = box.clientWidth - this.headWidth();
            box.scrollLeft = Math.min(Math.max(box.scrollLeft, left + Math.min(columnWidth, room) - room), left);
        }
        this.draw();
        this.activeCell().focus({preventScroll: true});
    }

    // The same as plain tables that a sheet of paper is wide enough for; of a table that no paper
    // holds, its first columns and rows.
    paper() {
        const {rows, columns, columnWidth} = this.options;
        const mostCells = 20000;
        const shownColumns = Math.min(columns, 40);
        const shownRows = Math.min(rows, Math.floor(mostCells / Math.max(shownColumns, 1)));
        const perTable = Math.max(3, Math.floor(700 / columnWidth));
        const tables = [];
        for (let first = 0; first < shownColumns; first += perTable) {
            tables.push(this.paperTable(shownRows, first, Math.min(first + perTable, shownColumns)));
        }
        const isCut = shownColumns < columns || shownRows < rows;
        return el("div", {class: "paper"}, tables,
                  isCut ? el("p", {}, `The first ${shownRows} of ${rows} rows and ${shownColumns} of ${columns} columns.`) : null);
    }

    paperTable(rows, first, end) {
        const {rowName, columnName, cell, label, corner} = this.options;
        const columns = Array.from({length: end - first}, (_, i) => first + i);
        return table(label, [corner, ...columns.map(columnName)], Array.from({length: rows}, (_, row) =>
            [rowName(row), ...columns.map((column) => {
                const {text, differs} = cell(row, column);
                return differs ? el("strong", {}, text) : text;
            })]));
    }
}

// A grid with what stands in its place on paper.
function gridNodes(options) {
    const grid = new Grid(options);
    const holder = el("div", {});
    onPaper(() => holder.replaceChildren(grid.paper()), () => holder.replaceChildren());
    grid.drawSoon();
    return [grid.element, holder];
}

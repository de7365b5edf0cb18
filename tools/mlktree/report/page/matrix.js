// Models beside each other: a row for each item, a column for each model, for one board and country.

// Whether a text fits a pattern with "*" and "?"; several patterns have commas between them.
function patternTest(patterns) {
    const parts = patterns.split(",").map((part) => part.trim()).filter(Boolean);
    if (!parts.length) {
        return () => true;
    }
    const tests = parts.map((part) => new RegExp(
        "^" + part.replace(/[.+^${}()|[\]\\]/g, "\\$&").replace(/\*/g, ".*").replace(/\?/g, ".") + "$", "iu"));
    return (text) => tests.some((test) => test.test(text));
}

// What the matrix shows for a board and a country: the values of every model, by name.
class MatrixValues {
    constructor(board, country) {
        this.models = [];
        this.sets = [];
        this.values = [];
        data.models.forEach((_, model) => {
            const set = data.setOf({model, board, country});
            if (set !== undefined) {
                this.models.push(model);
                this.sets.push(set);
                this.values.push(data.valuesOf(set));
            }
        });
    }

    // The value that most of these columns have; of several the first.
    usual(name, columns) {
        const counts = new Map();
        let usual = -1;
        let most = 0;
        for (const column of columns) {
            const value = this.values[column][name];
            const count = (counts.get(value) || 0) + 1;
            counts.set(value, count);
            if (count > most) {
                most = count;
                usual = value;
            }
        }
        return usual;
    }

    differs(name, columns) {
        return columns.some((column) => this.values[column][name] !== this.values[columns[0]][name]);
    }
}

// The rows of a matrix: names that some column has, that differ if only those are wanted, and of
// which the name or a value has the text.
function matrixRows(values, columns, text, onlyDiffering) {
    const wanted = text.toLowerCase();
    const fits = wanted ? Uint8Array.from(data.texts, (one) => (one.toLowerCase().includes(wanted) ? 1 : 0)) : null;
    const rows = [];
    for (let name = 0; name < data.nameCount(); ++name) {
        const isThere = columns.some((column) => values.values[column][name] >= 0);
        if (!isThere || (onlyDiffering && !values.differs(name, columns))) {
            continue;
        }
        if (!fits || data.nameOf(name).toLowerCase().includes(wanted) ||
            columns.some((column) => values.values[column][name] >= 0 && fits[values.values[column][name]])) {
            rows.push(name);
        }
    }
    return rows;
}

function historyNodes(set, name) {
    const history = data.historyOf(set, name);
    if (!history.length) {
        return el("p", {}, "This set does not have the item.");
    }
    const current = history[history.length - 1];
    return [
        el("p", {}, "Value: ", valueNode(current.value)),
        el("p", {}, `From the ${current.layer}: `, placeLink(current.file, current.line)),
        history.length > 1 ? [el("p", {}, "Replaces:"), el("ol", {class: "history"}, history.slice(0, -1).reverse().map((origin) =>
            el("li", {}, valueNode(origin.value), ` of the ${origin.layer}, `, placeLink(origin.file, origin.line))))]
            : el("p", {class: "quiet"}, "Replaces no other line."),
    ];
}

function boardSelect(board, changed) {
    return select("Board", data.boards.map((_, i) => [i, data.boardName(i)]), board, (value) => changed(Number(value)));
}

function countrySelect(country, changed) {
    const options = data.countries.map((_, i) => [i, data.countryName(i)]);
    return select("Country", options.length ? options : [[-1, "no country"]], country, (value) => changed(Number(value)));
}

function matrixView(words, fields) {
    const choice = data.choose(fields);
    let values = null;
    const result = el("div", {});
    const detail = el("div", {"aria-live": "polite"});
    const count = el("p", {class: "quiet", role: "status"});
    const show = () => {
        values = values || new MatrixValues(choice.board, choice.country);
        const fitsColumn = patternTest(fields.columns || "");
        const columns = values.models.map((_, i) => i).filter((i) => {
            const {index, pathText} = data.models[values.models[i]];
            return [String(index), data.text(pathText).split("/").pop(), data.modelName(values.models[i])].some(fitsColumn);
        });
        const rows = columns.length ? matrixRows(values, columns, fields.text || "", fields.all !== "yes") : [];
        const known = new Map();  // the usual values of the rows that were in sight
        const usual = (row) => {
            if (!known.has(row)) {
                known.set(row, values.usual(rows[row], columns));
            }
            return known.get(row);
        };
        count.textContent = `${counted(rows.length, "item")} of ${counted(columns.length, "model")}`;
        detail.replaceChildren();
        if (!rows.length) {
            const equal = columns.length ? matrixRows(values, columns, fields.text || "", false).length : 0;
            result.replaceChildren(el("p", {}, equal ? `${counted(equal, "item")} of this text ${equal === 1 ? "is" : "are"} equal in all of these models. ` : "Nothing fits."),
                                   ...(equal ? [el("button", {type: "button", click: () => change("all")("yes")}, "Show equal items")] : []));
            return;
        }
        result.replaceChildren(...gridNodes({
            label: "Items by models", corner: "Item", rows: rows.length, columns: columns.length, headWidth: 300, columnWidth: 175,
            rowName: (row) => data.nameOf(rows[row]),
            columnName: (column) => data.modelName(values.models[columns[column]]),
            cell: (row, column) => {
                const value = values.values[columns[column]][rows[row]];
                return {text: value < 0 ? "-" : data.text(value), none: value < 0, differs: value !== usual(row)};
            },
            chosen: (row, column) => {
                const model = values.models[columns[column]];
                const set = values.sets[columns[column]];
                detail.replaceChildren(...cellDetail(row < 0 ? -1 : rows[row], column < 0 ? -1 : model, set, choice));
            },
        }));
    };
    const change = (name) => (value) => {
        fields[name] = value;
        keepFields({[name]: value});
        showEqual.querySelector("input").checked = fields.all === "yes";
        show();
    };
    const changeSet = (part, name) => (value) => {
        choice[part] = value;
        values = null;
        keepFields({[part]: name(value)});
        show();
    };
    const showEqual = check("Show equal items", fields.all === "yes", (isOn) => change("all")(isOn ? "yes" : ""));
    const form = el("form", {class: "form", role: "search", "aria-label": "Choose items and models", submit: (event) => event.preventDefault()},
        search("Search items and values", fields.text || "", change("text")),
        search("Models (patterns such as 2, *_EU*)", fields.columns || "", change("columns")),
        boardSelect(choice.board, changeSet("board", (board) => data.boardName(board))),
        countrySelect(choice.country, changeSet("country", (country) => data.countryName(country))),
        showEqual);
    show();
    return {
        title: "Matrix of models and items",
        nodes: [el("p", {class: "screen"}, "\u2260 marks a value that most of these models do not have. Choose a cell, by a click or Enter, to see where it comes from."),
                form, count, result, detail],
    };
}

// What a cell says; -1 stands for the heading of a column or a row.
function cellDetail(name, model, set, choice) {
    if (name < 0 && model < 0) {
        return [];
    }
    const modelLink = model < 0 ? null : el("a", {href: data.setRoute({...choice, model})}, data.modelName(model));
    return [el("div", {class: "detail"}, el("h2", {}, name < 0 ? modelLink : itemLink(name)),
               name >= 0 && model >= 0 ? [el("p", {}, "In ", modelLink), historyNodes(set, name)] : null)];
}

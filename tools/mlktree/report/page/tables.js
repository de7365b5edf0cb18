// Tables, source lines, and lists that grow.

// A column: its heading, and whether it holds numbers. A row: a list of nodes or texts.
function table(caption, columns, rows) {
    const heading = (column) => {
        const [text, isNumber] = Array.isArray(column) ? column : [column, false];
        return el("th", {scope: "col", class: isNumber && "number"}, text);
    };
    const cell = (node, i) => {
        const isNumber = Array.isArray(columns[i]) && columns[i][1];
        return i === 0 ? el("th", {scope: "row", class: isNumber && "number"}, node)
                       : el("td", {class: isNumber && "number"}, node);
    };
    return el("div", {class: "scroll", tabindex: "0", role: "region", "aria-label": caption},
              el("table", {}, el("caption", {}, caption), el("thead", {}, el("tr", {}, columns.map(heading))),
                 el("tbody", {}, rows.map((row) => el("tr", {}, row.map(cell))))));
}

// Lines of a file around one of them, which is marked.
function sourceLines(file, here, first, last) {
    const lines = data.files[file].lines || [];
    const items = [];
    for (let number = Math.max(first, 1); number <= Math.min(last, lines.length); ++number) {
        items.push(el("li", {class: number === here && "here", "data-line": number},
                      el("a", {class: "count", href: fileRoute(file, number), "aria-label": `Line ${number}`}, number),
                      el("code", {}, data.text(lines[number - 1]) || " ")));
    }
    return items.length ? el("div", {class: "source", tabindex: "0", role: "region",
                                     "aria-label": `Lines of ${data.text(data.files[file].path)}`},
                             el("ol", {}, items))
                        : null;
}

// A list of which a part is drawn at first; the rest comes by a button, and on paper.
function growing(count, step, make, name) {
    const list = el("div", {class: "growing"});
    let drawn = 0;
    const more = el("button", {class: "more", type: "button", click: () => {
        const first = drawn;
        grow(step);
        const added = list.children[first];
        added.setAttribute("tabindex", "-1");
        added.focus();
    }}, "");
    function grow(by) {
        const until = Math.min(count, drawn + by);
        for (; drawn < until; ++drawn) {
            list.append(make(drawn));
        }
        more.textContent = `Show ${Math.min(step, count - drawn)} more of ${counted(count, name)}`;
        more.hidden = drawn >= count;
    }
    grow(step);
    onPaper(() => grow(count));
    return [list, more];
}

// Calls the function before the page is printed.
function onPaper(prepare, restore) {
    addEventListener("beforeprint", prepare);
    whenGone(() => removeEventListener("beforeprint", prepare));
    if (restore) {
        addEventListener("afterprint", restore);
        whenGone(() => removeEventListener("afterprint", restore));
    }
}

// The chain of files that makes a set, as a picture: each box names the next one, and a link to a file
// that does not exist is red and dashed.

const BOX_HEIGHT = 58;
const BOX_GAP = 22;
const FILE_HEIGHT = 40;
const CODE_WIDTH = 7.3;  // of a character of "svg text.code", in pixels

// A text that fits a width, with an ellipsis in its middle.
function fitted(text, width) {
    const seen = shown(text);
    const most = Math.max(4, Math.floor(width / CODE_WIDTH));
    if (seen.length <= most) {
        return seen;
    }
    const half = Math.floor((most - 1) / 2);
    return `${seen.slice(0, half)}\u2026${seen.slice(seen.length - half)}`;
}

// The boxes of a set in their order: what each is, its file, and the line that names it.
function chainOf(set, choice) {
    const boxes = [];
    const add = (kind, file, text, byFile, byLine) => {
        const known = file >= 0 ? data.files[file] : null;
        boxes.push({kind, file, text: known ? data.text(known.path) : text, byFile, byLine,
                    missing: known ? !known.exists : text !== "" && file < 0});
    };
    const customer = data.customers[data.sets.customer[set]];
    add("Customer file", customer.path, "", -1, 0);
    add("System file", customer.system, data.text(customer.systemText), customer.file, customer.line);
    if (choice.model >= 0) {
        const model = data.models[choice.model];
        add(`Model ${model.index}`, model.path, data.text(model.pathText), model.file, model.line);
    }
    const board = data.boards[choice.board];
    add("Board", board.path, data.text(board.pathText), -1, 0);
    const system = systemOf(set, choice.country);
    if (system) {
        add("TV systems", system.file, "", system.byFile, system.byLine);
        if (system.map >= 0) {
            add("Country map", system.map, "", system.file, system.mapLine);
        }
        boxes.push({kind: "Country", file: -1, byFile: system.map, byLine: system.recordLine, missing: false,
                    text: `${data.countryName(choice.country)}: ${system.name || "no TV system"}`,
                    href: route(["country", data.countryName(choice.country)])});
    }
    return boxes;
}

// The files that the items of a set name, by the order of the items.
function filesNamedBy(set) {
    const values = data.valuesOf(set);
    const files = [];
    values.forEach((value, name) => {
        const file = value > 0 ? data.named.get(value) : undefined;
        if (file !== undefined) {
            files.push({name, file, missing: !data.files[file].exists});
        }
    });
    return files;
}

function textLink(x, y, text, width, href, missing) {
    const node = svg("text", {x, y, class: "code"}, fitted(text, width));
    if (!href) {
        return node;
    }
    return svg("a", {href, class: missing && "missing", "aria-label": missing ? `${text}, missing` : text},
               svg("title", {}, text), node);
}

function chainPicture(boxes, files, width) {
    const boxWidth = Math.min(width - 2, 620);
    const nodes = [];
    let y = 1;
    boxes.forEach((box, i) => {
        if (i > 0) {
            nodes.push(svg("path", {class: `link${box.missing ? " broken" : ""}`, d: `M 24 ${y - BOX_GAP} V ${y}`}));
        }
        nodes.push(svg("rect", {class: `box${box.missing ? " missing" : ""}`, x: 1, y, width: boxWidth, height: BOX_HEIGHT, rx: 5}));
        nodes.push(svg("text", {x: 12, y: y + 17, class: box.missing ? "bad" : "quiet"}, box.kind + (box.missing ? ": missing" : "")));
        nodes.push(textLink(12, y + 34, box.text || "none", boxWidth - 24, box.href || (box.file >= 0 ? fileRoute(box.file) : null), box.missing));
        if (box.byFile >= 0) {
            const place = `${data.text(data.files[box.byFile].path)}:${box.byLine}`;
            nodes.push(textLink(12, y + 50, place, boxWidth - 24, fileRoute(box.byFile, box.byLine)));
        }
        y += BOX_HEIGHT + BOX_GAP;
    });
    const top = y - BOX_GAP;
    files.forEach((named) => {
        const middle = y + FILE_HEIGHT / 2 - 4;
        nodes.push(svg("path", {class: `link${named.missing ? " broken" : ""}`, d: `M 24 ${middle} H 44`}));
        nodes.push(textLink(50, y + 12, data.nameOf(named.name), boxWidth - 56, route(["item", data.sectionOf(named.name), data.keyOf(named.name)])));
        nodes.push(textLink(50, y + 28, data.text(data.files[named.file].path) + (named.missing ? " (missing)" : ""), boxWidth - 56,
                            fileRoute(named.file), named.missing));
        y += FILE_HEIGHT;
    });
    if (files.length) {
        nodes.push(svg("path", {class: "link", d: `M 24 ${top} V ${y - FILE_HEIGHT / 2 - 4}`}));
    }
    return picture(width, y + 2, "The chain of files of this set", nodes);
}

// A picture that is drawn anew when its place gets another width.
function fittedPicture(draw) {
    const holder = el("div", {class: "picture"});
    let width = 0;
    const redraw = () => {
        const now = Math.floor(holder.clientWidth);
        if (now > 0 && now !== width) {
            width = now;
            holder.replaceChildren(draw(now));
        }
    };
    const watch = new ResizeObserver(redraw);
    watch.observe(holder);
    whenGone(() => watch.disconnect());
    return holder;
}

function chainNodes(set, choice) {
    const boxes = chainOf(set, choice);
    const files = filesNamedBy(set);
    const missing = [...boxes, ...files].filter((one) => one.missing);
    return [
        missing.length ? [el("p", {class: "bad"}, `${counted(missing.length, "link")} of the chain broken:`),
                          el("ul", {}, missing.map(({file, kind, name, text}) => el("li", {}, name === undefined ? `${kind}: ` : [itemLink(name), ": "],
                                                                                    file >= 0 ? placeLink(file) : text)))]
                       : el("p", {class: "good"}, "Every file of the chain is there."),
        fittedPicture((width) => chainPicture(boxes, files, width)),
    ];
}

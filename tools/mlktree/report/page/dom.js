// Makes elements. What a tree holds is not trusted: it becomes text nodes and never markup, and links
// lead only to places of this page.

const SVG = "http://www.w3.org/2000/svg";

// A text of the tree as a person can see it. Bytes that are no UTF-8 (lone surrogates here), control
// characters, and characters that hide or turn others become escapes.
const UNSEEN =
    /[\u0000-\u0008\u000a-\u001f\u007f-\u009f\u00ad\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb\ufffe\uffff]|[\ud800-\udfff]|[\u{e0000}-\u{e007f}]/gu;

function escapedCharacter(character) {
    const code = character.codePointAt(0);
    if (code >= 0xdc80 && code <= 0xdcff) {
        return "\\x" + (code - 0xdc00).toString(16);
    }
    return "\\u" + code.toString(16).padStart(4, "0");
}

function shown(text) {
    return String(text).replace(UNSEEN, escapedCharacter);
}

function setAttributes(element, attributes) {
    for (const [name, value] of Object.entries(attributes)) {
        if (value === null || value === undefined || value === false) {
            continue;
        }
        if (typeof value === "function") {
            element.addEventListener(name, value);
        } else if (name === "href" && !String(value).startsWith("#")) {
            throw new Error("a link that leaves the page");
        } else if (name === "value" && "value" in element) {
            element.value = value;
        } else if (name === "checked") {
            element.checked = true;
        } else {
            element.setAttribute(name, value === true ? "" : shown(value));
        }
    }
    return element;
}

function append(element, children) {
    for (const child of children.flat(Infinity)) {
        if (child === null || child === undefined || child === false) {
            continue;
        }
        element.append(child instanceof Node ? child : document.createTextNode(shown(child)));
    }
    return element;
}

// An element with its attributes, listeners (functions by the name of their event), and children:
// nodes, texts, and lists of both.
function el(name, attributes, ...children) {
    return append(setAttributes(document.createElement(name), attributes || {}), children);
}

// The same for a picture. Children of "text" and "title" are texts.
function svg(name, attributes, ...children) {
    return append(setAttributes(document.createElementNS(SVG, name), attributes || {}), children);
}

// A picture of its own size in CSS pixels, with a name for who cannot see it.
function picture(width, height, label, ...children) {
    return svg("svg", {width, height, viewBox: `0 0 ${width} ${height}`, role: "group", "aria-label": label},
               ...children);
}

let fieldCount = 0;

// A control with its label above it.
function field(label, control) {
    control.id = control.id || `field${++fieldCount}`;
    return el("div", {class: "field"}, el("label", {for: control.id}, label), control);
}

// A box to tick with its label beside it.
function check(label, checked, changed) {
    const box = el("input", {type: "checkbox", checked, change: () => changed(box.checked)});
    box.id = `field${++fieldCount}`;
    return el("div", {class: "check"}, box, el("label", {for: box.id}, label));
}

// A list to choose from: [value, text] each.
function select(label, options, chosen, changed) {
    const list = el("select", {change: () => changed(list.value)},
                    options.map(([value, text]) => {
                        const option = el("option", {}, text);
                        option.value = value;
                        option.selected = String(value) === String(chosen);
                        return option;
                    }));
    return field(label, list);
}

// A field for a text that is looked for while it is typed.
function search(label, text, changed) {
    const input = el("input", {type: "search", value: text, autocomplete: "off", spellcheck: "false",
                               input: () => changed(input.value)});
    return field(label, input);
}

// What a person hears when a view changes without a new page.
function say(text) {
    const status = document.getElementById("status");
    status.textContent = shown(text);
}

// What every view of a report has to keep, computed in the browser: returns what is wrong with the
// page as it is now, a text each. Runs as the body of a function.

const problems = [];

function isSeen(element) {
    const style = getComputedStyle(element);
    const box = element.getBoundingClientRect();
    return style.visibility === "visible" && style.display !== "none" && box.width > 1 && box.height > 1;
}

function nameOf(element) {
    const text = (element.textContent || "").trim().slice(0, 40);
    return `<${element.localName}${element.className.baseVal === undefined && element.className ? "." + element.className : ""}> ${text}`;
}

// Contrast, as WCAG 2 defines it.

function channels(color) {
    const numbers = (/^rgba?\(([^)]*)\)$/.exec(color) || ["", "0,0,0,0"])[1].split(/[ ,/]+/).map(Number);
    return {rgb: numbers.slice(0, 3), alpha: numbers.length > 3 ? numbers[3] : 1};
}

function luminance(rgb) {
    const [r, g, b] = rgb.map((value) => value / 255).map((value) => (value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

function contrast(first, second) {
    const [high, low] = [luminance(first), luminance(second)].sort((a, b) => b - a);
    return (high + 0.05) / (low + 0.05);
}

// What is painted below an element: its own background or that of the first around it that has one.
function backgroundOf(element) {
    for (let at = element; at; at = at.parentElement) {
        const {rgb, alpha} = channels(getComputedStyle(at).backgroundColor);
        if (alpha === 1) {
            return rgb;
        }
    }
    return matchMedia("(prefers-color-scheme: dark)").matches ? [0, 0, 0] : [255, 255, 255];
}

// Below a text of a picture lies the last area that was painted before it and holds its middle.
function backgroundInPicture(text) {
    const box = text.getBoundingClientRect();
    const [x, y] = [box.left + box.width / 2, box.top + box.height / 2];
    let below = null;
    for (const area of text.ownerSVGElement.querySelectorAll("rect")) {
        const own = area.getBoundingClientRect();
        const isBefore = area.compareDocumentPosition(text) & Node.DOCUMENT_POSITION_FOLLOWING;
        if (isBefore && own.left <= x && x <= own.right && own.top <= y && y <= own.bottom && getComputedStyle(area).fill !== "none") {
            below = area;
        }
    }
    return below ? channels(getComputedStyle(below).fill).rgb : backgroundOf(text.ownerSVGElement.parentElement);
}

const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
let texts = 0;
while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    if (!walker.currentNode.data.trim() || ["script", "style", "title", "noscript", "option"].includes(element.localName) || !isSeen(element)) {
        continue;
    }
    const style = getComputedStyle(element);
    const isPicture = element instanceof SVGElement;
    const color = channels(isPicture ? style.fill : style.color).rgb;
    const found = contrast(color, isPicture ? backgroundInPicture(element) : backgroundOf(element));
    const isLarge = parseFloat(style.fontSize) >= 24 || (parseFloat(style.fontSize) >= 18.66 && style.fontWeight >= 700);
    ++texts;
    if (found < (isLarge ? 3 : 4.5)) {
        problems.push(`contrast ${found.toFixed(2)} of ${nameOf(element)}`);
    }
}
if (texts < 10) {
    problems.push(`only ${texts} texts are seen`);
}

// Names of what can be used, and of regions and pictures.

function spokenName(element) {
    const label = element.labels && element.labels.length ? element.labels[0].textContent : "";
    return (element.getAttribute("aria-label") || label || element.textContent || "").trim();
}

for (const element of document.querySelectorAll(
    "a, button, input, select, summary, [tabindex='0'], [role=region], [role=grid], [role=search], nav, svg:not([aria-hidden])")) {
    if (element.localName === "input" ? !(element.labels && element.labels.length) : !spokenName(element)) {
        problems.push(`no name: ${nameOf(element)}`);
    }
    if (element.tabIndex > 0) {
        problems.push(`out of the order of focus: ${nameOf(element)}`);
    }
}
for (const cell of document.querySelectorAll("[role=row] > *")) {
    if (!["columnheader", "rowheader", "gridcell"].includes(cell.getAttribute("role"))) {
        problems.push(`no cell of a grid: ${nameOf(cell)}`);
    }
}
for (const table of document.querySelectorAll("table")) {
    if (!table.caption || !table.querySelector("th[scope=col]")) {
        problems.push(`a table without caption or headings: ${nameOf(table)}`);
    }
}

// Headings in their order, landmarks, one of each id.

let level = 0;
const headings = [...document.querySelectorAll("h1, h2, h3, h4, h5, h6")];
for (const heading of headings) {
    const own = Number(heading.localName[1]);
    if (own > level + 1 || !heading.textContent.trim()) {
        problems.push(`heading out of order: ${nameOf(heading)}`);
    }
    level = own;
}
if (headings.filter((heading) => heading.localName === "h1").length !== 1) {
    problems.push("not one h1");
}
for (const landmark of ["header", "nav", "main"]) {
    if (document.querySelectorAll(landmark).length !== 1) {
        problems.push(`not one ${landmark}`);
    }
}
const ids = [...document.querySelectorAll("[id]")].map((element) => element.id);
if (new Set(ids).size !== ids.length) {
    problems.push("an id stands twice");
}
if (!document.documentElement.lang || !document.title) {
    problems.push("no language or title");
}
for (const link of document.querySelectorAll("a")) {
    const href = link.getAttribute("href") || "";
    if (!href.startsWith("#")) {
        problems.push(`a link that leaves the page: ${href}`);
    }
}

return problems;

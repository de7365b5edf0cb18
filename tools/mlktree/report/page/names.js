// How things are called and linked: files, items, models, boards, countries, sets, rules.

// A word of a route: any text, whatever characters it has.
function encodeWord(text) {
    return String(text).replace(/[^A-Za-z0-9._\-]/g, (unit) => `~${unit.charCodeAt(0).toString(16)}~`);
}

function decodeWord(word) {
    return word.replace(/~([0-9a-f]{1,4})~/g, (_, code) => String.fromCharCode(parseInt(code, 16)));
}

// The place of a view: its words, and what its fields say.
function route(words, fields = {}) {
    const said = Object.entries(fields).filter(([, value]) => value !== "" && value !== undefined && value !== null)
        .map(([name, value]) => `${name}=${encodeWord(value)}`);
    return "#/" + words.map(encodeWord).join("/") + (said.length ? "?" + said.join("&") : "");
}

function counted(count, one, many = one + "s") {
    return `${count.toLocaleString("en")} ${count === 1 ? one : many}`;
}

function size(bytes) {
    if (bytes < 10000) {
        return `${bytes.toLocaleString("en")} B`;
    }
    return bytes < 1e7 ? `${Math.round(bytes / 1024).toLocaleString("en")} KiB`
                       : `${(bytes / 1048576).toFixed(1)} MiB`;
}

function link(text, words, fields) {
    return el("a", {href: route(words, fields)}, text);
}

function fileRoute(file, line) {
    return route(["file", data.text(data.files[file].path), ...(line ? [line] : [])]);
}

// A file and a line in it, as a link; the text of a place that no file has.
function placeLink(file, line, none = "the service itself") {
    if (file < 0 || file >= data.files.length) {
        return none;
    }
    const path = data.text(data.files[file].path);
    return el("a", {href: fileRoute(file, line), class: "mono"}, path + (line ? `:${line}` : ""));
}

function ruleLink(rule) {
    return link(rule, ["rule", rule]);
}

function itemLink(name) {
    return el("a", {href: route(["item", data.sectionOf(name), data.keyOf(name)]), class: "mono"}, data.nameOf(name));
}

// What a value is shown as: a link to the file that it names, if it names one.
function valueNode(textId) {
    const text = data.text(textId);
    const file = data.named.get(textId);
    if (file === undefined) {
        return text === "" ? el("span", {class: "quiet"}, "(empty)") : el("span", {class: "mono"}, text);
    }
    const known = data.files[file];
    const node = el("a", {href: fileRoute(file), class: "mono"}, text);
    return known && known.exists ? node : [node, " ", el("span", {class: "bad"}, "(missing)")];
}

function severityBadge(severity) {
    return el("span", {class: `badge ${severity}`}, severity);
}

// The sets of a finding or a file: groups such as "model=2,board=b1.ini".
function groupNode(group) {
    if (group === "all") {
        return "all sets";
    }
    const parts = {};
    for (const part of group.split(",")) {
        const at = part.indexOf("=");
        parts[part.slice(0, at)] = part.slice(at + 1);
    }
    const target = data.setNamed(parts);
    return target ? el("a", {href: target}, group) : group;
}

function groupNodes(groups, most = 8) {
    const nodes = groups.slice(0, most).flatMap((id, i) => [i ? "; " : "", groupNode(data.text(id))]);
    if (groups.length > most) {
        nodes.push(` and ${groups.length - most} more`);
    }
    return nodes;
}

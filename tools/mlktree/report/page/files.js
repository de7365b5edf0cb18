// The list of files, and one file with its lines, who names it, and which sets use it.

function fileState(file) {
    if (!file.exists) {
        return file.named.length ? el("span", {class: "bad"}, "missing") : "not there";
    }
    return file.unused ? "nothing names it" : "";
}

function filesView(words, fields) {
    const result = el("div", {});
    const show = () => {
        const wanted = (fields.text || "").toLowerCase();
        const found = data.files.map((file, id) => [file, id]).filter(([file]) =>
            (!fields.kind || data.text(file.kind) === fields.kind) &&
            (!fields.state || (fields.state === "unused" ? file.unused : !file.exists && file.named.length)) &&
            data.text(file.path).toLowerCase().includes(wanted));
        const rows = found.map(([file, id]) => [placeLink(id), data.text(file.kind), file.exists ? size(file.bytes) : "", fileState(file)]);
        const most = 500;
        const cut = el("div", {}, table(counted(found.length, "file"), ["File", "Kind", ["Size", true], "State"], rows.slice(0, most)));
        result.replaceChildren(cut);
        if (rows.length > most) {
            const all = () => cut.replaceChildren(table(counted(found.length, "file"), ["File", "Kind", ["Size", true], "State"], rows));
            cut.append(el("button", {type: "button", class: "more", click: all}, `Show all ${found.length}`));
            onPaper(all);
        }
        return found.length;
    };
    const change = (name) => (value) => {
        fields[name] = value;
        keepFields({[name]: value});
        say(counted(show(), "file"));
    };
    const form = el("form", {class: "form", role: "search", "aria-label": "Filter the files", submit: (event) => event.preventDefault()},
        search("Part of the path", fields.text || "", change("text")),
        select("Kind", choices("all kinds", data.files.map((file) => data.text(file.kind))), fields.kind || "", change("kind")),
        select("State", [["", "any"], ["unused", "nothing names it"], ["missing", "missing"]], fields.state || "", change("state")));
    show();
    return {title: "Files", nodes: [form, result]};
}

function namingNodes(file) {
    const nodes = [];
    for (let i = 0; i < file.named.length; i += 2) {
        const [by, line] = [file.named[i], file.named[i + 1]];
        const text = by >= 0 ? data.lineOf(by, line) : null;
        nodes.push(el("li", {}, placeLink(by, line), text ? [" ", el("code", {}, text.trim())] : null));
    }
    return nodes;
}

function findingsOfFile(id) {
    const found = data.findings.filter((finding) => finding.file === id && finding.allowedBy === undefined);
    return found.length ? [el("h2", {}, "Findings"), el("ul", {}, found.map((finding) =>
        el("li", {}, severityBadge(data.text(finding.severity)), " ", finding.line ? [placeLink(id, finding.line), " "] : null,
           data.text(finding.message), " ", ruleLink(data.text(finding.rule)))))] : null;
}

// A long file is drawn around the line that is looked for; buttons draw the rest.
const MOST_LINES = 3000;

function fileLines(id, here) {
    const lines = data.files[id].lines;
    if (!lines) {
        return null;
    }
    if (!lines.length) {
        return el("p", {}, "The file is empty.");
    }
    const first = lines.length > MOST_LINES ? Math.max(1, here - MOST_LINES / 2) : 1;
    const last = lines.length > MOST_LINES ? first + MOST_LINES : lines.length;
    const part = el("div", {}, sourceLines(id, here, first, last));
    if (lines.length > MOST_LINES) {
        const all = () => part.replaceChildren(sourceLines(id, here, 1, lines.length));
        part.append(el("button", {type: "button", class: "more", click: all}, `Show all ${counted(lines.length, "line")}`));
        onPaper(all);
    }
    return [el("h2", {}, counted(lines.length, "line")), part];
}

function fileView(words) {
    const id = data.fileIds.get(words[0]);
    if (id === undefined) {
        return notFound(`The report knows no file ${words[0]}.`);
    }
    const file = data.files[id];
    const here = Number(words[1]) || 0;
    const namings = namingNodes(file);
    const state = fileState(file);
    const lines = fileLines(id, here);
    return {
        title: words[0],
        view: "files",
        nodes: [
            el("p", {}, `${data.text(file.kind)}${file.exists ? ", " + size(file.bytes) : ""} `, state),
            file.sets.length ? el("p", {}, "Used in ", groupNodes(file.sets, 20)) : el("p", {class: "quiet"}, "No set uses it."),
            namings.length ? [el("h2", {}, "Named by"), el("ul", {}, namings)] : null,
            findingsOfFile(id),
            lines || (file.exists ? el("p", {class: "quiet"}, "The service hands out this file as it is; the report does not show it.") : null),
        ],
        keepsScroll: here > 0,
        after: here ? () => {
            const row = document.querySelector(`[data-line="${here}"]`);
            if (row) {
                row.scrollIntoView({block: "center"});
            }
        } : null,
        focus: here ? () => document.querySelector(`[data-line="${here}"] a`) || document.getElementById("content") : null,
    };
}

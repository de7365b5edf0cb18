// What mlktree check finds, with the lines around it.

const AROUND = 2;

function isOfModel(finding, model) {
    return finding.sets.some((id) => {
        const group = data.text(id);
        const named = /(?:^|,)model=(-?\d+)/.exec(group);
        return !named || named[1] === model;
    });
}

function findingMatches(finding, fields) {
    const isAllowed = finding.allowedBy !== undefined;
    const severity = isAllowed ? "allowed" : data.text(finding.severity);
    return (fields.severity ? severity === fields.severity : !isAllowed) &&
           (!fields.rule || data.text(finding.rule) === fields.rule) &&
           (!fields.file || (finding.file < data.files.length && data.text(data.files[finding.file].path) === fields.file)) &&
           (!fields.model || isOfModel(finding, fields.model));
}

function findingNode(finding) {
    const severity = finding.allowedBy === undefined ? data.text(finding.severity) : "allowed";
    const related = [];
    for (let i = 0; i < finding.related.length; i += 3) {
        const [file, line, message] = finding.related.slice(i, i + 3);
        related.push(el("li", {}, placeLink(file, line, ""), " ", data.text(message)));
    }
    return el("article", {class: "finding", "data-rule": data.text(finding.rule)},
              el("p", {}, severityBadge(severity), " ", placeLink(finding.file, finding.line, "the tree"), " ",
                 el("span", {class: "quiet"}, "rule "), ruleLink(data.text(finding.rule))),
              el("p", {}, data.text(finding.message)),
              finding.line ? sourceLines(finding.file, finding.line, finding.line - AROUND, finding.line + AROUND) : null,
              related.length ? el("ul", {}, related) : null,
              finding.allowedBy === undefined ? null :
                  el("p", {class: "quiet"}, `Allowed by ${data.text(finding.allowedBy)}: ${data.text(finding.reason)}`),
              finding.sets.length ? el("p", {class: "quiet"}, "In ", groupNodes(finding.sets))
                                  : el("p", {class: "quiet"}, "No set uses this file."));
}

// The values that findings have, for a list to choose from.
function choices(all, values) {
    const sorted = [...new Set(values)].sort((a, b) => (a < b ? -1 : 1));
    return [["", all], ...sorted.map((value) => [value, value])];
}

function findingsView(words, fields) {
    const result = el("div", {});
    const show = () => {
        const found = data.findings.filter((finding) => findingMatches(finding, fields));
        result.replaceChildren(
            el("h2", {}, counted(found.length, "finding")),
            ...(found.length ? growing(found.length, 100, (i) => findingNode(found[i]), "finding") : []));
        return found.length;
    };
    const change = (name) => (value) => {
        fields[name] = value;
        keepFields({[name]: value});
        say(counted(show(), "finding"));
    };
    const rules = data.findings.map((finding) => data.text(finding.rule));
    const files = data.findings.filter((finding) => finding.file < data.files.length)
        .map((finding) => data.text(data.files[finding.file].path));
    const form = el("form", {class: "form", role: "search", "aria-label": "Filter the findings", submit: (event) => event.preventDefault()},
        select("Severity", [["", "all but allowed"], ...["error", "warning", "note", "allowed"].map((name) => [name, name])],
               fields.severity || "", change("severity")),
        select("Rule", choices("all rules", rules), fields.rule || "", change("rule")),
        select("File", choices("all files", files), fields.file || "", change("file")),
        select("Model", [["", "all models"], ...data.models.map((model, i) => [String(model.index), data.modelName(i)])],
               fields.model || "", change("model")));
    show();
    return {title: "Findings", nodes: [form, result]};
}

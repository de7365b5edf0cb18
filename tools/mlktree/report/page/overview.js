// The overview. It is drawn from the summary alone, before the rest is unpacked.

function figure(number, text, target) {
    return el("li", {}, el("span", {class: "number"}, number.toLocaleString("en")),
              target ? el("a", {href: target}, text) : text);
}

// Bars of a table's numbers, for the eye; the numbers stand beside them.
function share(value, most) {
    const width = 160;
    return picture(width, 12, `${value} of ${most}`,
                   svg("rect", {class: "fill0", x: 0, y: 1, height: 10, width: most ? Math.max(1, value / most * width) : 0}));
}

function overviewFindings() {
    const {severities, rules} = summary;
    const figures = el("ul", {class: "figures"}, ["error", "warning", "note"].map((severity) =>
        figure(severities[severity], `${severity}s`, route(["findings"], {severity}))),
        figure(severities.allowed, "allowed", route(["findings"], {severity: "allowed"})));
    if (!rules.length) {
        return [figures, el("p", {class: "good"}, "Nothing is found that is not allowed.")];
    }
    return [figures, table("Findings by rule", ["Rule", "Severity", ["Findings", true]], rules.map((row) =>
        [ruleLink(row.rule), severityBadge(row.severity), link(row.count.toLocaleString("en"), ["findings"], {rule: row.rule})]))];
}

function overviewFiles() {
    const most = Math.max(...summary.kinds.map((row) => row.bytes), 1);
    return [
        table("Files by kind", ["Kind", ["Files", true], ["Size", true], "Share"], summary.kinds.map((row) =>
            [link(row.kind, ["files"], {kind: row.kind}), row.count.toLocaleString("en"), size(row.bytes), share(row.bytes, most)])),
        summary.missing ? el("p", {}, link(`${counted(summary.missing, "file")} that a line names and that ${
            summary.missing === 1 ? "does" : "do"} not exist`, ["files"], {state: "missing"})) : null,
    ];
}

function overviewUnused() {
    if (!summary.unusedCount) {
        return el("p", {}, "Every file of tvconfigs is named by a line, or read by the service itself.");
    }
    const rest = summary.unusedCount - summary.unused.length;
    return [
        el("ul", {}, summary.unused.map((path) => el("li", {}, el("a", {href: route(["file", path]), class: "mono"}, path)))),
        rest ? el("p", {}, link(`and ${rest.toLocaleString("en")} more`, ["files"], {state: "unused"})) : null,
    ];
}

function overview() {
    return {
        title: "Overview",
        nodes: [
            el("ul", {class: "figures"},
               figure(summary.models, "models", "#/matrix"), figure(summary.boards, "boards", "#/set"),
               figure(summary.customers, "customers", route(["files"], {kind: "customer file"})),
               figure(summary.countries, "countries", "#/countries"), figure(summary.sets, "sets", "#/set"),
               figure(summary.files, "files read", "#/files")),
            el("h2", {}, "Findings"), overviewFindings(),
            el("h2", {}, "Files"), overviewFiles(),
            el("h2", {}, "Files that nothing names"), overviewUnused(),
        ],
    };
}

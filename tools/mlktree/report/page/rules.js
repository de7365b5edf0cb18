// The page of a rule: why, wrong, right.

function ruleView(words) {
    const rule = data.rules[data.ruleIds.get(words[0])];
    if (!rule) {
        return notFound("There is no such rule.");
    }
    const count = data.findings.filter((finding) => data.text(finding.rule) === rule.name && finding.allowedBy === undefined).length;
    return {
        title: `Rule ${rule.name}`,
        view: "findings",
        nodes: [
            el("p", {}, severityBadge(rule.severity), " ", rule.summary),
            el("p", {}, rule.why),
            el("h2", {}, "Breaks the rule"), el("pre", {class: "scroll", tabindex: "0"}, el("code", {}, preformatted(rule.bad))),
            el("h2", {}, "Does not"), el("pre", {class: "scroll", tabindex: "0"}, el("code", {}, preformatted(rule.good))),
            el("p", {}, link(counted(count, "finding"), ["findings"], {rule: rule.name}), ` of this rule. Family: ${rule.family}.`),
        ],
    };
}

// The line feeds of a text stay; everything else is shown as it is elsewhere.
function preformatted(text) {
    return text.split("\n").flatMap((line, i) => [i ? el("br") : null, line]);
}

// TV features: a row for each country, a column for each feature, for one model and board.

function featuresView(words, fields) {
    const choice = data.choose(fields);
    const result = el("div", {});
    const detail = el("div", {"aria-live": "polite"});
    const show = () => {
        const countries = data.countries.length ? data.countries.map((_, i) => i) : [-1];
        const rows = countries.map((country) => data.setOf({...choice, country})).map((set) => (set === undefined ? [] : data.featuresOf(set)));
        const methods = [...new Set(rows.flatMap((row) => row.map(({method}) => method)))];
        const byMethod = rows.map((row) => new Map(row.map((feature) => [feature.method, feature])));
        const usual = methods.map((method) => {
            const counts = new Map();
            byMethod.forEach((row) => counts.set(row.get(method)?.value, (counts.get(row.get(method)?.value) || 0) + 1));
            return [...counts].sort((a, b) => b[1] - a[1])[0][0];
        });
        detail.replaceChildren();
        if (!methods.length) {
            result.replaceChildren(el("p", {}, "The line has no set."));
            return;
        }
        result.replaceChildren(...gridNodes({
            label: "TV features by country", corner: "Country", rows: countries.length, columns: methods.length, headWidth: 180, columnWidth: 130,
            rowName: (row) => data.countryName(countries[row]),
            columnName: (column) => methods[column],
            cell: (row, column) => {
                const feature = byMethod[row].get(methods[column]);
                const words = {"true": "on", "false": "off"};
                return {text: feature ? words[feature.value] || feature.value : "-", none: !feature || feature.value === "false",
                        differs: (feature ? feature.value : undefined) !== usual[column]};
            },
            chosen: (row, column) => {
                if (row < 0) {
                    detail.replaceChildren();
                    return;
                }
                const feature = byMethod[row].get(methods[column]);
                const country = countries[row];
                detail.replaceChildren(el("div", {class: "detail"},
                    el("h2", {}, column < 0 || !feature ? link(data.countryName(country), ["country", data.countryName(country)])
                                                        : `${feature.method} in ${data.countryName(country)}`),
                    column < 0 || !feature ? null : el("p", {}, `Answered as ${feature.value}, from `, placeLink(feature.file, feature.line, "the default"))));
            },
        }));
    };
    const change = (part, word) => (value) => {
        choice[part] = value;
        keepFields({[part]: word(value)});
        show();
    };
    show();
    return {
        title: "TV features by country",
        nodes: [
            el("p", {class: "screen"}, "\u2260 marks a value that most countries do not have. Choose a cell to see where it comes from."),
            el("form", {class: "form", submit: (event) => event.preventDefault()}, modelAndBoard(choice, change)), result, detail,
            frameworkNodes(data.setOf(choice)),
        ],
    };
}

// Framework switches come from system properties alone, so every set has the same.
function frameworkNodes(set) {
    const switches = set === undefined ? [] : data.featuresOf(set, "framework");
    return switches.length ? [el("h2", {}, "Framework switches of all sets"), table("Framework switches", ["Switch", "Answer", "From"], switches.map(
        (feature) => [el("span", {class: "mono"}, feature.method), feature.value || quiet("(empty)"), placeLink(feature.file, feature.line, "the default")]))] : null;
}

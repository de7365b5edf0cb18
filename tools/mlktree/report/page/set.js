// One set: everything that mlktree show says of it, and its chain of files.
//
//   facts     rows of mlktree show: group, label, source, and what the source needs
//   systems   of each TV system file: its map, and TV system and record of each country

// What a set's country has of the TV system file that the set names; null without one.
function systemOf(set, country) {
    const name = data.nameIds.get("[COUNTRY] tvSysMap");
    const history = name === undefined ? [] : data.historyOf(set, name);
    const origin = history[history.length - 1];
    const file = origin && data.named.get(origin.value);
    const system = file !== undefined && data.systems.find((one) => one.file === file);
    if (!system) {
        return null;
    }
    const own = country >= 0 && system.countries[country];
    return {...system, byFile: origin.file, byLine: origin.line, name: own ? data.text(own[0]) : "", recordLine: own ? own[1] : 0};
}

function quiet(text) {
    return el("span", {class: "quiet"}, text);
}

// A path with its link, or "-" for none.
function pathNode(file, text) {
    if (text === "") {
        return quiet("-");
    }
    return file >= 0 ? [el("a", {href: fileRoute(file), class: "mono"}, text),
                        data.files[file].exists ? null : el("span", {class: "bad"}, " (missing)")]
                     : el("span", {class: "mono"}, text);
}

function noteOf(history) {
    const current = history[history.length - 1];
    return history[0].layer === current.layer ? null : [" ", quiet(`(${current.layer})`)];
}

function itemFact(set, row, section, key) {
    const name = data.nameIds.get(`${section} ${key}`);
    const history = name === undefined ? [] : data.historyOf(set, name);
    const value = history.length ? history[history.length - 1].value : 0;
    const text = data.text(value);
    const why = name === undefined ? null : [" ", el("a", {href: route(["item", section, key]), "aria-label": `Item ${section} ${key}`}, "\u2197")];
    if (row.type === "switch") {
        return [text === "true" ? "on" : "off", history.length ? noteOf(history) : null, why];
    }
    if (row.type === "integer") {
        const number = decimal(text);
        return [number >= row.least && number <= row.most ? String(number) : "(no answer)", history.length ? noteOf(history) : null, why];
    }
    return text === "" ? quiet("-") : [valueNode(value), noteOf(history), why];
}

// A number as the service reads it: digits at the start, as 64 bits hold them, of which it keeps 32;
// 0 for anything else.
function decimal(text) {
    const digits = /^[ \t\n\v\f\r]*([+-]?)(\d+)/.exec(text);
    if (!digits) {
        return 0;
    }
    const most = (1n << 63n) - (digits[1] === "-" ? 0n : 1n);
    const magnitude = BigInt(digits[2]) > most ? most : BigInt(digits[2]);
    return Number(BigInt.asIntN(32, digits[1] === "-" ? -magnitude : magnitude));
}

const FACTS = {
    item: (set, choice, row) => itemFact(set, row, row.names[0], row.names[1]),
    files: (set, choice, row) => {
        const lines = row.versions.map((version, i) => [version, row.names[2 * i], row.names[2 * i + 1]])
            .filter(([, section, key]) => data.text(data.valueOf(set, section, key)) !== "");
        return lines.length ? lines.map(([version, section, key]) => el("p", {}, `${version} `, itemFact(set, row, section, key))) : quiet("-");
    },
    featuresOn: (set) => flagNodes(set, "true"),
    featuresOff: (set) => flagNodes(set, "false"),
    "switch": (set, choice, row) => {
        const feature = data.featuresOf(set, "framework").find((one) => one.method === row.method);
        return feature && feature.value !== "0" && feature.value !== "false" && feature.value !== "" ? "on" : "off";
    },
    index: (set, choice) => {
        const model = data.models[choice.model];
        return model ? el("a", {href: fileRoute(model.file, model.line)}, model.index) : quiet("(none)");
    },
    highestIndex: (set) => String(data.customers[data.sets.customer[set]].highest),
    customer: (set) => {
        const {id, path} = data.customers[data.sets.customer[set]];
        return id ? el("a", {href: fileRoute(path)}, data.text(id)) : quiet("-");
    },
    modelFile: (set, choice) => (choice.model < 0 ? quiet("-")
        : pathNode(data.models[choice.model].path, data.text(data.models[choice.model].pathText))),
    boardFile: (set, choice) => pathNode(data.boards[choice.board].path, data.text(data.boards[choice.board].pathText)),
    modelList: (set) => {
        const menu = data.customers[data.sets.customer[set]].menu;
        const entries = [];
        for (let i = 0; i < menu.length && entries.length < 20; i += 3) {
            entries.push(el("p", {}, lineLink({text: data.text(menu[i]), file: menu[i + 1], line: menu[i + 2]})));
        }
        const more = menu.length / 3 - entries.length;
        return entries.length ? [entries, more ? el("p", {class: "quiet"}, `and ${more} more`) : null] : quiet("-");
    },
    countryName: (set, choice) => (choice.country < 0 ? quiet("(none)") : link(data.countryName(choice.country), ["country", data.countryName(choice.country)])),
    countryNumber: (set, choice) => (choice.country < 0 ? quiet("(none)") : String(data.countryNumbers[choice.country])),
    tvSystem: (set, choice) => {
        const system = systemOf(set, choice.country);
        if (!system || !system.isReadable) {
            return quiet(data.text(data.valueOf(set, "[COUNTRY]", "tvSysMap")) === "" ? "-" : "(not readable)");
        }
        return system.name ? el("a", {href: fileRoute(system.file)}, system.name) : quiet("-");
    },
    channels: (set, choice) => {
        const plans = data.plansOf(set).filter((plan) => plan.channels.length);
        return plans.length ? plans.map((plan) => el("p", {}, link(`${plan.kind}: ${plan.channels.length}`, [
            "country", data.countryName(choice.country)], {kind: plan.kind}))) : quiet("-");
    },
    languages: (set) => languageNodes(set),
    constant: (set, choice, row) => el("span", {class: "mono"}, row.text),
};

// An entry of a list, which leads to its line.
function lineLink({text, file, line}) {
    return file < 0 ? text : el("a", {href: fileRoute(file, line)}, text);
}

function languageNodes(set) {
    const entries = data.listOf(set, "languages");
    return entries.length ? entries.map((entry, i) => [i ? ", " : "", lineLink(entry)]) : quiet("-");
}

function flagNodes(set, value) {
    const features = new Map(data.featuresOf(set).map((feature) => [feature.method, feature.value]));
    const names = data.flags.filter(([method]) => features.get(method) === value).map(([, name]) => name);
    return names.length ? link(names.join(", "), ["features"]) : quiet("-");
}

function factNodes(set, choice) {
    const groups = new Map();
    for (const row of data.facts) {
        groups.set(row.group, [...(groups.get(row.group) || []), row]);
    }
    return [...groups].map(([group, rows]) => [
        el("h3", {}, group),
        el("dl", {class: "facts"}, rows.map((row) => [
            el("dt", {}, row.label), el("dd", {"data-fact": `${row.group} ${row.label}`}, FACTS[row.source](set, choice, row))])),
    ]);
}

function setSelects(choice, changed) {
    const change = (part) => (value) => changed({...choice, [part]: Number(value)});
    return [
        select("Model", data.models.length ? data.models.map((_, i) => [i, data.modelName(i)]) : [[-1, "no model"]], choice.model, change("model")),
        boardSelect(choice.board, change("board")),
        countrySelect(choice.country, change("country")),
    ];
}

function setView(words) {
    const choice = data.choose({model: words[0], board: words[1], country: words[2]});
    const set = data.setOf(choice);
    if (set === undefined) {
        return notFound("The line has no such set.");
    }
    const findings = data.findings.filter((finding) => choice.model >= 0 && findingMatches(finding, {model: String(data.models[choice.model].index)}));
    return {
        title: `Set: ${[data.modelName(choice.model), data.boardName(choice.board), data.countryName(choice.country)].join(", ")}`,
        view: "set",
        nodes: [
            el("form", {class: "form", "aria-label": "Choose a set", submit: (event) => event.preventDefault()},
               setSelects(choice, (chosen) => { location.hash = data.setRoute(chosen); })),
            findings.length ? el("p", {}, link(counted(findings.length, "finding"), ["findings"], {model: String(data.models[choice.model].index)}), " of this model") : null,
            el("h2", {}, "What the set is"), factNodes(set, choice),
            el("h2", {}, "The chain of its files"), chainNodes(set, choice),
        ],
    };
}

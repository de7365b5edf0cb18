// Countries: TV system, the items that it brings, lists, languages, and channel plans.

function countriesView(words, fields) {
    const choice = data.choose(fields);
    const result = el("div", {});
    const show = () => {
        const rows = data.countries.map((_, country) => {
            const set = data.setOf({...choice, country});
            const system = set === undefined ? null : systemOf(set, country);
            const plans = set === undefined ? [] : data.plansOf(set).filter((plan) => plan.channels.length);
            return [link(data.countryName(country), ["country", data.countryName(country)], {model: fields.model, board: fields.board}),
                    data.countryNumbers[country],
                    system && system.name ? el("a", {href: fileRoute(system.map, system.recordLine)}, system.name) : quiet("-"),
                    plans.map((plan) => `${plan.kind}: ${plan.channels.length}`).join(", ") || quiet("none")];
        });
        result.replaceChildren(table(counted(rows.length, "country", "countries"), ["Country", ["Number", true], "TV system", "Channels"], rows));
    };
    const change = (part, word) => (value) => {
        choice[part] = value;
        fields[part] = word(value);
        keepFields({[part]: word(value)});
        show();
    };
    show();
    return {title: "Countries", nodes: [el("form", {class: "form", submit: (event) => event.preventDefault()}, modelAndBoard(choice, change)), result]};
}

function modelAndBoard(choice, change) {
    const changed = change("model", (model) => data.modelWord(model));
    return [
        select("Model", data.models.length ? data.models.map((_, i) => [i, data.modelName(i)]) : [[-1, "no model"]], choice.model, (value) => changed(Number(value))),
        boardSelect(choice.board, change("board", (board) => data.boardName(board))),
    ];
}

// The items that the country puts over those of model and board.
function broughtItems(set) {
    const piece = data.itemPiece(data.pieceOf(set, "country"));
    if (!piece.name.length) {
        return el("p", {}, "It brings no item to this set.");
    }
    const rows = [...piece.name].map((name, i) => {
        const history = data.historyOf(set, name);
        const before = history.filter((origin) => origin.layer !== "country").pop();
        return [itemLink(name), valueNode(piece.value[i]), before ? valueNode(before.value) : quiet("nothing"), placeLink(...data.placeOf(piece, i, data.sets.country[set]))];
    });
    return table("Items of the country", ["Item", "Value", "In place of", "Line"], rows);
}

function listings(set, name) {
    const rows = [["The menu's list of countries", "countries"], ["Countries of the live-TV launcher", "cltvCountries"]].map(([title, kind]) => {
        const entry = data.listOf(set, kind).find((one) => one.text === name);
        return [title, entry ? ["has it, ", placeLink(entry.file, entry.line)] : quiet("does not have it")];
    });
    return el("dl", {class: "facts"}, rows.map(([title, node]) => [el("dt", {}, title), el("dd", {}, node)]));
}

function countryPlans(choice, others, kind) {
    return [choice.country, ...others].flatMap((country) => {
        const set = data.setOf({...choice, country});
        return set === undefined ? [] : data.plansOf(set).filter((plan) => plan.channels.length && (!kind || plan.kind === kind)).map((plan) => ({
            label: `${data.countryName(country)} ${plan.kind}`, kind: plan.kind, channels: plan.channels,
            href: plan.channels[0][5] >= 0 ? fileRoute(plan.channels[0][5]) : null}));
    });
}

function countryView(words, fields) {
    const country = data.countryNamed(words[0]);
    if (country < 0) {
        return notFound(`No list or map of the line names a country ${words[0] || ""}.`);
    }
    const choice = {...data.choose(fields), country};
    let others = (fields.beside || "").split(",").map((name) => data.countryNamed(name)).filter((other) => other >= 0 && other !== country);
    const result = el("div", {});
    const plans = el("div", {});
    const beside = el("div", {class: "form screen"});
    const keepOthers = (now) => {
        others = now;
        keepFields({beside: others.map((other) => data.countryName(other)).join(",")});
        showPlans();
    };
    const showPlans = () => {
        beside.replaceChildren(
            select("Kind of plan", choices("all kinds", [country, ...others].flatMap((other) => {
                const set = data.setOf({...choice, country: other});
                return set === undefined ? [] : data.plansOf(set).map((plan) => plan.kind);
            })), fields.kind || "", (kind) => { fields.kind = kind; keepFields({kind}); showPlans(); }),
            select("Compare with", [["", "choose a country"], ...data.countries.map((_, i) => [i, data.countryName(i)])
                .filter(([i]) => i !== country && !others.includes(i))], "", (other) => keepOthers([...others, Number(other)])),
            ...others.map((other) => el("button", {type: "button", click: () => keepOthers(others.filter((one) => one !== other))}, `Remove ${data.countryName(other)}`)));
        plans.replaceChildren(...append(document.createDocumentFragment(), [spectrumNodes(countryPlans(choice, others, fields.kind))]).childNodes);
    };
    const show = () => {
        const set = data.setOf(choice);
        const system = systemOf(set, country);
        result.replaceChildren(...append(document.createDocumentFragment(), [
            el("dl", {class: "facts"},
               el("dt", {}, "Number"), el("dd", {}, String(data.countryNumbers[country])),
               el("dt", {}, "TV system"), el("dd", {}, system && system.name ? [system.name, ", ", placeLink(system.file)] : quiet("none")),
               el("dt", {}, "Record of the map"), el("dd", {}, system && system.recordLine ? placeLink(system.map, system.recordLine) : quiet("none")),
               el("dt", {}, "Languages"), el("dd", {}, languageNodes(set))),
            listings(set, data.countryName(country)),
            el("h2", {}, "Items that it brings"), broughtItems(set),
            el("p", {}, el("a", {href: data.setRoute(choice)}, "This set")),
        ]).childNodes);
        showPlans();
    };
    const change = (part, word) => (value) => {
        choice[part] = value;
        keepFields({[part]: word(value)});
        show();
    };
    show();
    return {
        title: `Country ${data.countryName(country)}`,
        view: "countries",
        nodes: [el("form", {class: "form", submit: (event) => event.preventDefault()}, modelAndBoard(choice, change)), result,
                el("h2", {}, "Channel plans"), beside, plans],
    };
}

// One item: what reads it, and what it is in each model.

function knownNodes(section, key) {
    const known = data.known.find((item) => item.section === section && item.key === key);
    if (!known) {
        return el("p", {class: "quiet"}, "The service does not look for this item by itself; clients may ask for it.");
    }
    return [
        el("p", {}, `A ${known.type}. Read by `, el("span", {class: "mono"}, known.readers.join(", ") || "the service itself"), "."),
        known.note ? el("p", {}, known.note) : null,
    ];
}

function itemView(words, fields) {
    const name = data.nameIds.get(`${words[0]} ${words[1]}`);
    if (name === undefined) {
        return notFound(`No set has an item ${words.join(" ")}.`);
    }
    const choice = data.choose(fields);
    const result = el("div", {});
    const show = () => {
        const groups = new Map();
        data.models.forEach((_, model) => {
            const set = data.setOf({...choice, model});
            const history = set === undefined ? [] : data.historyOf(set, name);
            const value = history.length ? history[history.length - 1].value : -1;
            groups.set(value, [...(groups.get(value) || []), {model, origin: history[history.length - 1]}]);
        });
        const most = 30;
        const modelsOf = (members) => [
            members.slice(0, most).flatMap(({model}, i) => [i ? ", " : "", el("a", {href: data.setRoute({...choice, model})}, data.modelName(model))]),
            members.length > most ? ` and ${members.length - most} more` : ""];
        result.replaceChildren(table("Values", ["Value", ["Models", true], "Which", "First line"], [...groups].map(([value, members]) => [
            value < 0 ? el("span", {class: "quiet"}, "no such item") : valueNode(value), members.length, modelsOf(members),
            members[0].origin ? placeLink(members[0].origin.file, members[0].origin.line) : ""])));
    };
    const change = (part, word) => (value) => {
        choice[part] = value;
        keepFields({[part]: word(value)});
        show();
    };
    show();
    return {
        title: `Item ${words[0]} ${words[1]}`,
        view: "matrix",
        nodes: [
            knownNodes(words[0], words[1]),
            el("form", {class: "form", submit: (event) => event.preventDefault()},
               boardSelect(choice.board, change("board", (board) => data.boardName(board))),
               countrySelect(choice.country, change("country", (country) => data.countryName(country)))),
            result,
            el("p", {}, el("a", {href: route(["matrix"], {text: data.nameOf(name), all: "yes"})}, "In the matrix")),
        ],
    };
}

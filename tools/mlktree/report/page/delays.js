// Sound delays as stacked bars: what each file adds to how much later sound comes than the service says.

const DELAY_HEIGHT = 40;

function delayRows(piece, receiver) {
    return data.answers.delays[piece].filter((row) => data.text(row[0]) === receiver).map(([, name, value, list]) => {
        const summands = [];
        for (let i = 0; i < list.length; i += 4) {
            summands.push({role: data.text(list[i]), value: list[i + 1], file: list[i + 2], line: list[i + 3]});
        }
        return {name, value, summands};
    });
}

function delayPicture(rows, roles, width) {
    const reach = (sign) => rows.reduce((most, row) => Math.max(most, row.summands.reduce(
        (sum, {value}) => sum + Math.max(sign * value, 0), 0)), 0);
    const [left, right] = [reach(-1), reach(1)];
    const room = width - 70;  // the sum stands at the right
    const scale = room / Math.max(left + right, 1);
    const zero = left * scale;
    const nodes = [svg("line", {class: "axis", x1: zero, x2: zero, y1: 0, y2: rows.length * DELAY_HEIGHT})];
    rows.forEach((row, i) => {
        const top = i * DELAY_HEIGHT;
        const ends = [zero, zero];  // of what is negative, of what is positive
        nodes.push(svg("text", {x: 0, y: top + 13, class: "code"}, fitted(data.nameOf(row.name), width)));
        for (const {role, value} of row.summands) {
            const length = Math.abs(value) * scale;
            const x = value < 0 ? ends[0] -= length : (ends[1] += length) - length;
            if (value !== 0) {
                nodes.push(svg("rect", {class: `bar fill${roles.indexOf(role) % 5}`, x, y: top + 18, width: length, height: 16},
                               svg("title", {}, `${role}: ${value} ms`)));
            }
        }
        const sum = zero + row.summands.reduce((total, {value}) => total + value, 0) * scale;
        nodes.push(svg("line", {class: "sum", x1: sum, x2: sum, y1: top + 15, y2: top + 37}));
        nodes.push(svg("text", {x: ends[1] + 6, y: top + 30}, `${row.value} ms`));
    });
    return picture(width, rows.length * DELAY_HEIGHT, "Sound delays", nodes);
}

function delayTable(rows, roles) {
    return table("Sound delays in milliseconds", ["Item", ...roles.map((role) => [role, true]), ["Sum", true]], rows.map((row) => [
        el("span", {class: "mono"}, data.nameOf(row.name)),
        ...roles.map((role) => {
            const summand = row.summands.find((one) => one.role === role);
            if (!summand) {
                return "";
            }
            return summand.file < 0 ? quiet(String(summand.value))
                                    : el("a", {href: fileRoute(summand.file, summand.line)}, String(summand.value));
        }),
        row.value]));
}

function receiverName(receiver) {
    return receiver === "" ? "none" : receiver === "ARC" ? "any, on the audio return channel" : `that of ${receiver}`;
}

function delaysView(words, fields) {
    const choice = data.choose(fields);
    const result = el("div", {});
    const show = () => {
        const set = data.setOf(choice);
        const piece = set === undefined ? -1 : data.pieceOf(set, "delays");
        const receivers = piece < 0 ? [] : [...new Set(data.answers.delays[piece].map((row) => data.text(row[0])))];
        const receiver = receivers.includes(fields.receiver || "") ? fields.receiver || "" : receivers[0];
        const rows = piece < 0 ? [] : delayRows(piece, receiver);
        if (!rows.length) {
            result.replaceChildren(el("p", {}, "No audio file gives this set a delay."));
            return;
        }
        const roles = [...new Set(rows.flatMap((row) => row.summands.map(({role}) => role)))];
        const sharing = data.models.filter((_, model) => {
            const other = data.setOf({...choice, model});
            return other !== undefined && data.pieceOf(other, "delays") === piece;
        }).length;
        const details = el("details", {}, el("summary", {}, "As a table, with the lines"), delayTable(rows, roles));
        let wasOpen = false;
        onPaper(() => { wasOpen = details.open; details.open = true; }, () => { details.open = wasOpen; });
        result.replaceChildren(
            el("div", {class: "form"}, select("Receiver", receivers.map((one) => [one, receiverName(one)]), receiver,
                                              (one) => { fields.receiver = one; keepFields({receiver: one}); show(); })),
            el("p", {class: "quiet"}, `${counted(sharing, "model")} with this board ${sharing === 1 ? "has" : "have"} these delays.`),
            el("ul", {class: "legend", "aria-label": "Colours"}, roles.map((role, i) => el("li", {}, svg(
                "svg", {width: 16, height: 12, "aria-hidden": "true"}, svg("rect", {class: `fill${i % 5}`, width: 16, height: 12})), role)),
               el("li", {}, svg("svg", {width: 16, height: 12, "aria-hidden": "true"},
                                svg("line", {class: "sum", x1: 8, x2: 8, y1: 0, y2: 12})), "sum")),
            fittedPicture((width) => delayPicture(rows, roles, width)),
            details);
    };
    const change = (part, word) => (value) => {
        choice[part] = value;
        keepFields({[part]: word(value)});
        show();
    };
    show();
    return {title: "Sound delays", nodes: [el("form", {class: "form", submit: (event) => event.preventDefault()}, modelAndBoard(choice, change)), result]};
}

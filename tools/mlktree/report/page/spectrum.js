// Channel plans as a spectrum: each channel a bar at its frequency, as wide as its bandwidth. Plans
// stand under one another on one axis.

const PLAN_HEIGHT = 66;
const BAR_HEIGHT = 30;
const VISION_CARRIER = 1250;  // kHz above the lower edge of an analogue channel

// A channel of a plan with its edges in kHz. Analogue plans have the vision carrier.
function edgesOf(kind, [number, frequency, bandwidth, label, modulation, file, line]) {
    const width = bandwidth / 1000;
    const low = kind.startsWith("ATV") ? frequency - VISION_CARRIER : frequency - width / 2;
    return {number, frequency, bandwidth, low, high: low + width, file, line,
            name: data.text(label) || String(number), modulation: data.modulations[modulation] || String(modulation)};
}

// What lies between channels: {low, high, first, second} each.
function meetings(channels) {
    const sorted = [...channels].sort((a, b) => a.low - b.low || a.high - b.high);
    const overlaps = [];
    const gaps = [];
    let reach = null;  // the channel that reaches furthest so far
    for (const channel of sorted) {
        if (reach && channel.low < reach.high) {
            overlaps.push({low: channel.low, high: Math.min(reach.high, channel.high), first: reach, second: channel});
        } else if (reach && channel.low > reach.high) {
            gaps.push({low: reach.high, high: channel.low, first: reach, second: channel});
        }
        reach = !reach || channel.high > reach.high ? channel : reach;
    }
    return {overlaps, gaps};
}

function megahertz(kilohertz) {
    return `${(kilohertz / 1000).toLocaleString("en", {maximumFractionDigits: 3})} MHz`;
}

function describeChannel(channel) {
    return `${channel.name}: channel ${channel.number}, ${megahertz(channel.frequency)}, ${megahertz(channel.bandwidth / 1000)} wide, ${channel.modulation}`;
}

// A round step of an axis with some pixels between two of its marks.
function axisStep(span, width) {
    const least = span / Math.max(width / 70, 1);
    const power = 10 ** Math.floor(Math.log10(Math.max(least, 1)));
    return [1, 2, 5, 10].map((factor) => factor * power).find((step) => step >= least);
}

class Spectrum {
    // plans: {label, href, kind, channels}
    constructor(plans) {
        this.plans = plans.map((plan) => ({...plan, channels: plan.channels.map((channel) => edgesOf(plan.kind, channel))}));
        for (const plan of this.plans) {
            Object.assign(plan, meetings(plan.channels));
        }
        const all = this.plans.flatMap((plan) => plan.channels);
        this.low = all.reduce((least, channel) => Math.min(least, channel.low), Infinity);
        this.high = all.reduce((most, channel) => Math.max(most, channel.high), -Infinity);
        this.modulations = [...new Set(all.map((channel) => channel.modulation))];
        this.told = el("p", {"aria-live": "polite", class: "screen"}, "");
    }

    fill(channel) {
        return `fill${this.modulations.indexOf(channel.modulation) % 5}`;
    }

    legend() {
        const key = (kind, text) => el("li", {}, svg("svg", {width: 16, height: 12, "aria-hidden": "true"},
                                                     svg("rect", {class: kind, x: 1, y: 1, width: 14, height: 10})), text);
        return el("ul", {class: "legend", "aria-label": "Colours"},
                  this.modulations.map((modulation, i) => key(`fill${i % 5}`, modulation)),
                  key("overlap", "channels overlap"), key("gap", "gap between channels"));
    }

    draw(width) {
        const span = Math.max(this.high - this.low, 1);
        const at = (frequency) => (frequency - this.low) / span * (width - 20) + 10;
        const height = this.plans.length * PLAN_HEIGHT + 24;
        const nodes = [this.axis(at, width, height)];
        this.plans.forEach((plan, i) => nodes.push(this.row(plan, i * PLAN_HEIGHT, at)));
        return picture(width, height, "Channel plans by frequency", nodes);
    }

    axis(at, width, height) {
        const nodes = [svg("line", {class: "axis", x1: 0, x2: width, y1: height - 20, y2: height - 20})];
        const step = axisStep((this.high - this.low) / 1000, width);
        for (let mark = Math.ceil(this.low / 1000 / step) * step; mark * 1000 <= this.high; mark += step) {
            const x = at(mark * 1000);
            nodes.push(svg("line", {class: "raster", x1: x, x2: x, y1: 0, y2: height - 20}));
            const anchor = x < 30 ? "start" : x > width - 30 ? "end" : "middle";
            nodes.push(svg("text", {x, y: height - 6, "text-anchor": anchor, class: "quiet"}, mark.toLocaleString("en")));
        }
        return nodes;
    }

    row(plan, top, at) {
        const bars = plan.channels.map((channel) => this.bar(channel, top + 22, at));
        const marks = [
            plan.gaps.map((gap) => this.mark("gap", gap, top + 22 + BAR_HEIGHT - 6, 6, at)),
            plan.overlaps.map((overlap) => this.mark("overlap", overlap, top + 22, BAR_HEIGHT, at)),
        ];
        const title = svg("text", {x: 2, y: top + 14}, plan.label);
        const group = svg("g", {tabindex: "0", role: "group", "data-plan": plan.label,
                                "aria-label": `${plan.label}: ${counted(plan.channels.length, "channel")}. The arrow keys go through them.`,
                                keydown: (event) => this.onKey(event, plan, group)}, bars, marks);
        return [plan.href ? svg("a", {href: plan.href}, title) : title, group];
    }

    bar(channel, top, at) {
        const x = at(channel.low);
        const width = Math.max(at(channel.high) - x, 1);
        const rect = svg("rect", {class: `bar ${this.fill(channel)}`, x, y: top, width, height: BAR_HEIGHT,
                                  click: () => this.choose(rect, channel)}, svg("title", {}, describeChannel(channel)));
        const fits = shown(channel.name).length * 7.5 + 4 < width;
        const label = fits ? svg("text", {x: x + width / 2, y: top + 19, "text-anchor": "middle", class: "onbar"}, channel.name) : null;
        return label ? [rect, label] : rect;
    }

    mark(kind, {low, high, first, second}, y, height, at) {
        const said = `${kind === "gap" ? "Gap" : "Overlap"} of ${megahertz(high - low)} between ${first.name} and ${second.name}`;
        return svg("rect", {class: kind, x: at(low), y, width: Math.max(at(high) - at(low), 1), height}, svg("title", {}, said));
    }

    onKey(event, plan, group) {
        const steps = {ArrowLeft: -1, ArrowRight: 1, Home: -Infinity, End: Infinity};
        if (!(event.key in steps) || !plan.channels.length) {
            return;
        }
        event.preventDefault();
        const last = plan.channels.length - 1;
        plan.at = Math.min(Math.max((plan.at === undefined ? -1 : plan.at) + steps[event.key], 0), last);
        this.choose(group.querySelectorAll(".bar")[plan.at], plan.channels[plan.at]);
    }

    choose(bar, channel) {
        for (const other of bar.ownerSVGElement.querySelectorAll(".chosen")) {
            other.classList.remove("chosen");
        }
        bar.classList.add("chosen");
        this.told.replaceChildren(document.createTextNode(shown(describeChannel(channel)) + ", "), placeLink(channel.file, channel.line));
    }
}

// The spectrum with its legend, a control of its width, and a table of each plan.
function spectrumNodes(plans) {
    if (!plans.some((plan) => plan.channels.length)) {
        return el("p", {}, "There is no channel to draw.");
    }
    const spectrum = new Spectrum(plans);
    const holder = el("div", {class: "picture", tabindex: "0", role: "region", "aria-label": "Spectrum"});
    let zoom = 1;
    const redraw = () => {
        if (holder.clientWidth > 0) {
            holder.replaceChildren(spectrum.draw(Math.round(holder.clientWidth * zoom)));
        }
    };
    const watch = new ResizeObserver(redraw);
    watch.observe(holder);
    whenGone(() => watch.disconnect());
    const range = el("input", {type: "range", min: 1, max: 20, step: 1, value: 1, input: () => {
        zoom = Number(range.value);
        redraw();
    }});
    return [
        spectrum.legend(),
        el("div", {class: "form screen"}, field("Magnify", range)),
        holder,
        el("p", {class: "quiet"}, "Frequencies in MHz."),
        spectrum.told,
        spectrum.plans.map(planDetails),
    ];
}

function planDetails(plan) {
    const summaryText = `${plan.label}: ${counted(plan.channels.length, "channel")}, ${counted(plan.overlaps.length, "overlap")}, ${counted(plan.gaps.length, "gap")}`;
    const details = el("details", {}, el("summary", {}, summaryText));
    const fill = () => {
        if (details.children.length > 1) {
            return;
        }
        const between = (list) => list.map(({low, high, first, second}) => el("li", {}, `${first.name} and ${second.name}: ${megahertz(high - low)}`));
        append(details, [
            plan.overlaps.length ? [el("p", {class: "bad"}, "Overlaps"), el("ul", {}, between(plan.overlaps))] : null,
            plan.gaps.length ? [el("p", {}, "Gaps"), el("ul", {}, between(plan.gaps))] : null,
            table(plan.label, ["Channel", ["Number", true], ["MHz", true], ["Bandwidth, MHz", true], "Modulation", "Line"], plan.channels.map((channel) => [
                channel.name, channel.number, (channel.frequency / 1000).toLocaleString("en", {maximumFractionDigits: 3}),
                (channel.bandwidth / 1e6).toLocaleString("en"), channel.modulation, placeLink(channel.file, channel.line)])),
        ]);
    };
    details.addEventListener("toggle", fill);
    let wasOpen = false;
    onPaper(() => { wasOpen = details.open; fill(); details.open = true; }, () => { details.open = wasOpen; });
    return details;
}

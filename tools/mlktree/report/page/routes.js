// Which view stands where. A view is a function from the words and fields of its route to its heading
// and nodes; main.js registers them.

const views = new Map();

// @param needsData  whether the view has to wait until the data is unpacked
function addView(name, draw, needsData = true) {
    views.set(name, {draw, needsData});
}

function parseRoute(hash) {
    const [path, query = ""] = hash.replace(/^#\/?/, "").split("?");
    const fields = {};
    for (const part of query.split("&").filter(Boolean)) {
        const [name, value = ""] = part.split("=");
        fields[name] = decodeWord(value);
    }
    return {words: path.split("/").filter(Boolean).map(decodeWord), fields};
}

// Changes what the route says of the fields of the present view, without a new entry in the history.
function keepFields(fields) {
    const now = parseRoute(location.hash);
    history.replaceState(null, "", route(now.words, {...now.fields, ...fields}));
}

let cleanups = [];

// Called when the present view goes.
function whenGone(cleanup) {
    cleanups.push(cleanup);
}

function notFound(what) {
    return {title: "Not in this report", nodes: [el("p", {}, what)]};
}

function drawRoute(isFirst) {
    cleanups.forEach((cleanup) => cleanup());
    cleanups = [];
    const {words, fields} = parseRoute(location.hash);
    const name = words[0] || "overview";
    const view = views.get(name);
    const main = document.getElementById("content");
    let drawn;
    if (!view) {
        drawn = notFound("There is no such view.");
    } else if (view.needsData && !data) {
        drawn = {title: "One moment", nodes: [el("p", {}, "The report is being unpacked.")]};
    } else {
        drawn = view.draw(words.slice(1), fields);
    }
    main.replaceChildren(el("h1", {}, drawn.title), ...append(document.createDocumentFragment(), drawn.nodes).childNodes);
    if (drawn.after) {
        drawn.after();
    }
    document.title = shown(`${drawn.title} - ${summary.title}`);
    for (const link of document.querySelectorAll("#views a")) {
        if (link.getAttribute("href") === `#/${name === "overview" ? "" : (drawn.view || name)}`) {
            link.setAttribute("aria-current", "page");
        } else {
            link.removeAttribute("aria-current");
        }
    }
    if (!isFirst) {
        if (!drawn.keepsScroll) {
            scrollTo(0, 0);
        }
        const target = drawn.focus ? drawn.focus() : main;
        target.focus({preventScroll: !drawn.focus});
    }
}

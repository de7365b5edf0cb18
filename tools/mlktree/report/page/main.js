// Starts the page: draws what the route asks for, first from the summary, then from the data.

const summary = JSON.parse(document.getElementById("summary").textContent);

addView("overview", overview, false);
addView("findings", findingsView);
addView("matrix", matrixView);
addView("item", itemView);
addView("set", setView);
addView("countries", countriesView);
addView("country", countryView);
addView("delays", delaysView);
addView("features", featuresView);
addView("files", filesView);
addView("file", fileView);
addView("rule", ruleView);

append(document.getElementById("views"), [
    ["Overview", "#/"], ["Findings", "#/findings"], ["Matrix", "#/matrix"], ["Set", "#/set"],
    ["Countries", "#/countries"], ["Delays", "#/delays"], ["Features", "#/features"], ["Files", "#/files"],
].map(([text, href]) => el("li", {}, el("a", {href}, text))));
append(document.getElementById("title"), [summary.title]);
document.getElementById("skip").addEventListener("click", (event) => {
    event.preventDefault();
    document.getElementById("content").focus();
});
addEventListener("hashchange", () => drawRoute(false));
drawRoute(true);
document.documentElement.dataset.state = "summary";
performance.mark("overview");

// The data stands after this script, and is not read before it has come.
addEventListener("DOMContentLoaded", () => requestAnimationFrame(() => setTimeout(async () => {
    try {
        data = await unpack(document.getElementById("data").textContent);
        document.getElementById("data").remove();
        performance.mark("unpacked");
        if ((views.get(parseRoute(location.hash).words[0] || "overview") || {}).needsData !== false) {
            drawRoute(true);
        }
        document.documentElement.dataset.state = "ready";
    } catch (error) {
        const status = document.getElementById("status");
        status.classList.add("failed");
        status.textContent = shown(error.message);
        document.documentElement.dataset.state = "failed";
    }
})));

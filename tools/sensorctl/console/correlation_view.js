// Read-only views of a monitor sensor's correlation: the description held in
// the monitor, the database entries recorded for it, the correction matrix,
// and the corrections and matrices stored in the sensor.
import { describeFailure } from "./api.js";
import { h, replace } from "./dom.js";
import { act } from "./status.js";

const $ = (id) => document.getElementById(id);
const reference = (r) => (r ? `${r.deviceID} / ${r.serial || "—"}` : "—");
const monitor = (m) =>
    m ? `${m.product} ${m.serial}${"panelRevision" in m ? `, panel ${m.panelRevision}` : ""}` : "—";
const date = (d) => d?.dateString || "—";

// caption: what the heading of the view does not already say, or null.
function table(caption, columns, rows, highlight = () => false) {
    if (!rows.length) return h("p", {}, "None.");
    return h(
        "table",
        {},
        caption ? h("caption", {}, caption) : null,
        h(
            "thead",
            {},
            h(
                "tr",
                {},
                columns.map(([title]) => h("th", { scope: "col" }, title)),
            ),
        ),
        h(
            "tbody",
            {},
            rows.map((row) =>
                h(
                    "tr",
                    { class: highlight(row) ? "current" : null },
                    columns.map(([, cell]) => h("td", {}, cell(row))),
                ),
            ),
        ),
    );
}

const ENTRY_COLUMNS = [
    ["id", (e) => e.id],
    ["reference sensor", (e) => reference(e.referenceSensor)],
    ["monitor", (e) => monitor(e.monitor)],
    ["date", (e) => date(e.date)],
];

const VIEWS = [
    [
        "Correlation/Description",
        "Description held in the monitor",
        (d) =>
            d
                ? h("p", {}, `Reference sensor ${reference(d.referenceSensor)}, recorded ${date(d.date)}.`)
                : h("p", {}, "The monitor holds no correlation description."),
    ],
    [
        "Correlation/Database?available",
        "Correlation database entries",
        (entries, all) => {
            const current = all["Correlation/Database"];
            return table(
                "★ equals the data the monitor holds now",
                ENTRY_COLUMNS,
                entries,
                (e) => current?.id === e.id,
            );
        },
    ],
    [
        "CorrelationMatrix/Data?checksFactoryData",
        "Correction matrix",
        (d) =>
            h(
                "div",
                {},
                table(
                    `${d.matrix.length}×3, ${d.isFactory ? "the factory data" : "differs from the factory data"}`,
                    [
                        ["row", (r) => r.i + 1],
                        ["X", (r) => r.v[0]],
                        ["Y", (r) => r.v[1]],
                        ["Z", (r) => r.v[2]],
                    ],
                    d.matrix.map((v, i) => ({ i, v })),
                ),
            ),
    ],
    [
        "CorrelationMatrix/Database?available",
        "Matrix database entries",
        (entries) => table(null, ENTRY_COLUMNS, entries),
    ],
    [
        "Correlation?available",
        "Correlation corrections stored in the sensor",
        (list) =>
            table(
                null,
                [
                    ["id", (c) => c.id],
                    ["reference sensor", (c) => reference(c.referenceSensor)],
                    ["monitor", (c) => monitor(c.monitor)],
                ],
                list,
            ),
    ],
    [
        "CorrelationMatrix?available",
        "Correlation matrices stored in the sensor",
        (list) =>
            table(
                null,
                [
                    ["id", (c) => c.id],
                    ["reference sensor", (c) => reference(c.referenceSensor)],
                ],
                list,
            ),
    ],
];

export class CorrelationView {
    constructor(api) {
        this.api = api;
        this.sensor = null;
        $("load-correlation").addEventListener("click", () => this.load());
    }

    show(sensor) {
        this.sensor = sensor;
        replace($("correlation-views"));
        $("correlation").open = !!sensor?.via?.monitor;
        if (sensor?.via?.monitor) this.load();
    }

    async load() {
        const sensor = this.sensor;
        const base = `/Sensors/${encodeURIComponent(sensor.id)}/`;
        const resources = [...VIEWS.map(([resource]) => resource), "Correlation/Database"];
        await act($("load-correlation"), $("correlation-status"), "Reading the correlation…", async () => {
            const results = await Promise.all(resources.map((r) => this.api.call("GET", base + r)));
            if (sensor !== this.sensor) return { status: 200 };
            const values = Object.fromEntries(resources.map((r, i) => [r, results[i].value]));
            replace(
                $("correlation-views"),
                VIEWS.map(([, title, view], i) =>
                    h(
                        "section",
                        { class: "correlation-view" },
                        h("h4", {}, title),
                        results[i].status === 200
                            ? view(results[i].value, values)
                            : h("p", { class: "status error" }, describeFailure(results[i])),
                    ),
                ),
            );
            return results.find((r) => r.status !== 200) || { status: 200 };
        });
    }
}

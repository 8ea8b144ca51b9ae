// The readings taken in this console: derived values, the table and the CSV
// export. The library answers XYZ and the raw XYZ; chromaticity and CCT are
// computed here from XYZ.
import { cctFromxy, xyYFromXYZ } from "./colour.js";
import { h } from "./dom.js";

export function makeReading(index, sensor, answer, time = new Date()) {
    const xyY = xyYFromXYZ(answer.XYZ);
    return {
        index,
        time: time.toISOString(),
        sensorId: sensor.id,
        sensorName: sensor.name || "",
        XYZ: answer.XYZ,
        rawXYZ: answer.rawXYZ || null,
        xyY,
        cct: cctFromxy(xyY),
    };
}

const COLUMNS = [
    ["#", (r) => r.index],
    ["time", (r) => r.time],
    ["sensor", (r) => r.sensorName],
    ["sensor id", (r) => r.sensorId],
    ["X", (r) => r.XYZ?.X],
    ["Y", (r) => r.XYZ?.Y],
    ["Z", (r) => r.XYZ?.Z],
    ["x", (r) => r.xyY?.x],
    ["y", (r) => r.xyY?.y],
    ["Y (xyY)", (r) => r.xyY?.Y],
    ["CCT (K)", (r) => r.cct],
    ["raw X", (r) => r.rawXYZ?.X],
    ["raw Y", (r) => r.rawXYZ?.Y],
    ["raw Z", (r) => r.rawXYZ?.Z],
];

// Text cells that a spreadsheet would take for a formula get a leading
// apostrophe; numbers keep every digit the library sent.
function csvCell(value) {
    if (value === null || value === undefined) return "";
    if (typeof value === "number") return String(value);
    let text = String(value);
    if (/^[=+\-@\t\r]/.test(text)) text = `'${text}`;
    return /[",\r\n]/.test(text) ? `"${text.replace(/"/g, '""')}"` : text;
}

export function toCsv(readings) {
    const lines = [COLUMNS.map(([title]) => csvCell(title)).join(",")];
    for (const r of readings) lines.push(COLUMNS.map(([, get]) => csvCell(get(r))).join(","));
    return lines.join("\r\n") + "\r\n";
}

const DIGITS = { x: 4, y: 4, "CCT (K)": 0 };

function displayCell(title, value) {
    if (value === null || value === undefined) return "—";
    // The table shows local clock time; the CSV keeps the UTC timestamp.
    if (title === "time") return new Date(value).toTimeString().slice(0, 8);
    if (typeof value !== "number") return value;
    if (title === "#") return String(value);
    return value.toFixed(DIGITS[title] ?? 4);
}

export function renderTable(table, readings) {
    const shown = COLUMNS.filter(([title]) => title !== "sensor id");
    table.replaceChildren(
        h(
            "caption",
            {},
            readings.length === 1
                ? "1 reading"
                : readings.length
                  ? `${readings.length} readings, newest first`
                  : "No readings yet",
        ),
        h(
            "thead",
            {},
            h(
                "tr",
                {},
                shown.map(([title]) => h("th", { scope: "col" }, title)),
            ),
        ),
        h(
            "tbody",
            {},
            [...readings].reverse().map((r) =>
                h(
                    "tr",
                    { "data-reading": r.index },
                    shown.map(([title, get]) =>
                        h(
                            "td",
                            {
                                "data-column": title,
                                // Full precision for whoever reads the page by machine.
                                "data-value": typeof get(r) === "number" ? String(get(r)) : null,
                                title: title === "sensor" ? r.sensorId : null,
                            },
                            displayCell(title, get(r)),
                        ),
                    ),
                ),
            ),
        ),
    );
}

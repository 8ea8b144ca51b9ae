// The console: wires the token, the views, the readings and the live events
// together.
import cmf from "./cie1931-2deg.js";
import { Api, storeToken, takeToken } from "./api.js";
import { CorrelationView } from "./correlation_view.js";
import { ChromaticityDiagram } from "./diagram.js";
import { EventLog } from "./event_log.js";
import { followEvents } from "./events.js";
import { Leases } from "./leases.js";
import { makeReading, renderTable, toCsv } from "./readings.js";
import { SensorView } from "./sensor_view.js";
import { Discovery } from "./sensors.js";

const $ = (id) => document.getElementById(id);

const readings = [];
const diagram = new ChromaticityDiagram($("diagram"), cmf);
if (cmf) $("cmf-source").textContent = `${cmf.name}, from ${cmf.source}`;

function showReadings() {
    renderTable($("reading-table"), readings);
    diagram.show(readings.filter((r) => r.xyY).map((r) => ({ index: r.index, x: r.xyY.x, y: r.xyY.y })));
}

function addReading(sensor, answer) {
    const reading = makeReading(readings.length + 1, sensor, answer);
    readings.push(reading);
    showReadings();
    return reading;
}

$("clear-readings").addEventListener("click", () => {
    readings.length = 0;
    showReadings();
});
$("export-csv").addEventListener("click", () => {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([toCsv(readings)], { type: "text/csv" }));
    link.download = `readings-${new Date().toISOString().slice(0, 19).replace(/:/g, "-")}.csv`;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 0);
});

// The token: from the address the server printed, else from this tab's
// storage, else asked for. A 401 asks again.
const dialog = $("token-dialog");
let events = null;
const api = new Api(takeToken(location, history, sessionStorage), {
    onUnauthorized: () => askToken("The gateway did not accept the token."),
});

function askToken(problem) {
    $("token-problem").hidden = !problem;
    $("token-problem").textContent = problem || "";
    if (!dialog.open) dialog.showModal();
}

dialog.addEventListener("close", () => {
    const token = $("token-input").value.trim();
    if (!token) return;
    storeToken(sessionStorage, token);
    api.token = token;
    $("token-input").value = "";
    start();
});
$("change-token").addEventListener("click", () => askToken(""));

const eventLog = new EventLog($("event-log"), $("clear-log"));
const leases = new Leases(api, (id, state) => sensorView.leaseChanged(id, state));
const sensorView = new SensorView(api, leases, { onReading: addReading });
addEventListener("pagehide", () => leases.releaseAll());
const correlationView = new CorrelationView(api);
const discovery = new Discovery(api, {
    onSelect: (sensor) => {
        sensorView.show(sensor);
        correlationView.show(sensor);
    },
    onClosed: (id) => {
        leases.forget(id);
        if (discovery.selected?.id === id) discovery.select(null);
    },
});

const EVENT_STATES = {
    open: "Live events: connected",
    closed: "Live events: reconnecting…",
    unauthorized: "Live events: token refused",
};

// Another client opening or closing a sensor changes the open list.
let refreshTimer = 0;
function onEvent(type, data) {
    eventLog.add(type, data);
    const opensOrCloses =
        (data?.method === "POST" && /^\/(Sensors|Monitors)\//.test(data.path)) ||
        (data?.method === "DELETE" && /^\/Sensors(\/[^/]+)?$/.test(data.path));
    if (type === "request" && data.status === 200 && opensOrCloses) {
        clearTimeout(refreshTimer);
        refreshTimer = setTimeout(() => discovery.listOpen(), 300);
    }
}

function start() {
    events?.abort();
    events = new AbortController();
    followEvents(
        api,
        onEvent,
        (state) => {
            $("events-state").textContent = EVENT_STATES[state];
            $("events-state").dataset.state = state;
        },
        events.signal,
    );
    discovery.refresh();
}

showReadings();
if (api.token) start();
else askToken("");

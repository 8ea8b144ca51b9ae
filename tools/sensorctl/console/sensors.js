// The discovery panel: sensors open in the library, on USB, on serial ports
// and in monitors, with opening and closing.
import { describeFailure } from "./api.js";
import { h, replace } from "./dom.js";
import { act, showStatus } from "./status.js";

const OPENED_KEY = "sensorctl.opened"; // sensor id -> how this console opened it
const MAPPINGS_KEY = "sensorctl.serialMappings";
const MONITOR_KEY = "sensorctl.monitor"; // the last [product, serial] opened

const $ = (id) => document.getElementById(id);
const path = (...segments) => "/" + segments.map(encodeURIComponent).join("/");

// "usbserial-LX21A = 21" lines -> {"usbserial-LX21A": 21}; the library reads
// the ids, so they are passed as the user wrote them when not plain numbers.
function parseMappings(text) {
    const mappings = {};
    for (const line of text.split(/\r?\n/)) {
        const at = line.lastIndexOf("=");
        if (at < 0) continue;
        const name = line.slice(0, at).trim();
        const id = line.slice(at + 1).trim();
        if (name) mappings[name] = /^\d+$/.test(id) ? Number(id) : id;
    }
    return mappings;
}

// A JSON value kept in storage; the fallback when it is missing or damaged.
function stored(storage, key, fallback) {
    try {
        return JSON.parse(storage.getItem(key)) ?? fallback;
    } catch {
        return fallback;
    }
}

export class Discovery {
    constructor(api, { onSelect, onClosed }) {
        this.api = api;
        this.onSelect = onSelect;
        this.onClosed = onClosed;
        this.open = []; // [{id, name, via}]
        this.selected = null;
        this.status = $("discovery-status");
        $("refresh").addEventListener("click", () => this.refresh());
        $("serial-mappings").value = localStorage.getItem(MAPPINGS_KEY) || "";
        $("serial-form").addEventListener("submit", (e) => {
            e.preventDefault();
            this.listSerial(e.submitter);
        });
        const last = stored(localStorage, MONITOR_KEY, []);
        const [product, serial] = Array.isArray(last) ? last : [];
        $("monitor-product").value = product || "";
        $("monitor-serial").value = serial || "";
        $("monitor-form").addEventListener("submit", (e) => {
            e.preventDefault();
            const product = $("monitor-product").value.trim();
            const serial = $("monitor-serial").value.trim();
            localStorage.setItem(MONITOR_KEY, JSON.stringify([product, serial]));
            this.openWith(e.submitter, path("Monitors", product, serial, "Sensor"), { monitor: { product, serial } });
        });
    }

    opened() {
        return stored(sessionStorage, OPENED_KEY, {});
    }

    async refresh() {
        await Promise.all([this.listOpen(), this.listUsb()]);
    }

    async listOpen() {
        const ids = await this.api.call("GET", "/Sensors");
        if (ids.status !== 200) return showStatus(this.status, "error", describeFailure(ids));
        // Names come in the same order as the ids; a sensor opened or closed
        // in between by another client may shift them, so ask again then.
        const names = await this.api.call("GET", "/Sensors/Name");
        const nameList = names.status === 200 && names.value.length === ids.value.length ? names.value : [];
        const opened = this.opened();
        this.open = ids.value.map((id, i) => ({ id, name: nameList[i] || "", via: opened[id] || null }));
        replace(
            $("open-sensors"),
            this.open.length
                ? this.open.map((s) => this.openItem(s))
                : h("li", { class: "empty" }, "No sensor is open."),
        );
        if (this.selected && !this.open.some((s) => s.id === this.selected.id)) this.select(null);
    }

    openItem(sensor) {
        const close = h("button", { type: "button", class: "small" }, "Close");
        const status = h("span", { class: "status" });
        close.addEventListener("click", async () => {
            const result = await act(close, status, "Closing…", () =>
                this.api.call("DELETE", path("Sensors", sensor.id)),
            );
            if (result.status === 200) {
                this.onClosed(sensor.id);
                await this.listOpen();
            }
        });
        const current = this.selected?.id === sensor.id;
        return h(
            "li",
            { "data-sensor": sensor.id, class: current ? "selected" : null },
            h(
                "button",
                {
                    type: "button",
                    class: "link",
                    "aria-label": `${sensor.name || "(no name)"}, id ${sensor.id}`,
                    "aria-current": current ? "true" : null,
                    onclick: () => this.select(sensor),
                },
                sensor.name || "(no name)",
            ),
            h("small", { class: "id" }, sensor.id),
            sensor.via?.monitor ? h("small", {}, ` in ${sensor.via.monitor.product}`) : null,
            close,
            status,
        );
    }

    select(sensor) {
        this.selected = sensor;
        for (const li of $("open-sensors").children) {
            const current = sensor && li.dataset.sensor === sensor.id;
            li.classList.toggle("selected", !!current);
            li.querySelector("button.link")?.setAttribute("aria-current", current ? "true" : "false");
        }
        this.onSelect(sensor);
    }

    async listUsb() {
        const found = await this.api.call("GET", "/Sensors?connected");
        if (found.status !== 200) return showStatus($("discovery-status"), "error", describeFailure(found));
        const names = await this.names(found.value.map((d) => d.deviceID));
        replace(
            $("usb-sensors"),
            found.value.length
                ? found.value.map((d, i) =>
                      this.candidate(names[i], `device ${d.deviceID}, individual id ${d.individualID}`, [
                          ["Open", path("Sensors", String(d.deviceID))],
                          ["Open by individual id", path("Sensors", "Individual", d.individualID)],
                      ]),
                  )
                : h("li", { class: "empty" }, "No sensor on USB."),
        );
    }

    async listSerial(button) {
        const text = $("serial-mappings").value;
        localStorage.setItem(MAPPINGS_KEY, text);
        const status = $("discovery-status");
        const set = await act(button, status, "Setting the serial mappings…", () =>
            this.api.call("PUT", "/Sensors", { serialMappings: parseMappings(text) }),
        );
        if (set.status !== 200) return;
        const found = await this.api.call("GET", "/Sensors?serialConnected");
        if (found.status !== 200) return showStatus(status, "error", describeFailure(found));
        const names = await this.names(found.value.map((d) => d.deviceID));
        replace(
            $("serial-sensors"),
            found.value.length
                ? found.value.map((d, i) =>
                      this.candidate(names[i], `device ${d.deviceID}`, [["Open", path("Sensors", String(d.deviceID))]]),
                  )
                : h("li", { class: "empty" }, "No mapped device is plugged in."),
        );
    }

    async names(deviceIDs) {
        if (!deviceIDs.length) return [];
        const names = await this.api.call("GET", `/Sensors/Name?deviceIDs=${deviceIDs.join(",")}`);
        return names.status === 200 ? names.value : [];
    }

    candidate(name, details, actions) {
        const status = h("span", { class: "status" });
        return h(
            "li",
            {},
            h("span", { class: "name" }, name || "(unknown model)"),
            h("small", {}, details),
            actions.map(([label, target]) =>
                h(
                    "button",
                    {
                        type: "button",
                        class: "small",
                        onclick: (e) => this.openWith(e.currentTarget, target, {}, status),
                    },
                    label,
                ),
            ),
            status,
        );
    }

    async openWith(button, target, via, status = this.status) {
        const result = await act(button, status, "Opening…", () => this.api.call("POST", target), "Opened.");
        if (result.status !== 200) return;
        const opened = this.opened();
        opened[result.value] = via;
        sessionStorage.setItem(OPENED_KEY, JSON.stringify(opened));
        await this.listOpen();
        const sensor = this.open.find((s) => s.id === result.value);
        if (sensor) this.select(sensor);
    }
}

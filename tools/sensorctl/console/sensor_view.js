// The selected sensor: its description, mode and observer, calibration,
// measurement (once or continuously) and corrections.
import { describeFailure } from "./api.js";
import { h, replace } from "./dom.js";
import { act, showStatus } from "./status.js";

const $ = (id) => document.getElementById(id);
const yesNo = (value) => (value ? "yes" : "no");

const DESCRIPTION = [
    ["name", "Name", (v) => v],
    ["serial", "Serial number", (v) => v],
    ["deviceID", "Device id", (v) => v],
    ["needsCalibration", "Needs calibration", yesNo],
    ["supportsAmbient", "Ambient", yesNo],
    ["supportsReflectance", "Reflectance", yesNo],
    ["hasArm", "Arm", yesNo],
    ["hasMultipleSensorPosition", "Several sensor positions", yesNo],
    ["hasTargetMarker", "Target marker", yesNo],
    ["spectrum", "Spectrum", (s) => `${s.min}–${s.max} nm in ${s.count} bands of ${s.bandWidth} nm`],
];

export class SensorView {
    constructor(api, leases, { onReading }) {
        this.api = api;
        this.leases = leases;
        this.onReading = onReading;
        this.sensor = null;
        this.run = null; // the continuous measurement under way
        $("mode-form").addEventListener("submit", (e) => {
            e.preventDefault();
            this.setMode(e.submitter);
        });
        $("calibrate").addEventListener("click", () => this.calibrate());
        $("lease").addEventListener("change", (e) => {
            showStatus($("lease-status"), "busy", e.target.checked ? "Taking the lease…" : "Releasing the lease…");
            e.target.checked ? this.leases.take(this.sensor.id) : this.leases.release(this.sensor.id);
        });
        $("measure").addEventListener("click", () => this.measureOnce());
        $("measure-continuously").addEventListener("click", () => this.toggleContinuous());
        $("correction-form").addEventListener("submit", (e) => {
            e.preventDefault();
            this.applyCorrection(e.submitter);
        });
        $("release-correction").addEventListener("click", (e) =>
            act(
                e.currentTarget,
                $("correction-status"),
                "Releasing…",
                () => this.call("DELETE", "Correction"),
                "Released.",
            ),
        );
    }

    call(method, resource, body) {
        const base = `/Sensors/${encodeURIComponent(this.sensor.id)}`;
        return this.api.call(method, resource ? `${base}/${resource}` : base, body);
    }

    async show(sensor) {
        this.stopContinuous();
        this.sensor = sensor;
        $("sensor-body").hidden = !sensor;
        $("sensor-hint").hidden = !!sensor;
        $("sensor-title").textContent = sensor ? sensor.name || "Sensor" : "No sensor selected";
        $("lease").checked = !!sensor && this.leases.holds(sensor.id);
        for (const id of [
            "sensor-status",
            "lease-status",
            "mode-status",
            "calibration-status",
            "measure-status",
            "correction-status",
        ])
            showStatus($(id), "", "");
        if (!sensor) return;
        await Promise.all([this.describe(), this.modes(), this.needsCalibration(), this.exCorrections()]);
    }

    // Leases.onChange: the outcome of taking, renewing or releasing a lease.
    leaseChanged(sensorId, { held, text, error }) {
        if (sensorId !== this.sensor?.id) return;
        $("lease").checked = held;
        showStatus($("lease-status"), error ? "error" : "done", error || text);
    }

    async describe() {
        const sensor = this.sensor;
        const result = await this.call("GET", "");
        if (sensor !== this.sensor) return;
        if (result.status !== 200) {
            replace($("description"));
            return showStatus($("sensor-status"), "error", describeFailure(result));
        }
        replace(
            $("description"),
            DESCRIPTION.filter(([key]) => key in result.value).map(([key, label, text]) => [
                h("dt", {}, label),
                h("dd", { "data-key": key }, text(result.value[key])),
            ]),
            h("dt", {}, "Sensor id"),
            h("dd", { class: "id" }, sensor.id),
        );
    }

    async modes() {
        const result = await this.call("GET", "Mode?supports");
        $("mode-supports").textContent =
            result.status === 200
                ? `Supports ambient: ${yesNo(result.value.ambient)}; reflectance: ${yesNo(result.value.reflectance)}.`
                : describeFailure(result);
    }

    async needsCalibration() {
        const result = await this.call("GET", "Calibration?needs");
        $("calibration-needs").textContent =
            result.status === 200
                ? result.value
                    ? "This sensor needs calibrating before it measures."
                    : "No calibration needed."
                : describeFailure(result);
    }

    setMode(button) {
        const body = { mode: Number($("mode").value), observerKey: Number($("observer").value) };
        return act(button, $("mode-status"), "Setting the mode…", () => this.call("PUT", "Mode", body), "Mode set.");
    }

    async calibrate() {
        const section = $("sensor");
        section.setAttribute("aria-busy", "true");
        try {
            const result = await act(
                $("calibrate"),
                $("calibration-status"),
                "Calibrating… keep the sensor in its calibration position.",
                () => this.call("PUT", "Calibration"),
                "Calibrated.",
            );
            if (result.status === 200) await this.needsCalibration();
        } finally {
            section.removeAttribute("aria-busy");
        }
    }

    async measureOnce(button = $("measure")) {
        const sensor = this.sensor;
        const result = await act(button, $("measure-status"), "Measuring…", () => this.call("GET", "XYZ"));
        if (result.status === 200 && sensor === this.sensor) {
            const reading = this.onReading(sensor, result.value);
            showStatus($("measure-status"), "done", `Reading ${reading.index} taken.`);
        }
        return result;
    }

    // One run at a time: a run ends when it is stopped, when another sensor
    // is shown, or at the first failed measurement; a stop and a quick
    // restart leave the old run to end at its next turn.
    async toggleContinuous() {
        if (this.run) return this.stopContinuous();
        const run = (this.run = {});
        const toggle = $("measure-continuously");
        toggle.setAttribute("aria-pressed", "true");
        toggle.textContent = "Stop measuring";
        while (run === this.run) {
            const result = await this.measureOnce($("measure"));
            if (result.status !== 200) break;
            const seconds = Math.max(0.2, Number($("interval").value) || 1);
            await new Promise((resolve) => setTimeout(resolve, seconds * 1000));
        }
        if (run === this.run) this.stopContinuous();
    }

    stopContinuous() {
        this.run = null;
        const toggle = $("measure-continuously");
        toggle.setAttribute("aria-pressed", "false");
        toggle.textContent = "Measure continuously";
    }

    applyCorrection(button) {
        const type = $("correction-type").value;
        const body = { type };
        if (type === "emission" || type === "paperWhite") body.observerKey = Number($("correction-observer").value);
        if (type === "emission") {
            body.product = $("correction-product").value;
            body.panelRevision = Number($("correction-panel").value);
        }
        return act(button, $("correction-status"), "Applying…", () => this.call("PUT", "Correction", body), "Applied.");
    }

    async exCorrections() {
        const sensor = this.sensor;
        const [names, index] = await Promise.all([
            this.call("GET", "ExCorrection?name"),
            this.call("GET", "ExCorrection"),
        ]);
        if (sensor !== this.sensor) return;
        const box = $("ex-corrections");
        if (names.status !== 200 || !names.value.length) return replace(box);
        const select = h(
            "select",
            { id: "ex-correction" },
            names.value.map((name, i) => h("option", { value: i, selected: index.value === i }, name)),
        );
        const status = $("correction-status");
        select.addEventListener("change", () =>
            act(
                select,
                status,
                "Selecting…",
                () => this.call("PUT", "ExCorrection", Number(select.value)),
                "Selected.",
            ),
        );
        replace(box, h("label", {}, "Extra correction ", select));
    }
}

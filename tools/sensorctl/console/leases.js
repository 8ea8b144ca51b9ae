// Leases the console holds: while a sensor is leased, the gateway answers
// every other client's request for it with 409. A held lease is renewed
// before it runs out and released when the user lets go of it.
import { describeFailure } from "./api.js";

const SECONDS = 60;
const OWNER = "sensor console";

export class Leases {
    constructor(api, onChange) {
        this.api = api;
        this.onChange = onChange; // (sensorId, {held, text, error})
        this.timers = new Map();
    }

    path(sensorId) {
        return `/Sensors/${encodeURIComponent(sensorId)}/Lease`;
    }

    // Takes or renews; the lease token rides along on a renewal (Api.headers).
    async take(sensorId) {
        const result = await this.api.call("PUT", this.path(sensorId), { owner: OWNER, seconds: SECONDS });
        if (result.status !== 200) {
            this.forget(sensorId);
            this.onChange(sensorId, { held: false, error: describeFailure(result) });
            return result;
        }
        const lease = result.value || {};
        const token = lease.token ?? lease.lease;
        if (typeof token === "string") this.api.leases.set(sensorId, token);
        clearTimeout(this.timers.get(sensorId));
        this.timers.set(
            sensorId,
            setTimeout(() => this.take(sensorId), (SECONDS / 3) * 1000),
        );
        const expires = lease.expires ?? lease.expiry ?? lease.expiresAt;
        this.onChange(sensorId, { held: true, text: expires ? `Held until ${expires}.` : "Held." });
        return result;
    }

    async release(sensorId) {
        const result = await this.api.call("DELETE", this.path(sensorId));
        this.forget(sensorId);
        this.onChange(
            sensorId,
            result.status === 200
                ? { held: false, text: "Released." }
                : { held: false, error: describeFailure(result) },
        );
        return result;
    }

    // When the page goes away its leases go too, rather than keeping other
    // clients out until they expire. keepalive lets the requests outlive the page.
    releaseAll() {
        for (const sensorId of [...this.api.leases.keys()]) {
            const path = this.path(sensorId);
            fetch(path, { method: "DELETE", headers: this.api.headers(path), keepalive: true });
            this.forget(sensorId);
        }
    }

    forget(sensorId) {
        clearTimeout(this.timers.get(sensorId));
        this.timers.delete(sensorId);
        this.api.leases.delete(sensorId);
    }

    holds(sensorId) {
        return this.api.leases.has(sensorId);
    }
}

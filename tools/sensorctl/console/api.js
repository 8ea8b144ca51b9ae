// The gateway's API as the console uses it. Every resource path is the
// library's own (GET /Sensors?connected, PUT /Sensors/{id}/Mode, ...); every
// answer is the library's envelope {"error": ..., "value": ...} with its
// status. Requests carry the bearer token and, for a sensor this console
// holds a lease on, the lease token.

const TOKEN_KEY = "sensorctl.token";

// The server prints its address as http://HOST:PORT/#token=TOKEN. The token
// is moved to sessionStorage and taken out of the address bar, so that it
// does not end up in bookmarks or screenshots.
export function takeToken(location, history, storage) {
    const match = /(?:^#|&)token=([^&]*)/.exec(location.hash);
    if (match) {
        storage.setItem(TOKEN_KEY, decodeURIComponent(match[1]));
        history.replaceState(null, "", location.pathname + location.search);
    }
    return storage.getItem(TOKEN_KEY) || "";
}

export function storeToken(storage, token) {
    if (token) storage.setItem(TOKEN_KEY, token);
    else storage.removeItem(TOKEN_KEY);
}

// "/Sensors/abc/XYZ" -> "abc"; null for paths that address no open sensor.
export function sensorOfPath(path) {
    const match = /^\/Sensors\/([^/?]+)/.exec(path);
    if (!match || ["Name", "Individual"].includes(match[1])) return null;
    return decodeURIComponent(match[1]);
}

export class Api {
    constructor(token, { onUnauthorized = () => {} } = {}) {
        this.token = token;
        this.leases = new Map(); // sensor id -> lease token
        this.onUnauthorized = onUnauthorized;
    }

    headers(path) {
        const headers = { Authorization: `Bearer ${this.token}` };
        const lease = this.leases.get(sensorOfPath(path));
        if (lease) headers["Sensor-Lease"] = lease;
        return headers;
    }

    // Answers {status, value, error}; never throws. status 0 means that the
    // gateway could not be reached at all.
    async call(method, path, body) {
        const init = { method, headers: this.headers(path) };
        if (body !== undefined) {
            init.body = typeof body === "string" ? body : JSON.stringify(body);
            init.headers["Content-Type"] = "application/json";
        }
        let response;
        try {
            response = await fetch(path, init);
        } catch (e) {
            return { status: 0, value: null, error: { message: `The gateway cannot be reached (${e.message}).` } };
        }
        const text = await response.text();
        let envelope = null;
        try {
            envelope = JSON.parse(text);
        } catch {
            // Not the library's envelope (a proxy's page, say): show the text.
        }
        if (response.status === 401) this.onUnauthorized();
        if (envelope && typeof envelope === "object" && "value" in envelope)
            return { status: response.status, value: envelope.value, error: envelope.error ?? null };
        const error = response.ok ? null : { message: text.trim() || response.statusText };
        return { status: response.status, value: envelope, error };
    }
}

// One line for an answer that failed, as the library words it:
// 'Calibrate sensor. Sensor connection error. (DvError, HTTP 500)'.
export function describeFailure(result) {
    const error = result.error || {};
    const words = [error.reason, error.message].filter(Boolean).join(" ") || "Request failed.";
    const kind = [error.name, result.status ? `HTTP ${result.status}` : "no answer"].filter(Boolean);
    const lead = result.status === 409 ? "Another client holds this sensor. " : "";
    return `${lead}${words} (${kind.join(", ")})`;
}

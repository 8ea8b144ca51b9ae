// The gateway's live events (GET /events, server-sent events). EventSource
// cannot send the Authorization header, so the stream is read with fetch()
// and parsed here.

// Incremental parser of the text/event-stream format: feed it text as it
// arrives; it calls onEvent({type, data}) for every complete event. Data
// lines of one event are joined with "\n"; comments and ids are ignored.
export class EventStreamParser {
    constructor(onEvent) {
        this.onEvent = onEvent;
        this.buffer = "";
        this.type = "";
        this.data = [];
    }

    push(text) {
        this.buffer += text;
        let end;
        while ((end = this.buffer.search(/\r\n|\r|\n/)) >= 0) {
            const line = this.buffer.slice(0, end);
            // A lone \r at the end may be the first half of \r\n: wait for more.
            if (this.buffer[end] === "\r" && end + 1 === this.buffer.length) break;
            this.buffer = this.buffer.slice(end + (this.buffer.startsWith("\r\n", end) ? 2 : 1));
            this.line(line);
        }
    }

    line(line) {
        if (line === "") {
            if (this.data.length) this.onEvent({ type: this.type || "message", data: this.data.join("\n") });
            this.type = "";
            this.data = [];
            return;
        }
        if (line.startsWith(":")) return;
        const colon = line.indexOf(":");
        const field = colon < 0 ? line : line.slice(0, colon);
        let value = colon < 0 ? "" : line.slice(colon + 1);
        if (value.startsWith(" ")) value = value.slice(1);
        if (field === "event") this.type = value;
        else if (field === "data") this.data.push(value);
    }
}

// Follows /events until signal aborts, reconnecting after a pause when the
// stream ends or fails. onState("open" | "closed" | "unauthorized").
export async function followEvents(api, onEvent, onState, signal, retryMs = 2000) {
    while (!signal.aborted) {
        try {
            const response = await fetch("/events", { headers: api.headers("/events"), signal });
            if (response.status === 401) {
                onState("unauthorized");
                api.onUnauthorized();
                return;
            }
            if (!response.ok || !response.body) throw new Error(`HTTP ${response.status}`);
            onState("open");
            const parser = new EventStreamParser((event) => {
                let data;
                try {
                    data = JSON.parse(event.data);
                } catch {
                    data = event.data;
                }
                onEvent(event.type, data);
            });
            const reader = response.body.pipeThrough(new TextDecoderStream()).getReader();
            for (;;) {
                const { value, done } = await reader.read();
                if (done) break;
                parser.push(value);
            }
        } catch (e) {
            if (signal.aborted) return;
        }
        onState("closed");
        await new Promise((resolve) => setTimeout(resolve, retryMs));
    }
}

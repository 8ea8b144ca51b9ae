// The live event log: every request any client sends through the gateway,
// and every reading, newest first.
import { h } from "./dom.js";

const LIMIT = 300;

function describe(type, data) {
    if (type === "request" && data && typeof data === "object") {
        const ms = Number(data.durationMicroseconds) / 1000;
        return [
            h("span", { class: `code code-${String(data.status)[0]}xx` }, data.status),
            ` ${data.method} ${data.path} `,
            h("small", {}, Number.isFinite(ms) ? `${ms.toFixed(ms < 10 ? 2 : 0)} ms` : ""),
        ];
    }
    if (type === "reading" && data && typeof data === "object") {
        const XYZ = data.value?.XYZ;
        const text = XYZ
            ? `X ${XYZ.X.toFixed(3)}, Y ${XYZ.Y.toFixed(3)}, Z ${XYZ.Z.toFixed(3)}`
            : JSON.stringify(data.value);
        return [h("span", { class: "code" }, "reading"), ` ${data.path}: ${text}`];
    }
    return [h("span", { class: "code" }, type), ` ${typeof data === "string" ? data : JSON.stringify(data)}`];
}

export class EventLog {
    constructor(list, clearButton) {
        this.list = list;
        clearButton.addEventListener("click", () => list.replaceChildren());
    }

    add(type, data, time = new Date()) {
        this.list.prepend(
            h(
                "li",
                { "data-type": type },
                h("time", { datetime: time.toISOString() }, time.toTimeString().slice(0, 8)),
                " ",
                describe(type, data),
            ),
        );
        while (this.list.children.length > LIMIT) this.list.lastElementChild.remove();
    }
}

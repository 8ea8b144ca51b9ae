// Running a request from a button: the button is disabled and the status
// line shows the busy text while the request runs, then the outcome. A
// failure is shown as the library words it and announced to screen readers.
import { describeFailure } from "./api.js";

export function showStatus(element, kind, text) {
    element.className = `status ${kind}`;
    element.setAttribute("role", kind === "error" ? "alert" : "status");
    element.textContent = text;
}

export async function act(button, status, busyText, request, doneText = "") {
    button.disabled = true;
    button.setAttribute("aria-busy", "true");
    showStatus(status, "busy", busyText);
    try {
        const result = await request();
        if (result.status === 200) showStatus(status, "done", doneText);
        else showStatus(status, "error", describeFailure(result));
        return result;
    } finally {
        button.disabled = false;
        button.removeAttribute("aria-busy");
    }
}

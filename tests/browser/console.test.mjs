// The console in Debian's chromium against `sensorctl serve` on the simulated
// world: what a user does, and what they must see.
import assert from "node:assert/strict";
import { after, before, describe, test } from "node:test";

import { launchBrowser, screenshots, startGateway } from "./harness.mjs";

const fromTable = async (row, column) =>
    Number(await row.locator(`td[data-column="${column}"]`).getAttribute("data-value"));

// Opens the console the way the server prints its address; answers the page
// and its problems: script errors, failed loads, and anything fetched from
// elsewhere than the gateway (the console works offline).
async function openConsole(browser, gateway) {
    const page = await browser.context.newPage();
    const errors = [];
    page.on("pageerror", (e) => errors.push(e.message));
    page.on("console", (m) => /Content Security Policy/.test(m.text()) && errors.push(m.text()));
    // API answers of 4xx and 5xx are the tests' business; the page's own files must load.
    page.on("response", (r) => {
        if (r.status() >= 400 && r.request().resourceType() !== "fetch") errors.push(`${r.status()} for ${r.url()}`);
    });
    page.on("request", (r) => {
        if (!/^(blob|data):/.test(r.url()) && !r.url().startsWith(gateway.origin + "/"))
            errors.push(`fetched ${r.url()}`);
    });
    await page.goto(gateway.url);
    await page.locator("#usb-sensors li", { hasText: "Lumetra Spectro 8" }).waitFor();
    return { page, errors };
}

async function openSpectro(page) {
    await page
        .locator("#usb-sensors li", { hasText: "Lumetra Spectro 8" })
        .getByRole("button", { name: "Open", exact: true })
        .click();
    await page.locator('#description dd[data-key="name"]', { hasText: "Lumetra Spectro 8" }).waitFor();
    return page.locator("#description dd.id").textContent();
}

describe("the console on the default world", () => {
    let gateway, browser, page, errors, sensor;
    before(async () => {
        gateway = await startGateway();
        browser = await launchBrowser();
        ({ page, errors } = await openConsole(browser, gateway));
    });
    after(async () => {
        await browser?.close();
        await gateway?.stop();
        assert.deepEqual(errors, [], "script errors on the page");
    });

    const api = (method, path, headers = {}, body) =>
        fetch(gateway.origin + path, {
            method,
            body: body && JSON.stringify(body),
            headers: { Authorization: `Bearer ${gateway.token}`, ...headers },
        });

    test("takes the token out of the address and follows the live events", async () => {
        assert.equal(new URL(page.url()).hash, "");
        assert.equal(await page.evaluate(() => sessionStorage.getItem("sensorctl.token")), gateway.token);
        await page.locator('#events-state[data-state="open"]').waitFor();
    });

    test("a measurement appears in the table and at its xy on the diagram, over the locus and sRGB triangle", async () => {
        sensor = await openSpectro(page);
        await page.getByRole("button", { name: "Measure once" }).click();
        const row = page.locator("#reading-table tbody tr").first();
        await row.waitFor();

        // The same sensor measured directly through the gateway answers the same numbers.
        const direct = (await (await api("GET", `/Sensors/${sensor}/XYZ`)).json()).value.XYZ;
        const [X, Y, Z] = await Promise.all(["X", "Y", "Z"].map((c) => fromTable(row, c)));
        assert.deepEqual({ X, Y, Z }, direct);
        const x = X / (X + Y + Z);
        const y = Y / (X + Y + Z);
        assert.equal(await fromTable(row, "x"), x);
        assert.ok((await fromTable(row, "CCT (K)")) > 6000, "a D65-like reading is near 6500 K");

        // Where the point must be, from the plot area's own extent on screen.
        const offset = await page.evaluate(
            ([x, y]) => {
                const area = document.querySelector(".diagram .plot-area");
                const box = area.getBoundingClientRect();
                const point = document.querySelector(".diagram circle.latest").getBoundingClientRect();
                return {
                    dx: point.left + point.width / 2 - (box.left + (x / Number(area.dataset.xMax)) * box.width),
                    dy: point.top + point.height / 2 - (box.bottom - (y / Number(area.dataset.yMax)) * box.height),
                };
            },
            [x, y],
        );
        assert.ok(Math.abs(offset.dx) < 1 && Math.abs(offset.dy) < 1, JSON.stringify(offset));

        // Under the reading, in this order: the filled spectral locus of every tabulated
        // wavelength, then the outlined sRGB triangle, each painted apart from the plot.
        await page.screenshot({ path: `${screenshots}/console.png`, fullPage: true });
        const shapes = await page.evaluate(() => {
            const all = [...document.querySelectorAll(".diagram *")];
            return [".plot-area", ".locus", ".srgb", "circle.latest"].map((selector) => {
                const e = document.querySelector(`.diagram ${selector}`);
                const { fill, stroke } = getComputedStyle(e);
                const { width, height } = e.getBoundingClientRect();
                return { fill, stroke, area: width * height, points: e.points?.numberOfItems, order: all.indexOf(e) };
            });
        });
        const [plot, locus, triangle, latest] = shapes;
        assert.equal(locus.points, 95);
        assert.equal(triangle.points, 3);
        assert.ok(locus.fill !== plot.fill && locus.area > 0.25 * plot.area, JSON.stringify(shapes));
        assert.ok(triangle.fill === "none" && triangle.stroke !== "none" && triangle.area > 0, JSON.stringify(shapes));
        assert.ok(latest.fill !== "none" && latest.area > 0, JSON.stringify(shapes));
        assert.ok(plot.order < locus.order && locus.order < triangle.order && triangle.order < latest.order);
    });

    test("continuous measurement goes on until stopped", async () => {
        const rows = page.locator("#reading-table tbody tr");
        const before = await rows.count();
        await page.fill("#interval", "0.2");
        await page.getByRole("button", { name: "Measure continuously" }).click();
        await rows.nth(before + 2).waitFor();
        await page.getByRole("button", { name: "Stop measuring", pressed: true }).click();
        await page.getByRole("button", { name: "Measure continuously", pressed: false }).waitFor();
        // A measurement already under way still lands; nothing starts after it.
        await page.locator("#measure:enabled").waitFor();
        const stopped = await rows.count();
        await page.waitForTimeout(600);
        assert.equal(await rows.count(), stopped);
        await page.getByRole("button", { name: "Clear" }).first().click();
        await page.getByText("No readings yet").waitFor();
    });

    test("CSV export holds the table's readings with every digit", async () => {
        for (const n of [0, 1]) {
            await page.getByRole("button", { name: "Measure once" }).click();
            await page.locator("#reading-table tbody tr").nth(n).waitFor();
        }
        const [download] = await Promise.all([
            page.waitForEvent("download"),
            page.getByRole("button", { name: "Export CSV" }).click(),
        ]);
        const text = await new Response(await download.createReadStream()).text();
        const lines = text.trimEnd().split("\r\n");
        assert.equal(lines.length, 3);
        const row = page.locator("#reading-table tbody tr").first();
        const cells = lines[2].split(",");
        assert.equal(cells[0], "2");
        assert.equal(cells[3], sensor);
        assert.equal(Number(cells[5]), await fromTable(row, "Y"));
        assert.equal(Number(cells[11]), await fromTable(row, "raw X"));
    });

    test("calibration shows its progress while it runs, then its outcome", async () => {
        let release;
        const held = new Promise((resolve) => (release = resolve));
        await page.route("**/Calibration", async (route) => {
            if (route.request().method() === "PUT") await held;
            await route.continue();
        });
        await page.getByText("This sensor needs calibrating").waitFor();
        const button = page.getByRole("button", { name: "Calibrate" });
        await button.click();
        const status = page.locator("#calibration-status");
        await status.getByText("Calibrating…").waitFor();
        assert.ok(await button.isDisabled());
        assert.equal(await status.evaluate((e) => getComputedStyle(e).display), "block");
        release();
        await status.getByText("Calibrated.").waitFor();
        await page.getByText("No calibration needed.").waitFor();
        assert.ok(await button.isEnabled());
        await page.unroute("**/Calibration");
    });

    test("the live log lists the console's requests and readings", async () => {
        const log = page.locator("#event-log");
        await log.locator('li[data-type="request"]', { hasText: `PUT /Sensors/${sensor}/Calibration` }).waitFor();
        await log
            .locator('li[data-type="reading"]', { hasText: `/Sensors/${sensor}/XYZ` })
            .first()
            .waitFor();
    });

    test("a sensor another client leased answers 409, shown plainly; the console's own lease keeps others out", async () => {
        const leased = await api(
            "PUT",
            `/Sensors/${sensor}/Lease`,
            { "Content-Type": "application/json" },
            { owner: "bench", seconds: 60 },
        );
        assert.equal(leased.status, 200);
        await page.getByRole("button", { name: "Measure once" }).click();
        const status = page.locator("#measure-status");
        await status.getByText("HTTP 409").waitFor();
        assert.match(await status.textContent(), /Another client holds this sensor/);
        assert.equal(await status.getAttribute("role"), "alert");
        await api("DELETE", `/Sensors/${sensor}/Lease`, { "Sensor-Lease": (await leased.json()).value.token });

        const lease = page.getByLabel("Hold this sensor");
        await lease.check();
        await page.locator("#lease-status", { hasText: "Held until" }).waitFor();
        assert.equal((await api("GET", `/Sensors/${sensor}/XYZ`)).status, 409);
        // The console's own requests carry the lease.
        await page.getByRole("button", { name: "Measure once" }).click();
        await page.locator("#measure-status", { hasText: "taken" }).waitFor();
        await lease.uncheck();
        await page.locator("#lease-status", { hasText: "Released." }).waitFor();
        assert.equal((await api("GET", `/Sensors/${sensor}/XYZ`)).status, 200);

        // Leaving the page lets go of its leases; the token stays with the tab.
        await lease.check();
        await page.locator("#lease-status", { hasText: "Held until" }).waitFor();
        await page.reload();
        await page.locator("#usb-sensors li", { hasText: "Lumetra Spectro 8" }).waitFor();
        assert.equal((await api("GET", `/Sensors/${sensor}/XYZ`)).status, 200);
    });

    test("a sensor on a serial port is listed from the mappings and opens", async () => {
        await page.fill("#serial-mappings", "usbserial-LX21A = 21");
        await page.getByRole("button", { name: "Set mappings and list" }).click();
        const port = page.locator("#serial-sensors li", { hasText: "Lumetra Serial 21" });
        await port.getByRole("button", { name: "Open" }).click();
        await page.locator('#description dd[data-key="deviceID"]', { hasText: "21" }).waitFor();
        await page.locator("#open-sensors li", { hasText: "Lumetra Serial 21" }).waitFor();
    });

    test("a monitor's sensor shows its correlation: description, database entries, matrix", async () => {
        await page.fill("#monitor-product", "LMN27A");
        await page.fill("#monitor-serial", "41A00017");
        await page.getByRole("button", { name: "Open built-in sensor" }).click();
        const views = page.locator("#correlation-views");
        await views.getByText("Reference sensor 8 / LS8-20419").waitFor();
        // The entry equal to the monitor's data is marked; the 8x3 matrix is shown whole.
        assert.equal(await views.locator("tr.current td").first().textContent(), "1");
        assert.equal(await views.locator("section", { hasText: "Correction matrix" }).locator("tbody tr").count(), 8);
    });

    test("without a token it asks for one, and asks again when the gateway refuses it", async () => {
        const fresh = await browser.context.newPage();
        await fresh.goto(gateway.origin + "/");
        const dialog = fresh.getByRole("dialog", { name: "Access token" });
        await dialog.waitFor();
        await fresh.fill("#token-input", "not-the-token");
        await fresh.getByRole("button", { name: "Use token" }).click();
        await dialog.getByText("The gateway did not accept the token.").waitFor();
        await fresh.fill("#token-input", gateway.token);
        await fresh.getByRole("button", { name: "Use token" }).click();
        await fresh.locator("#usb-sensors li", { hasText: "Lumetra Spectro 8" }).waitFor();
        await fresh.close();
    });
});

describe("the console on a failing device", () => {
    let gateway, browser;
    before(async () => {
        gateway = await startGateway({ SENSORSIM_INJECT: "MDCalibrate=0x80010002,MDMeasureXYZ2=0x80010002" });
        browser = await launchBrowser();
    });
    after(async () => {
        await browser?.close();
        await gateway?.stop();
    });

    test("calibration and measurement errors are shown as the library words them", async () => {
        const { page, errors } = await openConsole(browser, gateway);
        await openSpectro(page);
        await page.getByRole("button", { name: "Calibrate" }).click();
        const calibration = page.getByRole("alert").filter({ hasText: "Calibrate sensor." });
        await calibration.waitFor();
        assert.match(await calibration.textContent(), /Sensor connection error\. \(DvError, HTTP 500\)/);
        await page.getByText("This sensor needs calibrating").waitFor();

        await page.getByRole("button", { name: "Measure continuously" }).click();
        await page.getByRole("alert").filter({ hasText: "Measure XYZ." }).waitFor();
        // A failed measurement stops the continuous run and adds no reading.
        await page.getByRole("button", { name: "Measure continuously", pressed: false }).waitFor();
        assert.equal(await page.locator("#reading-table tbody tr").count(), 0);
        assert.deepEqual(errors, []);
    });
});

// The console's modules that need no browser: colour arithmetic against
// published reference values, the event-stream parser, the CSV export.
import assert from "node:assert/strict";
import { test } from "node:test";

import { sensorOfPath } from "../../tools/sensorctl/console/api.js";
import { cctFromxy, spectralLocus, xyYFromXYZ } from "../../tools/sensorctl/console/colour.js";
import { EventStreamParser } from "../../tools/sensorctl/console/events.js";
import { makeReading, toCsv } from "../../tools/sensorctl/console/readings.js";
import { buildDir } from "./harness.mjs";

const near = (actual, expected, tolerance, what) =>
    assert.ok(Math.abs(actual - expected) <= tolerance, `${what}: ${actual}, expected ${expected} ± ${tolerance}`);

test("chromaticity and CCT of the CIE illuminants", () => {
    // D65 (X 95.047, Y 100, Z 108.883) and A (109.850, 100, 35.585).
    const d65 = xyYFromXYZ({ X: 95.047, Y: 100, Z: 108.883 });
    near(d65.x, 0.3127, 1e-4, "D65 x");
    near(d65.y, 0.329, 1e-4, "D65 y");
    near(cctFromxy(d65), 6504, 15, "D65 CCT");
    near(cctFromxy(xyYFromXYZ({ X: 109.85, Y: 100, Z: 35.585 })), 2856, 5, "A CCT");
    // Dark and saturated readings have no chromaticity or no meaningful CCT.
    assert.equal(xyYFromXYZ({ X: 0, Y: 0, Z: 0 }), null);
    assert.equal(cctFromxy({ x: 0.15, y: 0.06 }), null);
});

test("the spectral locus built from the packaged CIE 1931 table", async () => {
    const { default: cmf } = await import(`${buildDir}/tools/sensorctl/console/cie1931-2deg.js`);
    const locus = spectralLocus(cmf);
    assert.equal(locus.length, 95);
    const at = (nm) => locus.find((p) => p.nm === nm);
    // Published CIE 1931 chromaticities of monochromatic light.
    near(at(520).x, 0.0743, 5e-4, "520 nm x");
    near(at(520).y, 0.8338, 5e-4, "520 nm y");
    near(at(700).x, 0.7347, 5e-4, "700 nm x");
    near(at(450).y, 0.0177, 5e-4, "450 nm y");
});

test("event stream: events split anywhere, CRLF, comments and multi-line data", () => {
    const events = [];
    const parser = new EventStreamParser((e) => events.push(e));
    const text =
        ': hello\r\nevent: request\r\ndata: {"status":200}\r\n\r\ndata: a\ndata: b\n\nevent: reading\ndata:x\n\n';
    for (const chunk of text.match(/.{1,3}/gs)) parser.push(chunk);
    assert.deepEqual(events, [
        { type: "request", data: '{"status":200}' },
        { type: "message", data: "a\nb" },
        { type: "reading", data: "x" },
    ]);
});

test("CSV keeps every digit, quotes what needs it and defuses formulas", () => {
    const answer = { XYZ: { X: 95.042900000000003, Y: 100.0137, Z: 108.8812 }, rawXYZ: { X: 0.950429, Y: 1, Z: 1.1 } };
    const reading = makeReading(1, { id: "s-1", name: '=cmd,"x"' }, answer, new Date(Date.UTC(2026, 0, 2, 3, 4, 5)));
    const [header, row, end] = toCsv([reading]).split("\r\n");
    assert.equal(header, "#,time,sensor,sensor id,X,Y,Z,x,y,Y (xyY),CCT (K),raw X,raw Y,raw Z");
    const cells = row.split(/,(?=(?:[^"]*"[^"]*")*[^"]*$)/);
    assert.equal(cells[2], `"'=cmd,""x"""`);
    assert.equal(Number(cells[4]), 95.0429);
    assert.equal(Number(cells[7]), reading.xyY.x);
    assert.equal(cells.length, 14);
    assert.equal(end, "");
});

test("sensor of a resource path, for the lease header", () => {
    assert.equal(sensorOfPath("/Sensors/ab-1?connection"), "ab-1");
    assert.equal(sensorOfPath("/Sensors/Name?deviceIDs=8"), null);
    assert.equal(sensorOfPath("/Monitors/A/B/Sensor"), null);
});

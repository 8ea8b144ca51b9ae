// The CIE 1931 xy chromaticity diagram: the spectral locus from the
// colour-matching data, the sRGB triangle for reference, and one point per
// reading.
import { FRAME, SRGB, spectralLocus, toView } from "./colour.js";
import { svg } from "./dom.js";

const LABELLED_NM = [460, 480, 490, 500, 510, 520, 540, 560, 580, 600, 620, 700];

const pointsText = (points) =>
    points
        .map(({ x, y }) => {
            const { vx, vy } = toView(x, y);
            return `${vx.toFixed(2)},${vy.toFixed(2)}`;
        })
        .join(" ");

function grid() {
    const lines = [];
    for (let i = 0; i <= 8; ++i) {
        const x = i / 10;
        const a = toView(x, 0);
        const b = toView(x, FRAME.yMax);
        lines.push(svg("line", { x1: a.vx, y1: a.vy, x2: b.vx, y2: b.vy, class: "grid" }));
        lines.push(svg("text", { x: a.vx, y: a.vy + 16, class: "tick", "text-anchor": "middle" }, x.toFixed(1)));
    }
    for (let i = 0; i <= 9; ++i) {
        const y = i / 10;
        const a = toView(0, y);
        const b = toView(FRAME.xMax, y);
        lines.push(svg("line", { x1: a.vx, y1: a.vy, x2: b.vx, y2: b.vy, class: "grid" }));
        lines.push(svg("text", { x: a.vx - 6, y: a.vy + 4, class: "tick", "text-anchor": "end" }, y.toFixed(1)));
    }
    return lines;
}

function locus(cmf) {
    const points = spectralLocus(cmf);
    if (!points.length)
        return [
            svg(
                "text",
                { x: toView(0.4, 0.45).vx, y: toView(0.4, 0.45).vy, class: "missing", "text-anchor": "middle" },
                "Spectral locus unavailable: this build found no CIE 1931 table (colord-data).",
            ),
        ];
    const labels = LABELLED_NM.map((nm) => points.find((p) => Math.abs(p.nm - nm) < 0.01))
        .filter(Boolean)
        .map((p) => {
            const { vx, vy } = toView(p.x, p.y);
            // Labels sit outside the horseshoe: left of the blue-green side,
            // right of the red side.
            const left = p.nm < 520;
            return svg(
                "text",
                { x: vx + (left ? -6 : 6), y: vy + 4, class: "nm", "text-anchor": left ? "end" : "start" },
                `${p.nm}`,
            );
        });
    return [
        svg("polygon", { points: pointsText(points), class: "locus", "data-wavelengths": points.length }),
        ...labels,
    ];
}

function srgb() {
    const { red, green, blue, white } = SRGB;
    const w = toView(white.x, white.y);
    return [
        svg("polygon", { points: pointsText([red, green, blue]), class: "srgb" }),
        svg("circle", { cx: w.vx, cy: w.vy, r: 2.5, class: "white" }, svg("title", {}, "D65 white point")),
    ];
}

export class ChromaticityDiagram {
    constructor(element, cmf) {
        this.points = svg("g", { class: "readings" });
        const { left, top, width, height } = FRAME;
        const corner = toView(FRAME.xMax / 2, 0);
        this.root = svg(
            "svg",
            {
                viewBox: `0 0 ${FRAME.viewWidth} ${FRAME.viewHeight}`,
                role: "img",
                "aria-labelledby": "diagram-title",
                class: "diagram",
            },
            svg("title", { id: "diagram-title" }, "CIE 1931 xy chromaticity diagram of the readings"),
            svg("rect", {
                x: left,
                y: top,
                width,
                height,
                class: "plot-area",
                "data-x-max": FRAME.xMax,
                "data-y-max": FRAME.yMax,
            }),
            grid(),
            locus(cmf),
            srgb(),
            svg("text", { x: corner.vx, y: corner.vy + 34, class: "axis", "text-anchor": "middle" }, "x"),
            svg("text", { x: 14, y: toView(0, FRAME.yMax / 2).vy, class: "axis" }, "y"),
            this.points,
        );
        element.replaceChildren(this.root);
    }

    // readings: [{index, x, y}], oldest first; the newest is drawn on top.
    show(readings) {
        this.points.replaceChildren(
            ...readings.map((r, i) => {
                const { vx, vy } = toView(r.x, r.y);
                const latest = i === readings.length - 1;
                return svg(
                    "circle",
                    {
                        cx: vx,
                        cy: vy,
                        r: latest ? 5 : 3.5,
                        class: latest ? "reading latest" : "reading",
                        "data-reading": r.index,
                    },
                    svg("title", {}, `Reading ${r.index}: x ${r.x.toFixed(4)}, y ${r.y.toFixed(4)}`),
                );
            }),
        );
    }
}

// Colour arithmetic of the console: chromaticity, correlated colour
// temperature, and the CIE 1931 xy diagram's geometry. No DOM here, so the
// browser tests can check the numbers the page draws with.

// sRGB primaries and its D65 white point (IEC 61966-2-1), for the reference
// triangle on the diagram.
export const SRGB = Object.freeze({
    red: { x: 0.64, y: 0.33 },
    green: { x: 0.3, y: 0.6 },
    blue: { x: 0.15, y: 0.06 },
    white: { x: 0.3127, y: 0.329 },
});

// {X, Y, Z} -> {x, y, Y}; null when the sum is not a positive finite number
// (a dark or failed reading has no chromaticity).
export function xyYFromXYZ(XYZ) {
    if (!XYZ) return null;
    const { X, Y, Z } = XYZ;
    const sum = X + Y + Z;
    if (!Number.isFinite(sum) || sum <= 0) return null;
    return { x: X / sum, y: Y / sum, Y };
}

// McCamy's cubic approximation of the correlated colour temperature in
// kelvin. It is only meaningful near the Planckian locus; outside roughly
// 1667 K to 25000 K it answers null rather than a misleading number.
export function cctFromxy(xy) {
    if (!xy) return null;
    const n = (xy.x - 0.332) / (0.1858 - xy.y);
    const cct = 449 * n ** 3 + 3525 * n ** 2 + 6823.3 * n + 5520.33;
    return Number.isFinite(cct) && cct >= 1667 && cct <= 25000 ? cct : null;
}

// The spectral locus from colour-matching functions sampled at even steps:
// one {nm, x, y} per wavelength whose tristimulus sum is positive.
export function spectralLocus(cmf) {
    if (!cmf) return [];
    const count = cmf.x.length;
    const step = count > 1 ? (cmf.endNm - cmf.startNm) / (count - 1) : 0;
    const points = [];
    for (let i = 0; i < count; ++i) {
        const xyY = xyYFromXYZ({ X: cmf.x[i], Y: cmf.y[i], Z: cmf.z[i] });
        if (xyY) points.push({ nm: cmf.startNm + i * step, x: xyY.x, y: xyY.y });
    }
    return points;
}

// The diagram's frame: the chromaticity range shown and where it sits in
// the SVG's user space. y grows upwards on paper and downwards in SVG.
export const FRAME = Object.freeze({
    xMax: 0.8,
    yMax: 0.9,
    left: 56,
    top: 16,
    width: 440,
    height: 495,
    viewWidth: 512,
    viewHeight: 556,
});

export function toView(x, y, frame = FRAME) {
    return {
        vx: frame.left + (x / frame.xMax) * frame.width,
        vy: frame.top + frame.height - (y / frame.yMax) * frame.height,
    };
}

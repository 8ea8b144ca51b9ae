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

// The Planckian locus in xy (Kim et al.'s cubic fit, 1667 K to 25000 K).
function planckian(T) {
    const t = 1e3 / T;
    const x =
        T <= 4000
            ? -0.2661239 * t ** 3 - 0.2343589 * t ** 2 + 0.8776956 * t + 0.17991
            : -3.0258469 * t ** 3 + 2.1070379 * t ** 2 + 0.2226347 * t + 0.24039;
    const y =
        T <= 2222
            ? -1.1063814 * x ** 3 - 1.3481102 * x ** 2 + 2.18555832 * x - 0.20219683
            : T <= 4000
              ? -0.9549476 * x ** 3 - 1.37418593 * x ** 2 + 2.09137015 * x - 0.16748867
              : 3.081758 * x ** 3 - 5.8733867 * x ** 2 + 3.75112997 * x - 0.37001483;
    return { x, y };
}

// CIE 1960 uv, where distances from the Planckian locus are judged.
function uv({ x, y }) {
    const d = -2 * x + 12 * y + 3;
    return { u: (4 * x) / d, v: (6 * y) / d };
}

// The correlated colour temperature in kelvin by McCamy's approximation.
// A colour temperature only means something near the Planckian locus, so a
// chromaticity farther than 0.05 in uv from the locus point of that
// temperature (or outside 1667 K to 25000 K) answers null, not a number.
export function cctFromxy(xy) {
    if (!xy) return null;
    const n = (xy.x - 0.332) / (0.1858 - xy.y);
    const cct = 449 * n ** 3 + 3525 * n ** 2 + 6823.3 * n + 5520.33;
    if (!Number.isFinite(cct) || cct < 1667 || cct > 25000) return null;
    const a = uv(xy);
    const b = uv(planckian(cct));
    return Math.hypot(a.u - b.u, a.v - b.v) <= 0.05 ? cct : null;
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

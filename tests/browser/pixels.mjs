// Reads a screenshot of the chromaticity diagram back pixel by pixel (in a
// blank page's canvas) and counts what is drawn in the colours of the page's
// style sheet: the locus fill, the sRGB triangle, the latest reading.
const COLOURS = { locusFill: [243, 240, 255], triangle: [122, 79, 191], reading: [164, 22, 26] };

export async function diagramPixels(page, context) {
    const diagram = page.locator(".diagram");
    const box = await diagram.boundingBox();
    const area = await page.locator(".diagram .plot-area").boundingBox();
    const point = await page.locator(".diagram circle.latest").boundingBox();
    const png = (await diagram.screenshot()).toString("base64");
    const blank = await context.newPage();
    try {
        return await blank.evaluate(
            async ({ png, box, area, point, colours }) => {
                const image = new Image();
                image.src = `data:image/png;base64,${png}`;
                await image.decode();
                const canvas = new OffscreenCanvas(image.width, image.height);
                const g = canvas.getContext("2d");
                g.drawImage(image, 0, 0);
                const { data } = g.getImageData(0, 0, image.width, image.height);
                const scale = image.width / box.width;
                const near = (i, [r, gr, b]) =>
                    Math.abs(data[i] - r) + Math.abs(data[i + 1] - gr) + Math.abs(data[i + 2] - b) < 24;
                const counts = { locusFill: 0, triangle: 0 };
                let red = 0,
                    sumX = 0,
                    sumY = 0;
                for (let y = 0; y < image.height; ++y)
                    for (let x = 0; x < image.width; ++x) {
                        const i = 4 * (y * image.width + x);
                        if (near(i, colours.locusFill)) counts.locusFill++;
                        if (near(i, colours.triangle)) counts.triangle++;
                        if (near(i, colours.reading)) {
                            red++;
                            sumX += x;
                            sumY += y;
                        }
                    }
                const plot = area.width * area.height * scale * scale;
                const expected = {
                    x: (point.x - box.x + point.width / 2) * scale,
                    y: (point.y - box.y + point.height / 2) * scale,
                };
                return {
                    locusFill: counts.locusFill / plot,
                    triangle: counts.triangle,
                    reading: {
                        count: red,
                        offset: red ? Math.hypot(sumX / red - expected.x, sumY / red - expected.y) / scale : Infinity,
                    },
                };
            },
            { png, box, area, point, colours: COLOURS },
        );
    } finally {
        await blank.close();
    }
}

// Starts `sensorctl serve` on the simulated world and Debian's chromium, as
// the browser tests need them.
import { spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";

import { chromium } from "playwright-core";

const here = path.dirname(fileURLToPath(import.meta.url));
export const buildDir = path.resolve(process.env.SENSORCTL_BUILD_DIR || path.join(here, "../../build"));
const sensorctl = path.join(buildDir, "bin/sensorctl");
// Where the tests leave their screenshots for people to look at.
export const screenshots = path.join(buildDir, "console-screenshots");
mkdirSync(screenshots, { recursive: true });
const chromiumPath = process.env.CHROMIUM || "/usr/bin/chromium";

// Starts the gateway with `env` added (SENSORSIM_SCENARIO, SENSORSIM_INJECT,
// ...) and waits for the address it prints: http://HOST:PORT/#token=TOKEN.
export async function startGateway(env = {}) {
    const folder = mkdtempSync(path.join(tmpdir(), "console-test-"));
    const child = spawn(sensorctl, ["serve", "--listen", "127.0.0.1:0", "--token-file", path.join(folder, "token")], {
        env: { ...process.env, LORVANT_LOG_FILE: path.join(folder, "log"), ...env },
        stdio: ["ignore", "pipe", "pipe"],
    });
    let output = "";
    const address = await new Promise((resolve, reject) => {
        const timer = setTimeout(
            () => reject(new Error(`sensorctl serve printed no address in 20 s:\n${output}`)),
            20000,
        );
        const look = (chunk) => {
            output += chunk;
            const match = /(http:\/\/[^\s/]+)\/#token=([A-Za-z0-9._~-]+)/.exec(output);
            if (match) {
                clearTimeout(timer);
                resolve({ origin: match[1], token: match[2] });
            }
        };
        child.stdout.on("data", look);
        child.stderr.on("data", look);
        child.on("exit", (code) => reject(new Error(`sensorctl serve exited with ${code}:\n${output}`)));
        child.on("error", reject);
    });
    return {
        ...address,
        url: `${address.origin}/#token=${address.token}`,
        output: () => output,
        async stop() {
            child.kill("SIGTERM");
            await new Promise((resolve) => (child.exitCode !== null ? resolve() : child.on("exit", resolve)));
            rmSync(folder, { recursive: true, force: true });
        },
    };
}

export async function launchBrowser() {
    const profile = mkdtempSync(path.join(tmpdir(), "console-chromium-"));
    const context = await chromium.launchPersistentContext(profile, {
        executablePath: chromiumPath,
        headless: true,
        viewport: { width: 1500, height: 1100 },
        acceptDownloads: true,
        args: [
            "--no-sandbox",
            "--disable-gpu",
            "--disable-quic",
            "--no-first-run",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-sync",
        ],
    });
    return {
        context,
        async close() {
            await context.close();
            rmSync(profile, { recursive: true, force: true });
        },
    };
}

// Opens pages in Debian's Chromium, without network.
import { chromium } from "playwright-core";

// Milliseconds, for a machine that does much else.
export const kPatience = 300_000;
const kFlags = ["--no-sandbox", "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
  "--ignore-gpu-blocklist"];

export function launch() {
  return chromium.launch({ executablePath: "/usr/bin/chromium", timeout: kPatience, args: kFlags });
}

/** A page with everything that it prints, throws or asks the network for. */
export async function open(browser, file, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
  context.setDefaultTimeout(kPatience);
  const page = await context.newPage();
  const noise = [];
  page.on("console", (message) => noise.push(`console: ${message.text()}`));
  page.on("pageerror", (error) => noise.push(`error: ${error.message}`));
  page.on("request", (request) => {
    if (request.url() !== `file://${file}` && !/^(data|blob):/.test(request.url())) noise.push(`request: ${request.url()}`);
  });
  await page.goto(`file://${file}`, { timeout: kPatience });
  return { page, noise };
}

/** Waits until the page has compared its results, which it does last. */
export async function ready(page) {
  await page.waitForFunction(() => window.vexaPage !== undefined || !document.getElementById("error").hidden, null, { timeout: kPatience });
}

// Opens pages in Debian's Chromium, without network.
import { chromium } from "playwright-core";

// Milliseconds, for a machine that does much else.
export const kPatience = 300_000;
// No flag chooses how pictures are drawn: without a graphics card Chromium draws them by software.
const kFlags = ["--no-sandbox", "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync", "--enable-unsafe-swiftshader"];
// Chromium prints this one of itself when it draws WebGL by software.
const kOfTheBrowser = /GL Driver Message/;

export function launch() {
  return chromium.launch({ executablePath: "/usr/bin/chromium", timeout: kPatience, args: kFlags });
}

/** A page with everything that it prints, throws or asks the network for. */
export async function open(browser, file, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
  context.setDefaultTimeout(kPatience);
  const page = await context.newPage();
  const noise = [];
  page.on("console", (message) => {
    if (!kOfTheBrowser.test(message.text())) noise.push(`console: ${message.text()}`);
  });
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

/** Waits until nothing moves any more and the picture is drawn with all care. */
export async function rest(page) {
  await page.waitForFunction(() => window.vexaPage.drawing.isAtRest, null, { timeout: kPatience });
}

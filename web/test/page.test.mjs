// The page in a real browser, opened from a file: node --test, with VEXA set to the command.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { launch, open, ready } from "./browser.mjs";

const kModel = "/usr/share/assimp/models/X/Testwuson.X";
const root = new URL("../../", import.meta.url).pathname;
const pictures = process.env.VEXA_PICTURES;
let folder, browser;

function vexa(...all) {
  return execFileSync(process.env.VEXA, all, { cwd: folder, encoding: "utf8" });
}

/** A page of a scene, with a change made to its text. */
function pageOf(scene, name, change = (text) => text) {
  writeFileSync(join(folder, `${name}.json`), JSON.stringify(scene));
  vexa("view", `${name}.json`, "--out", `${name}.html`);
  const file = join(folder, `${name}.html`);
  writeFileSync(file, change(readFileSync(file, "utf8")));
  return file;
}

/** The rows of a run's values, as numbers, and its pose in world space per frame. */
function run(scene, frames) {
  const out = join(folder, "run");
  rmSync(out, { recursive: true, force: true });
  vexa("run", scene, "--frames", frames, "--mesh", "obj", "--out", out);
  const [head, ...rows] = readFileSync(join(out, "values.csv"), "utf8").trim().split("\n").map((l) => l.split(","));
  const number = (text) => (text.endsWith("Z") ? Date.parse(text) / 1000 : Number(text));
  return rows.map((row) => ({
    frame: Number(row[0]),
    values: Object.fromEntries(head.map((name, i) => [name, number(row[i])])),
    points: readFileSync(join(out, `frame_${row[0].padStart(6, "0")}.obj`), "utf8")
      .split("\n").filter((line) => line.startsWith("v ")).flatMap((line) => line.slice(2).split(" ").map(Number)),
  }));
}

/** The same as the page has it. */
function shown(page, frames) {
  return page.evaluate((all) => {
    const { runtime } = window.vexaPage;
    return all.map((frame) => {
      runtime.setFrame(frame);
      const values = {};
      runtime.samples().forEach((parts, i) => {
        const facts = runtime.values[i];
        facts.parts.forEach((part, k) => (values[part === "" ? facts.name : `${facts.name}.${part}`] = parts[k]));
      });
      const { matrix: m } = runtime.placements()[0];
      const local = runtime.points(0), points = [];
      for (let i = 0; i < local.length; i += 3) {
        const [x, y, z] = local.subarray(i, i + 3);
        for (let r = 0; r < 3; ++r) points.push(m[r] * x + m[4 + r] * y + m[8 + r] * z + m[12 + r]);
      }
      return { frame, values, points };
    });
  }, frames);
}

const kScene = JSON.parse(readFileSync(join(root, "examples/scenes/bison_walk.json"), "utf8"));

before(async () => {
  folder = mkdtempSync(join(tmpdir(), "vexa-page-"));
  vexa("import", kModel, "--clip", "Wuson_Walk", "--travel", "0,-1.3", "--out", "bison");
  browser = await launch();
});
after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true, force: true });
});

test("ten frames are those of vexa run, and nothing is printed or asked for", async () => {
  const file = pageOf(kScene, "bison");
  assert.ok(statSync(file).size < 6e6);
  const { page, noise } = await open(browser, file);
  await ready(page);
  assert.equal(await page.locator("#exactness").getAttribute("data-state"), "equal");
  const expected = run("bison.json", "0:540:60");
  const actual = await shown(page, expected.map((row) => row.frame));
  expected.forEach((row, i) => {
    for (const [name, number] of Object.entries(row.values)) {
      if (name === "frame") continue;
      const here = actual[i].values[name];
      if (name === "walk" || name === "day") assert.equal(here, number, `${name} at frame ${row.frame}`);
      else assert.ok(Math.abs(here - number) <= 1e-6 * 5, `${name} at frame ${row.frame}: ${here}, not ${number}`);
    }
    assert.equal(actual[i].points.length, row.points.length);
    row.points.forEach((x, k) => assert.ok(Math.abs(x - actual[i].points[k]) <= 1e-6 * 5));
  });
  assert.deepEqual(noise, []);
  await page.context().close();
});

test("scrubbing and playing move the picture, the far corner stays", async () => {
  const { page, noise } = await open(browser, pageOf(kScene, "bison"));
  await ready(page);
  const box = await page.locator("#stage").boundingBox();
  const middle = { x: box.x + 0.25 * box.width, y: box.y + 0.3 * box.height, width: box.width / 2, height: box.height / 2 };
  const corner = { x: box.x + 4, y: box.y + 4, width: 60, height: 30 };
  const picture = async (clip) => (await page.screenshot({ clip })).toString("base64");
  const [m0, c0] = [await picture(middle), await picture(corner)];
  await page.locator("#time").focus();
  await page.keyboard.press("End");
  await page.waitForTimeout(300);
  assert.equal(await page.locator("#frame").inputValue(), "540");
  assert.notEqual(await picture(middle), m0);
  assert.equal(await picture(corner), c0);
  await page.keyboard.press("Home");
  await page.keyboard.press("ArrowRight");
  assert.equal(await page.locator("#frame").inputValue(), "1");
  await page.keyboard.press(" ");
  await page.waitForFunction(() => window.vexaPage.timeline.frame > 20);
  await page.keyboard.press(" ");
  assert.equal(await page.evaluate(() => window.vexaPage.timeline.isPlaying), false);
  assert.notEqual(await picture(middle), m0);
  assert.deepEqual(noise, []);
  await page.context().close();
});

test("a dragged control point changes the walk, and the download gives it in vexa run", async () => {
  const { page, noise } = await open(browser, pageOf(kScene, "bison"));
  await ready(page);
  const frames = [100, 300, 540];
  const before = await shown(page, frames);
  const [x, y] = await page.evaluate(() => window.vexaPage.drawing.handlePosition(2));
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + 60, y - 20, { steps: 6 });
  await page.mouse.up();
  const edited = await shown(page, frames);
  assert.notDeepEqual(edited[1].points, before[1].points);
  // A key by its field: the sky is at its brightest earlier.
  await page.getByText("value sky").click();
  const field = page.locator("details[open] input[type=number]").nth(1);
  await field.fill("150");
  await field.press("Tab");
  const now = await shown(page, frames);
  assert.notEqual(now[0].values["sky.r"], edited[0].values["sky.r"]);
  const [download] = await Promise.all([page.waitForEvent("download"), page.locator("#download").click()]);
  await download.saveAs(join(folder, "edited.json"));
  for (const row of run("edited.json", "100:540:20").filter((each) => frames.includes(each.frame))) {
    const here = now[frames.indexOf(row.frame)];
    assert.equal(here.values.walk, row.values.walk);
    for (const name of ["sky.r", "camera.x"]) assert.ok(Math.abs(here.values[name] - row.values[name]) <= 5e-6);
    row.points.forEach((p, k) => assert.ok(Math.abs(p - here.points[k]) <= 5e-6));
  }
  assert.deepEqual(noise, []);
  await page.context().close();
});

test("what the runtime refuses is shown as text, and undone when it was an edit", async () => {
  const broken = pageOf(kScene, "broken", (text) => text.replace('"instance":"bison"', '"instance":"nobody"'));
  const first = await open(browser, broken);
  await ready(first.page);
  assert.match(await first.page.getByRole("alert").innerText(), /\/values\/0\/instance: there is no instance "nobody"/);
  assert.deepEqual(first.noise, []);
  const { page } = await open(browser, pageOf(kScene, "bison"));
  await ready(page);
  await page.evaluate(() => window.vexaPage.editing.change((scene) => (scene.values[0].keys = [])));
  assert.match(await page.getByRole("alert").innerText(), /bison.json: value "walk": has no key/);
  assert.equal(await page.evaluate(() => window.vexaPage.editing.scene.values[0].keys.length), 2);
  await Promise.all([first.page.context().close(), page.context().close()]);
});

test("a wrong result is shown in red", async () => {
  const file = pageOf(kScene, "wrong", (text) => text.replace(/"meshes":"[0-9a-f]{4}/, '"meshes":"ffff'));
  const { page } = await open(browser, file);
  await ready(page);
  assert.equal(await page.locator("#exactness").getAttribute("data-state"), "different");
  assert.equal(await page.locator("#exactness li.fault").count(), 1);
  await page.context().close();
});

for (const [name, width, colorScheme] of [["wide_light", 1280, "light"], ["wide_dark", 1280, "dark"],
  ["narrow_light", 360, "light"], ["narrow_dark", 360, "dark"]]) {
  test(`${name}: nothing is wider than the page, every field has a label`, async () => {
    const { page, noise } = await open(browser, pageOf(kScene, "bison"), { viewport: { width, height: 800 }, colorScheme });
    await ready(page);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= width);
    const unnamed = await page.evaluate(() => [...document.querySelectorAll("input, select, button")]
      .filter((each) => !each.labels?.length && !each.getAttribute("aria-label") && !each.textContent.trim()).length);
    assert.equal(unnamed, 0);
    await page.evaluate(() => window.vexaPage.timeline.show(250));
    await page.waitForTimeout(400);
    if (pictures) {
      mkdirSync(pictures, { recursive: true });
      await page.screenshot({ path: join(pictures, `page_${name}.png`) });
    }
    assert.deepEqual(noise, []);
    await page.context().close();
  });
}

/** A hundred bisons on paths of their own, one start after the other. */
function herd() {
  const scene = structuredClone(kScene);
  const [path, walk] = [scene.paths[0], scene.values[0]];
  Object.assign(scene, { paths: [], instances: [], values: [] });
  for (let i = 0; i < 100; ++i) {
    const [x, y] = [(i % 10) * 4, Math.floor(i / 10) * 6];
    const points = path.points.map((p) => ({ ...p, position: [p.position[0] + x, p.position[1] + y, 0] }));
    scene.paths.push({ ...path, name: `track ${i}`, points });
    scene.instances.push({ ...kScene.instances[0], name: `bison ${i}` });
    const keys = walk.keys.map((key) => ({ ...key, frame: key.frame + (i * 37) % 100 }));
    scene.values.push({ ...walk, name: `walk ${i}`, path: `track ${i}`, instance: `bison ${i}`, keys });
  }
  return scene;
}

// How many frames a second a machine draws is no fault of the page: the figures are printed.
for (const [name, scene] of [["one walker", kScene], ["a hundred walkers", herd()]]) {
  test(`${name} play`, async (context) => {
    const file = pageOf(scene, "speed");
    const { page, noise } = await open(browser, file);
    await ready(page);
    const alerts = await page.getByRole("alert").count();
    assert.equal(alerts > 0 ? await page.locator("#error").innerText() : "", "");
    await page.evaluate(() => window.vexaPage.timeline.setPlaying(true));
    const count = () => page.evaluate(() => new Promise((done) => {
      let frames = 0;
      const start = performance.now();
      const step = (now) => (now - start < 3000 ? (++frames, requestAnimationFrame(step)) : done(frames / 3));
      requestAnimationFrame(step);
    }));
    await count();
    const perSecond = await count();
    const first = await page.evaluate(() => performance.getEntriesByName("first picture")[0].startTime);
    context.diagnostic(`${name}: ${perSecond.toFixed(0)} frames a second, first picture after ${first.toFixed(0)} ms, ` +
      `${(statSync(file).size / 1e6).toFixed(2)} MB`);
    assert.ok(perSecond > 5);
    assert.deepEqual(noise, []);
    await page.context().close();
  });
}

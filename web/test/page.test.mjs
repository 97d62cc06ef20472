// The page in a real browser, opened from a file: node --test, with VEXA set to the command.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { isDeepStrictEqual } from "node:util";
import { launch, open, ready, rest } from "./browser.mjs";

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
  const picture = async (clip) => {
    await rest(page);
    return (await page.screenshot({ clip })).toString("base64");
  };
  const [m0, c0] = [await picture(middle), await picture(corner)];
  await page.locator("#time").focus();
  await page.keyboard.press("End");
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

const kFrames = [100, 300, 500];

/** The download of the page's scene, played by vexa run: the values and points that the page has, too. */
async function agreesWithItsDownload(page) {
  const now = await shown(page, kFrames);
  const [download] = await Promise.all([page.waitForEvent("download"), page.locator("#download").click()]);
  await download.saveAs(join(folder, "edited.json"));
  run("edited.json", "100:500:200").forEach((row, i) => {
    assert.equal(now[i].values.walk, row.values.walk);
    for (const name of ["sky.r", "camera.x"]) assert.ok(Math.abs(now[i].values[name] - row.values[name]) <= 5e-6, name);
    row.points.forEach((p, k) => assert.ok(Math.abs(p - now[i].points[k]) <= 5e-6));
  });
  return now;
}

async function drag(page, x, y, dx, dy) {
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + dx, y + dy, { steps: 6 });
  await page.mouse.up();
}

test("dragging a control point or a key changes the results, and the download gives them in vexa run", async () => {
  const { page, noise } = await open(browser, pageOf(kScene, "bison"));
  await ready(page);
  const before = await shown(page, kFrames);
  await drag(page, ...(await page.evaluate(() => window.vexaPage.drawing.paths.handlePosition(2))), 60, -20);
  const bent = await agreesWithItsDownload(page);
  assert.notDeepEqual(bent[1].points, before[1].points);
  const plot = page.getByLabel("sky over the frames");
  await plot.scrollIntoViewIfNeeded();
  const box = await plot.boundingBox();
  await drag(page, box.x + 7 + (200 / 540) * (box.width - 14), box.y + 53, -60, 0);
  assert.ok(await page.evaluate(() => window.vexaPage.editing.scene.values[1].keys[1].frame) < 190);
  assert.notEqual((await agreesWithItsDownload(page))[0].values["sky.r"], bent[0].values["sky.r"]);
  assert.equal(await page.locator("#exactness").getAttribute("data-state"), "edited");
  assert.deepEqual(noise, []);
  await page.context().close();
});

test("every field changes the results without a pointer, and the download gives them in vexa run", async () => {
  const scene = structuredClone(kScene);
  vexa("import", kModel, "--clip", "Wuson_Walk", "--clip", "Wuson_Run", "--travel", "0,-1.3", "--out", "pair");
  Object.assign(scene.objects[0], JSON.parse(readFileSync(join(folder, "pair.json"), "utf8")).objects[0], { name: "bison" });
  scene.values[1].keys[2].frame = 450;
  const { page, noise } = await open(browser, pageOf(scene, "fields"));
  await ready(page);
  let last = await shown(page, kFrames);
  const unfold = async (section) => {
    await page.locator("summary", { hasText: section }).focus();
    await page.keyboard.press("Enter");
  };
  const changes = async (section, label, nth, act) => {
    // The text of a list's label holds its options, too.
    const field = page.locator("details", { hasText: section }).getByLabel(new RegExp(`^${label}( |$)`)).nth(nth);
    await field.focus();
    await act(field);
    const now = await agreesWithItsDownload(page);
    assert.ok(!isDeepStrictEqual(now, last), `${section}, ${label}`);
    last = now;
  };
  const type = (text) => async (field) => {
    await field.press("Control+a");
    await page.keyboard.type(text);
    await page.keyboard.press("Tab");
  };
  await unfold("value sky");
  await changes("value sky", "curve", 0, (field) => field.selectOption("constant"));
  await page.locator("details", { hasText: "value sky" }).getByLabel("passes").fill("2");
  await changes("value sky", "cyclic", 0, () => page.keyboard.press(" "));
  await changes("value sky", "frame", 1, type("150"));
  await changes("value sky", "value", 1, type("10, 20, 30, 255"));
  await unfold("instance bison");
  await changes("instance bison", "start offset", 0, type("7"));
  await changes("instance bison", "take", 0, (field) => field.selectOption("Wuson_Run"));
  await unfold("path track");
  await changes("path track", "2 position x", 0, type("4.5"));
  assert.equal(await page.getByRole("alert").count(), 0);
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
  await page.locator("summary", { hasText: "value walk" }).click();
  const field = page.locator("details[open]").getByLabel("value").first();
  await field.fill("no number");
  await field.press("Enter");
  assert.match(await page.getByRole("alert").innerText(), /values.0.keys.0.value/);
  assert.equal(await field.inputValue(), "0");
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
    await rest(page);
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

// How fast a machine draws is no fault of the page, so the limits are far below what is printed.
for (const [name, scene] of [["one walker", kScene], ["a hundred walkers", herd()]]) {
  test(`${name} play`, async (context) => {
    const file = pageOf(scene, "speed");
    const { page, noise } = await open(browser, file);
    await ready(page);
    assert.equal(await page.getByRole("alert").count(), 0);
    const play = async (speed) => {
      await page.locator("#speed").selectOption(speed);
      await page.evaluate(() => window.vexaPage.timeline.setPlaying(true));
      await page.waitForTimeout(3000);
      return page.evaluate(() => new Promise((done) => {
        let frames = 0, pictures = 0, last = -1;
        const start = performance.now();
        const step = (now) => {
          if (now - start >= 3000) return done({ frames: frames / 3, pictures: pictures / 3 });
          ++frames;
          if (window.vexaPage.timeline.frame !== last) ++pictures;
          last = window.vexaPage.timeline.frame;
          requestAnimationFrame(step);
        };
        requestAnimationFrame(step);
      }));
    };
    const [normal, fast] = [await play("1"), await play("4")];
    const first = await page.evaluate(() => performance.getEntriesByName("first picture")[0].startTime);
    context.diagnostic(`${name}: ${normal.frames.toFixed(0)} frames a second with ${normal.pictures.toFixed(0)} pictures of a scene ` +
      `that has 30, ${fast.pictures.toFixed(0)} pictures of one that has 120; first picture after ${first.toFixed(0)} ms, ` +
      `${(statSync(file).size / 1e6).toFixed(2)} MB`);
    assert.ok(normal.frames > 10);
    assert.ok(first < 20_000);
    assert.deepEqual(noise, []);
    await page.context().close();
  });
}

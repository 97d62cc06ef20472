// Puts the page together: the scene that `vexa view` wrote into it, the runtime, the views.
import * as THREE from "three";
import { Drawing } from "./drawing";
import { Editing } from "./editing";
import { showExactness } from "./exactness";
import { Plots } from "./plots";
import { Runtime } from "./runtime";
import type { PageData, Scene } from "./scene";
import { Timeline } from "./timeline";

function element<T extends HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

function report(fault: string): void {
  element("error").textContent = fault;
  element("error").hidden = fault === "";
}

/** All that the scene shows over its frames, as `vexa view` found it, and its paths. */
function extentOf(page: PageData, scene: Scene, runtime: Runtime): THREE.Box3 {
  const box = new THREE.Box3();
  for (const corner of page.extent) box.expandByPoint(new THREE.Vector3(...corner));
  (scene.paths ?? []).forEach((_, p) => box.union(new THREE.Box3().setFromArray(runtime.curve(p))));
  return box;
}

async function start(): Promise<void> {
  const page = JSON.parse(element("scene").textContent!) as PageData;
  document.title = page.name;
  element("title").textContent = page.name;
  const messages: string[] = [];
  const loading = Runtime.load(element("module").textContent!, (text) => messages.push(text));
  // The browser compiles the runtime meanwhile.
  const drawing = new Drawing(element<HTMLCanvasElement>("view"), element("stage"));
  drawing.applyTheme();
  const runtime = await loading;
  runtime.open(page);

  const timeline = new Timeline(page.first, page.last, page.scene.settings?.timeScale ?? 25);
  const editing = new Editing(element("fields"), page.scene, page.name, report);
  const showFrame = (): void => {
    drawing.showFrame(timeline.frame);
    if (messages.length > 0) report(messages.splice(0).join("\n"));
  };
  drawing.open(page, runtime);
  showFrame();
  drawing.frameAll(extentOf(page, page.scene, runtime));
  drawing.showPaths(page.scene);
  drawing.draw(performance.now());
  element("status").textContent = "";
  requestAnimationFrame(() => requestAnimationFrame(() => performance.mark("first picture")));

  // The rest of the page follows when the picture is on the screen.
  await new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve)));
  editing.build();
  const plots = new Plots(element("plots"), runtime, page.scene, page.first, page.last);
  const restore = (): void => runtime.setFrame(timeline.frame);
  const markKeys = (): void =>
    timeline.markKeys((editing.scene.values ?? []).flatMap((value) => value.keys.map((key) => key.frame)));
  timeline.onFrame = () => {
    showFrame();
    plots.show(timeline.frame);
  };
  let edits = 0;
  editing.onChange = (scene) => {
    runtime.edit(scene);
    ++edits;
    const state = element("exactness");
    state.dataset["state"] = "edited";
    state.textContent = "The scene was edited: there is nothing to compare it with.";
    drawing.showPaths(scene);
    showFrame();
    plots.show(timeline.frame);
    markKeys();
    void plots.sample(scene, restore).catch((error: Error) => report(error.message));
  };
  drawing.paths.onDrag = (handle, to) => editing.dragHandle(handle, to);
  drawing.paths.onDragEnd = () => editing.build();
  plots.onKeyDrag = (value, key, frame, number) => editing.dragKey(value, key, frame, number);
  plots.onKeyDragEnd = () => editing.build();
  element("frame-all").addEventListener("click", () => {
    const box = extentOf(page, editing.scene, runtime);
    drawing.extendBox(box);
    drawing.frameAll(box);
  });
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
    drawing.applyTheme();
    plots.redraw();
  });

  const loop = (now: number): void => {
    timeline.advance(now);
    drawing.draw(now);
    plots.write(now);
    requestAnimationFrame(loop);
  };
  requestAnimationFrame(loop);
  markKeys();
  plots.show(timeline.frame);
  await plots.sample(page.scene, restore);
  await showExactness(element("exactness"), runtime, page, restore, () => edits > 0);
  // What the page's tests read.
  Object.assign(window, { vexaPage: { runtime, timeline, drawing, editing, page } });
}

start().catch((error: Error) => {
  element("status").textContent = "";
  report(error.message);
});

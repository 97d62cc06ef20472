// Puts the page together: the scene that `vexa view` wrote into it, the runtime, the views.
import * as THREE from "three";
import { Drawing } from "./drawing";
import { Editing } from "./editing";
import { showExactness } from "./exactness";
import { Plots } from "./plots";
import { Runtime } from "./runtime";
import type { PageData } from "./scene";
import { Timeline } from "./timeline";

function element<T extends HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

function report(fault: string): void {
  element("error").textContent = fault;
  element("error").hidden = fault === "";
}

/** Whether the browser draws too few frames, over half a second of playing. */
class FrameMeter {
  private times: number[] = [];
  add(now: number): boolean {
    this.times.push(now);
    if (now - this.times[0]! < 500) return false;
    const perSecond = ((this.times.length - 1) * 1000) / (now - this.times[0]!);
    this.times = [];
    return perSecond < 55;
  }
  clear(): void {
    this.times = [];
  }
}

async function start(): Promise<void> {
  const page = JSON.parse(element("scene").textContent!) as PageData;
  document.title = page.name;
  element("title").textContent = page.name;
  const messages: string[] = [];
  const runtime = await Runtime.load((text) => messages.push(text));
  runtime.open(page);

  const timeline = new Timeline(page.first, page.last, page.scene.settings?.timeScale ?? 25);
  const drawing = new Drawing(element<HTMLCanvasElement>("view"), element("stage"), runtime, page);
  const editing = new Editing(element("fields"), page.scene, page.name, report);
  const showFrame = (): void => {
    runtime.setFrame(timeline.frame);
    drawing.showFrame();
    if (messages.length > 0) report(messages.splice(0).join("\n"));
  };

  const box = new THREE.Box3();
  for (let i = 0; i <= 8; ++i) {
    runtime.setFrame(Math.round(page.first + ((page.last - page.first) * i) / 8));
    drawing.showFrame();
    drawing.extendBox(box);
  }
  (page.scene.paths ?? []).forEach((_, p) => {
    const curve = runtime.curve(p);
    for (let i = 0; i < curve.length; i += 3) box.expandByPoint(new THREE.Vector3().fromArray(curve, i));
  });
  drawing.resize();
  drawing.frameAll(box);
  drawing.applyTheme(page.scene);
  showFrame();
  drawing.draw();
  performance.mark("first picture");
  element("status").textContent = "";

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
  drawing.onDrag = (handle, to) => editing.dragHandle(handle, to);
  drawing.onDragEnd = () => editing.build();
  plots.onKeyDrag = (value, key, frame, number) => editing.dragKey(value, key, frame, number);
  plots.onKeyDragEnd = () => editing.build();
  element("frame-all").addEventListener("click", () => drawing.frameAll(box));
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
    drawing.applyTheme(editing.scene);
    plots.show(timeline.frame);
  });

  const meter = new FrameMeter();
  const loop = (now: number): void => {
    timeline.advance(now);
    drawing.draw();
    if (!timeline.isPlaying) meter.clear();
    else if (meter.add(now)) drawing.lowerQuality();
    requestAnimationFrame(loop);
  };
  requestAnimationFrame(loop);
  markKeys();
  plots.show(timeline.frame);
  await new Promise((resolve) => setTimeout(resolve));
  await plots.sample(page.scene, restore);
  await showExactness(element("exactness"), runtime, page, restore, () => edits > 0);
  // What the page's tests read.
  Object.assign(window, { vexaPage: { runtime, timeline, drawing, editing, page } });
}

start().catch((error: Error) => {
  element("status").textContent = "";
  report(error.message);
});

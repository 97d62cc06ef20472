// The edited scene: changes by dragging and by fields, and its download.
import type { Handle } from "./paths";
import { dateText, type Scene, type SceneKey, type SceneValue, type Triple } from "./scene";

const kCurves = ["linear", "square", "oneMinusSquare", "sinus", "constant", "date"];

function typeOf(value: SceneValue): string {
  if (typeof value.type === "string") return value.type;
  const isFrame = ["takeFrame", "walk", "frameRate"].includes(String(value.kind));
  return isFrame ? "integer" : "real";
}

function field(label: string, input: HTMLInputElement | HTMLSelectElement): HTMLLabelElement {
  const element = document.createElement("label");
  element.append(`${label} `, input);
  return element;
}

function input(type: string, value: string, onChange: (text: string) => void): HTMLInputElement {
  const element = document.createElement("input");
  element.type = type;
  if (type === "number") element.step = "any";
  element.value = value;
  element.addEventListener("change", () => onChange(element.value));
  return element;
}

function select(options: string[], value: string, onChange: (text: string) => void): HTMLSelectElement {
  const element = document.createElement("select");
  for (const option of options) element.add(new Option(option, option, false, option === value));
  element.addEventListener("change", () => onChange(element.value));
  return element;
}

function section(title: string, ...content: Element[]): HTMLDetailsElement {
  const details = document.createElement("details");
  const summary = document.createElement("summary");
  summary.textContent = title;
  details.append(summary, ...content);
  return details;
}

export class Editing {
  /** Called after each change; throws what the runtime has against it. */
  onChange: (scene: Scene, isStructural: boolean) => void = () => {};
  isEdited = false;

  constructor(private readonly host: HTMLElement, public scene: Scene, private readonly name: string,
              private readonly report: (fault: string) => void) {
    document.getElementById("download")!.addEventListener("click", () => this.download());
  }

  /** Makes a change; what the runtime refuses is undone. */
  change(edit: (scene: Scene) => void): boolean {
    const before = this.scene;
    const edited = structuredClone(before);
    try {
      edit(edited);
      this.scene = edited;
      this.onChange(edited, true);
      this.isEdited = true;
      this.report("");
      return true;
    } catch (error) {
      this.scene = before;
      this.build();
      this.report(`${this.name}: ${(error as Error).message}`);
      return false;
    }
  }

  dragHandle(handle: Handle, to: Triple): void {
    this.change((scene) => {
      const point = scene.paths![handle.path]!.points[handle.point]!;
      if (handle.part === "position") point.position = to;
      else point[handle.part] = to.map((x, k) => x - point.position[k]!) as Triple;
    });
  }

  dragKey(value: number, key: number, frame: number, number: number | null): void {
    this.change((scene) => {
      const edited = scene.values![value]!;
      const moved = edited.keys[key]!;
      moved.frame = frame;
      // A walk's keys say when it starts and ends; their values are take frames.
      const type = typeOf(edited);
      if (number === null || edited.kind === "walk" || edited.kind === "takeFrame") return;
      if (type === "real" && edited.kind === "position") moved.value = Math.min(Math.max(number, 0), 1);
      else if (type === "real") moved.value = number;
      else if (type === "integer" || type === "step") moved.value = Math.round(number);
      else if (type === "date") moved.value = dateText(Math.round(number));
    });
  }

  /** Makes the fields anew, keeping open what is open and focused what is focused. */
  build(): void {
    const fields = (): HTMLElement[] => [...this.host.querySelectorAll<HTMLElement>("summary, input, select")];
    const focused = fields().indexOf(document.activeElement as HTMLElement);
    const open = new Set([...this.host.querySelectorAll("details[open] > summary")].map((s) => s.textContent));
    this.host.replaceChildren(
      ...(this.scene.values ?? []).map((value, i) => this.valueSection(value, i)),
      ...(this.scene.instances ?? []).map((_, i) => this.instanceSection(i)),
      ...(this.scene.paths ?? []).map((_, i) => this.pathSection(i)));
    for (const summary of this.host.querySelectorAll("summary")) {
      if (open.has(summary.textContent)) (summary.parentElement as HTMLDetailsElement).open = true;
    }
    if (focused >= 0) fields()[focused]?.focus();
  }

  private valueSection(value: SceneValue, v: number): HTMLElement {
    const cyclic = input("checkbox", "", () => this.change((s) => (s.values![v]!.cyclic = cyclic.checked)));
    cyclic.checked = value.cyclic ?? false;
    const rows = value.keys.map((key, k) => this.keyRow(value, key, v, k));
    const passes = input("number", String(value.repeat ?? 0), (t) => this.change((s) => (s.values![v]!.repeat = Number(t))));
    const row = document.createElement("div");
    row.className = "row";
    row.append(field("cyclic", cyclic), field("passes", passes));
    return section(`value ${value.name}`, row, ...rows);
  }

  private keyRow(value: SceneValue, key: SceneKey, v: number, k: number): HTMLElement {
    const row = document.createElement("div");
    row.className = "row";
    const set = (edit: (key: SceneKey) => void): void => {
      this.change((s) => edit(s.values![v]!.keys[k]!));
    };
    row.append(field("frame", input("number", String(key.frame), (t) => set((e) => (e.frame = Number(t))))));
    const text = Array.isArray(key.value) ? key.value.join(", ") : String(key.value);
    row.append(field("value", input("text", text, (t) => set((e) => {
      if (Array.isArray(e.value)) e.value = t.split(",").map(Number);
      else e.value = typeOf(value) === "date" ? t : Number(t);
    }))));
    const curve = typeof key.curve === "number" ? String(key.curve) : key.curve ?? "linear";
    const curves = kCurves.includes(curve) ? kCurves : [...kCurves, curve];
    row.append(field("curve", select(curves, curve, (t) => set((e) => (e.curve = t)))));
    return row;
  }

  private instanceSection(i: number): HTMLElement {
    const instance = this.scene.instances![i]!;
    const object = this.scene.objects?.find((each) => each.name === instance.object);
    const row = document.createElement("div");
    row.className = "row";
    if (object) {
      const takes = object.takes.map((take) => take.name);
      row.append(field("take", select(takes, instance.take ?? takes[0] ?? "",
        (t) => this.change((s) => (s.instances![i]!.take = t)))));
    }
    row.append(field("start offset", input("number", String(instance.startOffset ?? 0),
      (t) => this.change((s) => (s.instances![i]!.startOffset = Number(t))))));
    return section(`instance ${instance.name}`, row);
  }

  private pathSection(p: number): HTMLElement {
    const path = this.scene.paths![p]!;
    const rows = path.points.flatMap((_, i) =>
      (["before", "position", "after"] as const).map((part) => {
        const row = document.createElement("div");
        row.className = "row";
        const numbers = path.points[i]![part] ?? [0, 0, 0];
        numbers.forEach((x, k) => {
          const box = input("number", String(x), (t) => this.change((s) => {
            const point = s.paths![p]!.points[i]!;
            const triple = [...(point[part] ?? [0, 0, 0])] as Triple;
            triple[k] = Number(t);
            point[part] = triple;
          }));
          row.append(field(`${i + 1} ${part} ${"xyz"[k]}`, box));
        });
        return row;
      }));
    return section(`path ${path.name}`, ...rows);
  }

  private download(): void {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([JSON.stringify(this.scene, null, 2) + "\n"], { type: "application/json" }));
    link.download = this.name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
  }
}

// The runtime behind its C interface (web/module.cpp). A failure becomes an Error with its text.
import create, { type VexaModule } from "vexa-module";
import type { PageData, Results, Scene } from "./scene";

export interface ValueFacts {
  name: string;
  parts: string[];
  date: boolean;
  color: boolean;
}
export interface InstanceFacts {
  name: string;
  object: number;
  points: number;
}
export interface Placement {
  take: number;
  frame: number;
  matrix: Float64Array;
}
export interface MeshLayout {
  triangles: Uint32Array;
  materials: Uint32Array;
  uvs: Float32Array | null;
}

type Call<R> = (...all: (number | string)[]) => R;

function bytesOf(base64: string): Uint8Array {
  // Newer browsers have a function for it, which is much faster.
  const { fromBase64 } = Uint8Array as unknown as { fromBase64?: (text: string) => Uint8Array };
  if (fromBase64) return fromBase64.call(Uint8Array, base64);
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

export class Runtime {
  values: ValueFacts[] = [];
  instances: InstanceFacts[] = [];
  private readonly call: Record<string, Call<string> & Call<number>> = {};

  private constructor(private readonly module: VexaModule) {
    const texts = ["open", "edit", "set_frame", "describe", "record_begin", "record", "record_results"];
    const numbers = ["values", "placements", "points", "triangle_count", "triangles", "materials",
      "uvs", "curve_size", "curve"];
    const argument: Record<string, string[]> = {
      open: ["string"], edit: ["string"], set_frame: ["number"], record: ["number"], points: ["number"],
      triangle_count: ["number"], triangles: ["number"], materials: ["number"], uvs: ["number"],
      curve_size: ["number"],
    };
    for (const name of [...texts, ...numbers]) {
      const result = texts.includes(name) ? "string" : "number";
      this.call[name] = module.cwrap(`vexa_${name}`, result, argument[name] ?? []) as never;
    }
  }

  /** Starts the module that the page carries as Base64. */
  static async load(module: string, report: (text: string) => void): Promise<Runtime> {
    return new Runtime(await create({ wasmBinary: bytesOf(module), print: report, printErr: report }));
  }

  private text(name: string, ...all: (number | string)[]): string {
    return (this.call[name] as Call<string>)(...all);
  }
  private number(name: string, ...all: number[]): number {
    return (this.call[name] as Call<number>)(...all);
  }
  private run(name: string, ...all: (number | string)[]): void {
    const fault = this.text(name, ...all);
    if (fault !== "") throw new Error(fault);
  }
  private doubles(pointer: number, count: number): Float64Array {
    return this.module.HEAPF64.slice(pointer / 8, pointer / 8 + count);
  }

  /** Opens the page's scene with its files, which get names of the module's own. */
  open(page: PageData): void {
    const renamed: Record<string, string> = {};
    this.module.FS.mkdir("/scene");
    Object.entries(page.files).forEach(([name, base64], index) => {
      renamed[name] = `file${index}`;
      this.module.FS.writeFile(`/scene/file${index}`, bytesOf(base64));
    });
    const scene = structuredClone(page.scene);
    for (const object of scene.objects ?? []) {
      object.mesh = renamed[object.mesh] ?? object.mesh;
      object.animation = renamed[object.animation] ?? object.animation;
    }
    this.module.FS.writeFile("/scene/scene.json", JSON.stringify(scene));
    this.run("open", "/scene/scene.json");
    this.describe();
  }

  edit(scene: Scene): void {
    this.run("edit", JSON.stringify(scene));
    this.describe();
  }

  private describe(): void {
    const facts = JSON.parse(this.text("describe")) as Pick<Runtime, "values" | "instances">;
    this.values = facts.values;
    this.instances = facts.instances;
  }

  setFrame(frame: number): void {
    this.run("set_frame", frame);
  }

  /** The parts of each value at the frame. */
  samples(): Float64Array[] {
    const counts = this.values.map((value) => value.parts.length);
    const total = counts.reduce((sum, count) => sum + count, 0);
    const all = this.doubles(this.number("values"), total);
    let start = 0;
    return counts.map((count) => all.subarray(start, (start += count)));
  }

  placements(): Placement[] {
    const all = this.doubles(this.number("placements"), 18 * this.instances.length);
    return this.instances.map((_, i) => ({
      take: all[18 * i] ?? 0,
      frame: all[18 * i + 1] ?? 0,
      matrix: all.subarray(18 * i + 2, 18 * i + 18),
    }));
  }

  /** The deformed points of an instance in its own space. */
  points(instance: number): Float32Array {
    const start = this.number("points", instance) / 4;
    return this.module.HEAPF32.slice(start, start + 3 * (this.instances[instance]?.points ?? 0));
  }

  layout(instance: number): MeshLayout {
    const count = this.number("triangle_count", instance);
    const words = (name: string, size: number): Uint32Array => {
      const start = this.number(name, instance) / 4;
      return this.module.HEAPU32.slice(start, start + size);
    };
    const uvs = this.number("uvs", instance);
    return {
      triangles: words("triangles", 3 * count),
      materials: words("materials", count),
      uvs: uvs === 0 ? null : this.module.HEAPF32.slice(uvs / 4, uvs / 4 + 6 * count),
    };
  }

  curve(path: number): Float64Array {
    const count = this.number("curve_size", path);
    return this.doubles(this.number("curve"), 3 * count);
  }

  recordBegin(): void {
    this.run("record_begin");
  }
  record(frame: number): void {
    this.run("record", frame);
  }
  recordResults(): Results {
    return JSON.parse(this.text("record_results")) as Results;
  }
}

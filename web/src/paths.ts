// The paths in the view: their curves, and their control points, which can be dragged.
import * as THREE from "three";
import type { OrbitControls } from "three/addons/controls/OrbitControls.js";
import type { Runtime } from "./runtime";
import type { Scene, Triple } from "./scene";

/** In pixels: a passage point's width, a control point's, and how near a finger must come. */
const kPointWidth = 13, kControlWidth = 10, kReach = 14;
/** More paths than these have smaller points. */
const kManyPaths = 10;

/** What part of the scene's extent a curve may be off: less than a pixel of a first picture. */
const kFlatness = 4000;

/** One handle that can be dragged: a passage point of a path, or a control point of it. */
export interface Handle {
  path: number;
  point: number;
  part: "position" | "before" | "after";
}

/** Points as round spots; they would be squares otherwise. */
function spots(width: number): THREE.PointsMaterial {
  const size = 32, texels = new Uint8Array(4 * size * size);
  for (let i = 0; i < size * size; ++i) {
    const distance = Math.hypot((i % size) + 0.5 - size / 2, Math.floor(i / size) + 0.5 - size / 2);
    texels.set([255, 255, 255, 255 * Math.min(Math.max(size / 2 - distance, 0), 1)], 4 * i);
  }
  const map = new THREE.DataTexture(texels, size, size);
  map.needsUpdate = true;
  return new THREE.PointsMaterial({ size: width, map, sizeAttenuation: false, alphaTest: 0.5 });
}

function geometryOf(numbers: number[]): THREE.BufferGeometry {
  return new THREE.BufferGeometry().setAttribute("position", new THREE.Float32BufferAttribute(numbers, 3));
}

/** The points of a curve without those that lie within `tolerance` of the line between others. */
function withoutStraight(curve: Float64Array, tolerance: number): THREE.Vector3[] {
  const points = Array.from({ length: curve.length / 3 }, (_, i) => new THREE.Vector3().fromArray(curve, 3 * i));
  const kept = points.slice(0, 1);
  const line = new THREE.Line3(), nearest = new THREE.Vector3();
  for (let first = 0, i = 2; i < points.length; ++i) {
    line.set(points[first]!, points[i]!);
    const isStraight = points.slice(first + 1, i).every((p) => line.closestPointToPoint(p, true, nearest).distanceTo(p) < tolerance);
    if (!isStraight) kept.push(points[(first = i - 1)]!);
  }
  return points.length > 1 ? [...kept, points.at(-1)!] : kept;
}

export class Paths {
  onDrag: (handle: Handle, to: Triple) => void = () => {};
  onDragEnd: () => void = () => {};
  readonly group = new THREE.Group();

  private readonly curves = new THREE.LineSegments(undefined, new THREE.LineBasicMaterial());
  private readonly stems = new THREE.LineSegments(undefined, new THREE.LineBasicMaterial());
  private readonly points = new THREE.Points(new THREE.BufferGeometry(), spots(kPointWidth));
  private readonly controlPoints = new THREE.Points(new THREE.BufferGeometry(), spots(kControlWidth));
  private readonly handles: { handle: Handle; at: THREE.Vector3 }[] = [];

  constructor(private readonly canvas: HTMLCanvasElement, private readonly camera: THREE.PerspectiveCamera,
              private readonly controls: OrbitControls) {
    for (const each of [this.curves, this.stems, this.points, this.controlPoints]) {
      each.frustumCulled = false;
      this.group.add(each);
    }
    this.addDragging();
  }

  /** Takes over the paths of a scene that is about as large as `extent`. */
  show(scene: Scene, runtime: Runtime, extent: number): void {
    const curves: number[] = [], stems: number[] = [], points: number[] = [], controlPoints: number[] = [];
    this.handles.length = 0;
    const add = (handle: Handle, at: Triple): void => {
      (handle.part === "position" ? points : controlPoints).push(...at);
      this.handles.push({ handle, at: new THREE.Vector3(...at) });
    };
    (scene.paths ?? []).forEach((path, p) => {
      withoutStraight(runtime.curve(p), extent / kFlatness).forEach((point, i, all) => {
        if (i > 0) curves.push(...all[i - 1]!, ...point);
      });
      path.points.forEach((point, i) => {
        add({ path: p, point: i, part: "position" }, point.position);
        for (const part of ["before", "after"] as const) {
          const offset = point[part];
          if (!offset) continue;
          const end = point.position.map((x, k) => x + offset[k]!) as Triple;
          stems.push(...point.position, ...end);
          add({ path: p, point: i, part }, end);
        }
      });
    });
    const scale = Math.min(1, Math.sqrt(kManyPaths / Math.max(scene.paths?.length ?? 0, 1)));
    this.points.material.size = Math.ceil(scale * kPointWidth);
    this.controlPoints.material.size = Math.ceil(scale * kControlWidth);
    this.put(this.curves, curves);
    this.put(this.stems, stems);
    this.put(this.points, points);
    this.put(this.controlPoints, controlPoints);
  }

  private put(object: THREE.LineSegments | THREE.Points, numbers: number[]): void {
    object.geometry.dispose();
    object.geometry = geometryOf(numbers);
  }

  setColors(path: THREE.Color, control: THREE.Color): void {
    this.curves.material.color = this.points.material.color = path;
    this.stems.material.color = this.controlPoints.material.color = control;
  }

  /** Where a handle is on the page, in pixels. */
  handlePosition(index: number): [number, number] | null {
    const handle = this.handles[index];
    if (!handle) return null;
    const p = handle.at.clone().project(this.camera);
    const box = this.canvas.getBoundingClientRect();
    return [box.left + (p.x + 1) / 2 * box.width, box.top + (1 - p.y) / 2 * box.height];
  }

  private handleAt(event: PointerEvent): { handle: Handle; at: THREE.Vector3 } | null {
    let best: { handle: Handle; at: THREE.Vector3 } | null = null, least = kReach;
    this.handles.forEach((handle, i) => {
      const [x, y] = this.handlePosition(i)!;
      const distance = Math.hypot(x - event.clientX, y - event.clientY);
      if (distance < least) [best, least] = [handle, distance];
    });
    return best;
  }

  private addDragging(): void {
    const ray = new THREE.Raycaster();
    const plane = new THREE.Plane();
    let dragged: { handle: Handle; at: THREE.Vector3 } | null = null;
    this.canvas.addEventListener("pointerdown", (event) => {
      dragged = event.button === 0 ? this.handleAt(event) : null;
      if (!dragged) return;
      this.controls.enabled = false;
      this.canvas.setPointerCapture(event.pointerId);
      const normal = event.shiftKey
        ? this.camera.getWorldDirection(new THREE.Vector3()).setZ(0).normalize()
        : new THREE.Vector3(0, 0, 1);
      plane.setFromNormalAndCoplanarPoint(normal, dragged.at);
    }, { capture: true });
    this.canvas.addEventListener("pointermove", (event) => {
      this.canvas.style.cursor = dragged ? "grabbing" : event.buttons === 0 && this.handleAt(event) ? "grab" : "";
      if (!dragged) return;
      const box = this.canvas.getBoundingClientRect();
      ray.setFromCamera(new THREE.Vector2((event.clientX - box.left) / box.width * 2 - 1,
        1 - (event.clientY - box.top) / box.height * 2), this.camera);
      const to = new THREE.Vector3();
      if (!ray.ray.intersectPlane(plane, to)) return;
      const round = (x: number): number => Math.round(x * 1000) / 1000;
      this.onDrag(dragged.handle, [round(to.x), round(to.y), round(to.z)]);
    });
    const end = (): void => {
      if (dragged) this.onDragEnd();
      dragged = null;
      this.controls.enabled = true;
    };
    this.canvas.addEventListener("pointerup", end);
    this.canvas.addEventListener("pointercancel", end);
  }
}

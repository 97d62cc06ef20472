// The three-dimensional view: ground, meshes, paths with their control points, names, camera.
import * as THREE from "three";
import { OrbitControls } from "three/addons/controls/OrbitControls.js";
import type { MeshLayout, Placement, Runtime } from "./runtime";
import type { PageData, Scene, Triple } from "./scene";

const kMostPoses = 1500;
const kMostNames = 24;

/** One handle that can be dragged: a passage point of a path, or a control point of it. */
export interface Handle {
  path: number;
  point: number;
  part: "position" | "before" | "after";
}

/** What the poses of an object share: corners with one texture coordinate each, and materials. */
class ObjectLook {
  readonly index: THREE.BufferAttribute;
  readonly uv: THREE.BufferAttribute;
  readonly materials: THREE.Material[] = [];
  private readonly sources: Uint32Array;
  private readonly groups: { start: number; count: number; material: number }[] = [];

  constructor(private readonly layout: MeshLayout, looks: PageData["materials"][string]) {
    const corners = new Map<string, number>();
    const sources: number[] = [], uvs: number[] = [];
    const index = new Uint32Array(layout.triangles.length);
    for (let i = 0; i < index.length; ++i) {
      const vertex = layout.triangles[i] ?? 0;
      const u = layout.uvs?.[2 * i] ?? 0, v = layout.uvs?.[2 * i + 1] ?? 0;
      const key = `${vertex} ${u} ${v}`;
      let corner = corners.get(key);
      if (corner === undefined) {
        corner = sources.push(vertex) - 1;
        uvs.push(u, v);
        corners.set(key, corner);
      }
      index[i] = corner;
    }
    this.sources = Uint32Array.from(sources);
    this.index = new THREE.BufferAttribute(index, 1);
    this.uv = new THREE.BufferAttribute(Float32Array.from(uvs), 2);
    this.addMaterials(looks);
  }

  private addMaterials(looks: PageData["materials"][string]): void {
    const places = new Map<number, number>();
    this.layout.materials.forEach((id, triangle) => {
      let place = places.get(id);
      if (place === undefined) {
        place = this.materials.push(materialOf(id, looks[id] ?? null)) - 1;
        places.set(id, place);
      }
      const last = this.groups.at(-1);
      if (last?.material === place) last.count += 3;
      else this.groups.push({ start: 3 * triangle, count: 3, material: place });
    });
  }

  geometry(points: Float32Array): THREE.BufferGeometry {
    const normals = this.normals(points);
    const positions = new Float32Array(3 * this.sources.length);
    const spread = new Float32Array(3 * this.sources.length);
    this.sources.forEach((source, corner) => {
      for (let k = 0; k < 3; ++k) {
        positions[3 * corner + k] = points[3 * source + k] ?? 0;
        spread[3 * corner + k] = normals[3 * source + k] ?? 0;
      }
    });
    const geometry = new THREE.BufferGeometry();
    geometry.setIndex(this.index);
    geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
    geometry.setAttribute("normal", new THREE.BufferAttribute(spread, 3));
    geometry.setAttribute("uv", this.uv);
    for (const group of this.groups) geometry.addGroup(group.start, group.count, group.material);
    return geometry;
  }

  /** Per vertex the sum of the triangles' normals; the shader scales them to unit length. */
  private normals(p: Float32Array): Float32Array {
    const normals = new Float32Array(p.length);
    const t = this.layout.triangles;
    for (let i = 0; i + 2 < t.length; i += 3) {
      const a = 3 * t[i]!, b = 3 * t[i + 1]!, c = 3 * t[i + 2]!;
      const ux = p[b]! - p[a]!, uy = p[b + 1]! - p[a + 1]!, uz = p[b + 2]! - p[a + 2]!;
      const vx = p[c]! - p[a]!, vy = p[c + 1]! - p[a + 1]!, vz = p[c + 2]! - p[a + 2]!;
      const nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
      for (const corner of [a, b, c]) {
        normals[corner]! += nx;
        normals[corner + 1]! += ny;
        normals[corner + 2]! += nz;
      }
    }
    for (let i = 0; i < normals.length; i += 3) {
      const length = Math.hypot(normals[i]!, normals[i + 1]!, normals[i + 2]!) || 1;
      for (let k = i; k < i + 3; ++k) normals[k]! /= length;
    }
    return normals;
  }
}

function materialOf(id: number, look: { color: Triple; texture: string } | null): THREE.Material {
  const material = new THREE.MeshLambertMaterial({ side: THREE.DoubleSide });
  if (look === null) {
    material.color.setHSL((0.07 + 0.381966 * id) % 1, 0.32, 0.52);
    return material;
  }
  material.color.setRGB(...look.color, THREE.SRGBColorSpace);
  if (look.texture !== "") {
    const texture = new THREE.TextureLoader().load(look.texture);
    texture.colorSpace = THREE.SRGBColorSpace;
    texture.wrapS = texture.wrapT = THREE.RepeatWrapping;
    material.map = texture;
  }
  return material;
}

export class Drawing {
  onDrag: (handle: Handle, to: Triple) => void = () => {};
  onDragEnd: () => void = () => {};

  private readonly renderer: THREE.WebGLRenderer;
  private readonly world = new THREE.Scene();
  private readonly camera = new THREE.PerspectiveCamera(40, 1, 0.01, 1000);
  private readonly controls: OrbitControls;
  private readonly light = new THREE.DirectionalLight(0xffffff, 2.2);
  private readonly sky = new THREE.HemisphereLight(0xffffff, 0x777777, 1.4);
  private readonly ground = new THREE.Group();
  private readonly pathGroup = new THREE.Group();
  private readonly meshes: (THREE.Mesh | null)[] = [];
  private readonly looks = new Map<number, ObjectLook>();
  private readonly poses = new Map<string, THREE.BufferGeometry>();
  private readonly names: HTMLElement[] = [];
  private readonly handles: THREE.Mesh[] = [];
  private markers: THREE.Mesh[] = [];
  private extent = 1;
  private isDirty = true;
  private quality = 0;

  constructor(private readonly canvas: HTMLCanvasElement, private readonly overlay: HTMLElement,
              private readonly runtime: Runtime, page: PageData) {
    this.renderer = new THREE.WebGLRenderer({ canvas, antialias: true, powerPreference: "high-performance" });
    this.renderer.shadowMap.enabled = true;
    this.renderer.shadowMap.type = THREE.PCFShadowMap;
    this.camera.up.set(0, 0, 1);
    this.controls = new OrbitControls(this.camera, canvas);
    this.controls.addEventListener("change", () => (this.isDirty = true));
    this.light.castShadow = true;
    this.world.add(this.sky, this.light, this.light.target, this.ground, this.pathGroup);
    this.addMeshes(page);
    this.addDragging();
    this.addKeys();
    this.applyQuality();
    new ResizeObserver(() => this.resize()).observe(overlay);
  }

  private addMeshes(page: PageData): void {
    const objects = page.scene.objects ?? [];
    this.runtime.instances.forEach((instance, i) => {
      if (instance.points === 0) {
        this.meshes.push(null);
        return;
      }
      if (!this.looks.has(instance.object)) {
        const file = objects[instance.object]?.mesh ?? "";
        this.looks.set(instance.object, new ObjectLook(this.runtime.layout(i), page.materials[file] ?? []));
      }
      const mesh = new THREE.Mesh(undefined, this.looks.get(instance.object)!.materials);
      mesh.matrixAutoUpdate = false;
      mesh.frustumCulled = false;
      mesh.castShadow = true;
      this.world.add(mesh);
      this.meshes.push(mesh);
      if (this.runtime.instances.length <= kMostNames) {
        const name = document.createElement("span");
        name.className = "name";
        name.textContent = instance.name;
        this.overlay.append(name);
        this.names[i] = name;
      }
    });
  }

  /** Puts the meshes where the runtime has them at its frame. */
  showFrame(): void {
    this.runtime.placements().forEach((placement, i) => this.place(i, placement));
    const samples = this.runtime.samples();
    let next = 0;
    this.runtime.values.forEach((value, i) => {
      if (value.parts.length !== 6) return;
      const marker = this.markers[next++] ?? this.addMarker();
      marker.position.set(samples[i]![0]!, samples[i]![1]!, samples[i]![2]!);
    });
    this.isDirty = true;
  }

  private addMarker(): THREE.Mesh {
    const marker = new THREE.Mesh(new THREE.OctahedronGeometry(0.012 * this.extent),
      new THREE.MeshLambertMaterial({ color: 0xd65a2a }));
    this.world.add(marker);
    this.markers.push(marker);
    return marker;
  }

  private place(i: number, placement: Placement): void {
    const mesh = this.meshes[i];
    if (!mesh) return;
    mesh.geometry = this.pose(i, placement);
    mesh.matrix.fromArray(placement.matrix);
    mesh.matrixWorldNeedsUpdate = true;
  }

  /** A pose depends on the object, the take and its frame only, so it is asked for once. */
  private pose(i: number, placement: Placement): THREE.BufferGeometry {
    const object = this.runtime.instances[i]!.object;
    const key = `${object} ${placement.take} ${placement.frame}`;
    let geometry = this.poses.get(key);
    if (geometry) return geometry;
    geometry = this.looks.get(object)!.geometry(this.runtime.points(i));
    if (this.poses.size >= kMostPoses) {
      const oldest = this.poses.keys().next().value!;
      this.poses.get(oldest)!.dispose();
      this.poses.delete(oldest);
    }
    this.poses.set(key, geometry);
    return geometry;
  }

  /** Draws the paths of the scene anew, with handles on their points. */
  showPaths(scene: Scene): void {
    this.pathGroup.clear();
    this.handles.length = 0;
    (scene.paths ?? []).forEach((path, p) => {
      const curve = this.runtime.curve(p);
      this.pathGroup.add(lineOf(Array.from(curve), this.color("--path")));
      path.points.forEach((point, i) => {
        this.addHandle({ path: p, point: i, part: "position" }, point.position, 0.016, "--path");
        for (const part of ["before", "after"] as const) {
          const offset = point[part];
          if (!offset) continue;
          const end = point.position.map((x, k) => x + offset[k]!) as Triple;
          this.pathGroup.add(lineOf([...point.position, ...end], this.color("--handle")));
          this.addHandle({ path: p, point: i, part }, end, 0.011, "--handle");
        }
      });
    });
    this.isDirty = true;
  }

  private addHandle(handle: Handle, at: Triple, size: number, color: string): void {
    const ball = new THREE.Mesh(new THREE.SphereGeometry(size * this.extent, 16, 10),
      new THREE.MeshBasicMaterial({ color: this.color(color) }));
    ball.position.set(...at);
    ball.userData = handle;
    this.handles.push(ball);
    this.pathGroup.add(ball);
  }

  /** Where a handle is on the page, for tests and for a person who cannot point. */
  handlePosition(index: number): [number, number] | null {
    const ball = this.handles[index];
    if (!ball) return null;
    const p = ball.position.clone().project(this.camera);
    const box = this.canvas.getBoundingClientRect();
    return [box.left + (p.x + 1) / 2 * box.width, box.top + (1 - p.y) / 2 * box.height];
  }

  private addDragging(): void {
    const ray = new THREE.Raycaster();
    const pointer = new THREE.Vector2();
    const plane = new THREE.Plane();
    let dragged: THREE.Mesh | null = null;
    const aim = (event: PointerEvent): void => {
      const box = this.canvas.getBoundingClientRect();
      pointer.set((event.clientX - box.left) / box.width * 2 - 1, 1 - (event.clientY - box.top) / box.height * 2);
      ray.setFromCamera(pointer, this.camera);
    };
    const hit = (): THREE.Mesh | null => {
      // A handle is a few pixels wide: the nearest within a finger's width counts.
      let best: THREE.Mesh | null = null, least = 0.035 * this.extent;
      for (const ball of this.handles) {
        const distance = ray.ray.distanceToPoint(ball.position);
        if (distance < least) [best, least] = [ball, distance];
      }
      return best;
    };
    this.canvas.addEventListener("pointerdown", (event) => {
      aim(event);
      dragged = event.button === 0 ? hit() : null;
      if (!dragged) return;
      this.controls.enabled = false;
      this.canvas.setPointerCapture(event.pointerId);
      const normal = event.shiftKey
        ? this.camera.getWorldDirection(new THREE.Vector3()).setZ(0).normalize()
        : new THREE.Vector3(0, 0, 1);
      plane.setFromNormalAndCoplanarPoint(normal, dragged.position);
    }, { capture: true });
    this.canvas.addEventListener("pointermove", (event) => {
      aim(event);
      this.canvas.style.cursor = dragged ? "grabbing" : hit() ? "grab" : "";
      const to = new THREE.Vector3();
      if (!dragged || !ray.ray.intersectPlane(plane, to)) return;
      const round = (x: number): number => Math.round(x * 1000) / 1000;
      this.onDrag(dragged.userData as Handle, [round(to.x), round(to.y), round(to.z)]);
    });
    const end = (): void => {
      if (dragged) this.onDragEnd();
      dragged = null;
      this.controls.enabled = true;
    };
    this.canvas.addEventListener("pointerup", end);
    this.canvas.addEventListener("pointercancel", end);
  }

  private addKeys(): void {
    const turns: Record<string, [number, number]> = { a: [0.1, 0], d: [-0.1, 0], w: [0, -0.08], s: [0, 0.08] };
    this.canvas.addEventListener("keydown", (event) => {
      const offset = this.camera.position.clone().sub(this.controls.target);
      const turn = turns[event.key];
      if (turn) {
        offset.applyAxisAngle(this.camera.up, turn[0]);
        const side = new THREE.Vector3().crossVectors(this.camera.up, offset).normalize();
        const tilted = offset.clone().applyAxisAngle(side, turn[1]);
        if (Math.abs(tilted.clone().normalize().z) < 0.98) offset.copy(tilted);
      } else if (event.key === "+" || event.key === "-") {
        offset.multiplyScalar(event.key === "+" ? 0.9 : 1 / 0.9);
      } else {
        return;
      }
      this.camera.position.copy(this.controls.target).add(offset);
      this.controls.update();
    });
  }

  /** Sets the camera, the ground and the light so that the points of the scene are in view. */
  frameAll(box: THREE.Box3): void {
    if (box.isEmpty()) box.set(new THREE.Vector3(-1, -1, 0), new THREE.Vector3(1, 1, 1));
    const center = box.getCenter(new THREE.Vector3());
    const radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 1e-6);
    this.extent = 2 * radius;
    const distance = 0.78 * radius / Math.sin(THREE.MathUtils.degToRad(this.camera.fov / 2)) / Math.min(1, this.camera.aspect);
    this.controls.target.copy(center);
    this.camera.position.copy(center).add(new THREE.Vector3(-0.55, -0.75, 0.5).normalize().multiplyScalar(distance));
    this.camera.near = distance / 100;
    this.camera.far = distance * 20;
    this.camera.updateProjectionMatrix();
    this.controls.update();
    this.placeGround(center, radius, box.min.z);
  }

  private placeGround(center: THREE.Vector3, radius: number, height: number): void {
    const step = 10 ** Math.floor(Math.log10(radius));
    const half = Math.ceil(radius * 2 / step) * step;
    this.ground.clear();
    const grid = new THREE.GridHelper(2 * half, Math.round(2 * half / step), this.color("--grid"), this.color("--grid"));
    grid.rotation.x = Math.PI / 2;
    const floor = new THREE.Mesh(new THREE.PlaneGeometry(2 * half, 2 * half), new THREE.ShadowMaterial({ opacity: 0.3 }));
    floor.receiveShadow = true;
    floor.position.z = -radius / 2000;
    this.ground.add(grid, floor);
    this.ground.position.set(Math.round(center.x / step) * step, Math.round(center.y / step) * step, height);
    this.light.position.copy(center).add(new THREE.Vector3(-0.5, -0.25, 1.2).multiplyScalar(2 * radius));
    this.light.target.position.copy(center);
    const shadow = this.light.shadow.camera;
    shadow.left = shadow.bottom = -1.15 * radius;
    shadow.right = shadow.top = 1.15 * radius;
    shadow.near = radius / 10;
    shadow.far = radius * 6;
    shadow.updateProjectionMatrix();
    this.light.shadow.normalBias = radius / 300;
    this.isDirty = true;
  }

  /** The box around all meshes at the runtime's frame, and the paths. */
  extendBox(box: THREE.Box3): void {
    this.meshes.forEach((mesh) => {
      if (!mesh?.geometry.getAttribute("position")) return;
      mesh.geometry.computeBoundingBox();
      box.union(mesh.geometry.boundingBox!.clone().applyMatrix4(mesh.matrix));
    });
  }

  private color(name: string): THREE.Color {
    return new THREE.Color(getComputedStyle(document.documentElement).getPropertyValue(name).trim());
  }

  /** Takes over the colours of the page. */
  applyTheme(scene: Scene): void {
    this.world.background = this.color("--view");
    const grid = this.ground.children[0];
    if (grid instanceof THREE.GridHelper) {
      const color = this.color("--grid");
      const colors = grid.geometry.getAttribute("color");
      for (let i = 0; i < colors.count; ++i) colors.setXYZ(i, color.r, color.g, color.b);
      colors.needsUpdate = true;
    }
    this.showPaths(scene);
  }

  resize(): void {
    const { clientWidth: width, clientHeight: height } = this.overlay;
    if (width === 0 || height === 0) return;
    this.renderer.setSize(width, height, false);
    this.camera.aspect = width / height;
    this.camera.updateProjectionMatrix();
    this.isDirty = true;
  }

  /** Gives up resolution and then the shadow where a machine cannot draw all frames. */
  lowerQuality(): void {
    if (this.quality >= 4) return;
    ++this.quality;
    this.applyQuality();
  }

  private applyQuality(): void {
    const ratios = [Math.min(devicePixelRatio, 2), 1, 1, 0.75, 0.5];
    const sizes = [1024, 1024, 512, 512, 0];
    this.renderer.setPixelRatio(Math.min(devicePixelRatio, ratios[this.quality]!));
    const size = sizes[this.quality]!;
    this.light.castShadow = size > 0;
    if (size > 0 && this.light.shadow.mapSize.x !== size) {
      this.light.shadow.mapSize.set(size, size);
      this.light.shadow.map?.dispose();
      this.light.shadow.map = null;
    }
    this.resize();
  }

  /** Draws when something has changed. True when it drew. */
  draw(): boolean {
    if (!this.isDirty) return false;
    this.isDirty = false;
    this.renderer.render(this.world, this.camera);
    this.placeNames();
    return true;
  }

  private placeNames(): void {
    const p = new THREE.Vector3();
    this.names.forEach((name, i) => {
      const mesh = this.meshes[i];
      if (!mesh) return;
      p.setFromMatrixPosition(mesh.matrix).project(this.camera);
      const x = (p.x + 1) / 2 * this.overlay.clientWidth, y = (1 - p.y) / 2 * this.overlay.clientHeight;
      name.style.transform = `translate(${x.toFixed(1)}px, ${y.toFixed(1)}px)`;
      name.hidden = p.z > 1;
    });
  }
}

function lineOf(numbers: number[], color: THREE.Color): THREE.Line {
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute("position", new THREE.Float32BufferAttribute(numbers, 3));
  const line = new THREE.Line(geometry, new THREE.LineBasicMaterial({ color }));
  line.frustumCulled = false;
  return line;
}

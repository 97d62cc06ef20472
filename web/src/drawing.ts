// The three-dimensional view: ground, meshes, shadows, names, camera, and what a picture may cost.
import * as THREE from "three";
import { OrbitControls } from "three/addons/controls/OrbitControls.js";
import { Crowd } from "./crowd";
import { Poses, type ObjectLook } from "./looks";
import { Paths } from "./paths";
import type { Placement, Runtime } from "./runtime";
import type { PageData, Scene } from "./scene";

const kMostNames = 24;
/** Milliseconds until a picture that has changed rests, and over which the frames are counted. */
const kRest = 250, kWindow = 400;
/** Fewer pictures in that time are no motion. */
const kSeries = 4;
/** Frames a second that are enough, and the part of what the screen shows that is. */
const kEnough = 60, kEnoughPart = 0.9;
const kTowardsLight = new THREE.Vector3(-0.5, -0.25, 1.2);

/** The lower in the list, the less time a picture takes. */
interface Quality {
  /** Drawn pixels per pixel of the page, in each direction. */
  ratio: number;
  /** By how many drawn pixels a mesh may be off; 0 draws it as it is. */
  tolerance: number;
  /** From a shadow map, or the mesh once more, flat on the ground. */
  shadow: "soft" | "flat" | "none";
}
const kQualities: Quality[] = [
  { ratio: Math.min(Math.max(devicePixelRatio, 2), 3), tolerance: 0, shadow: "soft" },
  { ratio: Math.min(devicePixelRatio, 1.5), tolerance: 0, shadow: "flat" },
  { ratio: 0.9, tolerance: 2, shadow: "flat" },
  { ratio: 0.75, tolerance: 3, shadow: "flat" },
  { ratio: 0.6, tolerance: 4, shadow: "flat" },
  { ratio: 0.5, tolerance: 5, shadow: "none" },
];

/** Without a graphics card, how many triangles make pictures in motion start one quality lower. */
const kTriangles = [-1, 10_000, 40_000, 100_000];

/** An instance with a mesh. */
interface Body {
  instance: number;
  look: ObjectLook;
  mesh: THREE.Mesh;
  shadow: THREE.Mesh;
  placement: Placement | null;
}

function isSoftware(gl: WebGLRenderingContext | WebGL2RenderingContext): boolean {
  const facts = gl.getExtension("WEBGL_debug_renderer_info");
  const name = String(gl.getParameter(facts ? facts.UNMASKED_RENDERER_WEBGL : gl.RENDERER));
  return /swiftshader|llvmpipe|softpipe|software|basic render/i.test(name);
}

/** Compares how many frames the browser shows while pictures move with how many it shows at rest. */
class FrameMeter {
  private atRest = 30;
  private start = 0;
  private frames = 0;
  private pictures = 0;
  private wasSlow = false;

  /** True when pictures in motion take too long: for a moment when much too long, else for two. */
  add(now: number, isPicture: boolean): boolean {
    ++this.frames;
    if (isPicture) ++this.pictures;
    const elapsed = now - this.start, isRest = this.pictures === 0, isMotion = this.pictures >= kSeries;
    if (elapsed < kWindow || (elapsed < 3 * kWindow && !isRest && !isMotion)) return false;
    const rate = (this.frames * 1000) / elapsed;
    this.start = now;
    this.frames = this.pictures = 0;
    if (isRest) this.atRest = Math.max(this.atRest, rate);
    const enough = kEnoughPart * Math.min(this.atRest, kEnough);
    const isSlow = isMotion && rate < enough;
    const isReported = isSlow && (this.wasSlow || rate < 0.6 * enough);
    this.wasSlow = isSlow && !isReported;
    return isReported;
  }
}

export class Drawing {
  readonly paths: Paths;
  /** The quality of pictures in motion: what this machine draws in time. */
  motion = 0;

  private readonly renderer: THREE.WebGLRenderer;
  private readonly world = new THREE.Scene();
  private readonly camera = new THREE.PerspectiveCamera(40, 1, 0.01, 1000);
  private readonly controls: OrbitControls;
  private readonly light = new THREE.DirectionalLight(0xffffff, 2.2);
  private readonly ground = new THREE.Group();
  private readonly floor = new THREE.Mesh(undefined, new THREE.ShadowMaterial({ opacity: 0.3 }));
  private grid: THREE.GridHelper | null = null;
  private readonly gridMaterial = new THREE.LineBasicMaterial();
  private readonly flatShadow = new THREE.MeshBasicMaterial({ side: THREE.DoubleSide });
  private readonly flatten = new THREE.Matrix4();
  private readonly bodies: Body[] = [];
  /** What stands for the bodies of a look when these may be simplified. */
  private readonly crowds: { look: ObjectLook; bodies: Crowd; shadows: Crowd }[] = [];
  private readonly names: { body: Body; element: HTMLElement }[] = [];
  private readonly markers: THREE.Mesh[] = [];
  private runtime: Runtime | null = null;
  private poses: Poses | null = null;
  private frame = 0;
  private extent = 1;
  private shown = -1;
  private isDirty = true;
  private changedAt = 0;
  private readonly meter = new FrameMeter();

  constructor(private readonly canvas: HTMLCanvasElement, private readonly overlay: HTMLElement) {
    // Instead of multisampling, pictures at rest are drawn larger than they are shown.
    this.renderer = new THREE.WebGLRenderer({ canvas, antialias: false, powerPreference: "high-performance" });
    this.renderer.shadowMap.enabled = true;
    this.renderer.shadowMap.type = THREE.PCFShadowMap;
    this.light.shadow.mapSize.set(1024, 1024);
    this.light.shadow.radius = 2;
    this.floor.receiveShadow = true;
    this.camera.up.set(0, 0, 1);
    this.controls = new OrbitControls(this.camera, canvas);
    this.controls.addEventListener("change", () => (this.isDirty = true));
    this.paths = new Paths(canvas, this.camera, this.controls);
    this.ground.add(this.floor);
    this.world.add(new THREE.HemisphereLight(0xffffff, 0x777777, 1.4), this.light, this.light.target,
      this.ground, this.paths.group);
    this.addKeys();
  }

  open(page: PageData, runtime: Runtime): void {
    this.runtime = runtime;
    const poses = this.poses = new Poses(runtime, page);
    runtime.instances.forEach((instance, i) => {
      if (instance.points === 0) return;
      const look = poses.look(i);
      const body: Body = {
        instance: i,
        look,
        mesh: new THREE.Mesh(undefined, look.materials),
        shadow: new THREE.Mesh(undefined, this.flatShadow),
        placement: null,
      };
      for (const mesh of [body.mesh, body.shadow]) {
        mesh.matrixAutoUpdate = false;
        mesh.frustumCulled = false;
        this.world.add(mesh);
      }
      body.mesh.castShadow = true;
      this.bodies.push(body);
      if (this.crowds.every((crowd) => crowd.look !== look)) this.addCrowd(look);
      if (runtime.instances.length <= kMostNames) this.addName(body, instance.name);
    });
    if (isSoftware(this.renderer.getContext())) {
      const triangles = this.bodies.reduce((sum, body) => sum + body.look.triangles, 0);
      this.motion = kTriangles.filter((most) => triangles > most).length;
    }
    new ResizeObserver(() => this.resize()).observe(this.overlay);
    this.resize();
  }

  private addCrowd(look: ObjectLook): void {
    const crowd = { look, bodies: new Crowd(look.materials), shadows: new Crowd(this.flatShadow) };
    this.crowds.push(crowd);
    this.world.add(crowd.bodies.mesh, crowd.shadows.mesh);
  }

  private addName(body: Body, name: string): void {
    const element = document.createElement("span");
    element.className = "name";
    element.textContent = name;
    this.overlay.append(element);
    this.names.push({ body, element });
  }

  /** Puts everything where the runtime has it at the frame. */
  showFrame(frame: number): void {
    const runtime = this.runtime!;
    this.frame = frame;
    runtime.setFrame(frame);
    const placements = runtime.placements();
    for (const body of this.bodies) {
      body.placement = placements[body.instance]!;
      body.mesh.matrix.fromArray(body.placement.matrix);
      this.placeShadow(body);
      body.mesh.matrixWorldNeedsUpdate = true;
    }
    const samples = runtime.samples();
    let next = 0;
    runtime.values.forEach((value, i) => {
      if (value.parts.length !== 6) return;
      const marker = this.markers[next++] ?? this.addMarker();
      marker.position.set(samples[i]![0]!, samples[i]![1]!, samples[i]![2]!);
    });
    this.isDirty = true;
  }

  private placeShadow(body: Body): void {
    body.shadow.matrix.multiplyMatrices(this.flatten, body.mesh.matrix);
    body.shadow.matrixWorldNeedsUpdate = true;
  }

  private addMarker(): THREE.Mesh {
    const marker = new THREE.Mesh(new THREE.OctahedronGeometry(0.012 * this.extent),
      new THREE.MeshLambertMaterial({ color: 0xd65a2a }));
    this.world.add(marker);
    this.markers.push(marker);
    return marker;
  }

  private addKeys(): void {
    const turns: Record<string, [number, number]> = { a: [0.1, 0], d: [-0.1, 0], w: [0, -0.08], s: [0, 0.08] };
    this.canvas.addEventListener("keydown", (event) => {
      const offset = this.camera.position.clone().sub(this.controls.target);
      const turn = turns[event.key.toLowerCase()];
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

  /** The box around all meshes at the frame. */
  extendBox(box: THREE.Box3): void {
    for (const body of this.bodies) {
      const geometry = this.pose(body, 0);
      if (!geometry.boundingBox) geometry.computeBoundingBox();
      box.union(geometry.boundingBox!.clone().applyMatrix4(body.mesh.matrix));
    }
  }

  /** Sets the camera, the ground and the light so that all that lies in the box is in view. */
  frameAll(box: THREE.Box3): void {
    if (box.isEmpty()) box.set(new THREE.Vector3(-1, -1, 0), new THREE.Vector3(1, 1, 1));
    const center = box.getCenter(new THREE.Vector3());
    const radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 1e-6);
    this.extent = 2 * radius;
    const angle = THREE.MathUtils.degToRad(this.camera.fov / 2);
    const distance = 0.78 * radius / Math.sin(angle) / Math.min(1, this.camera.aspect);
    this.controls.target.copy(center);
    this.camera.position.copy(center).add(new THREE.Vector3(-0.55, -0.75, 0.5).setLength(distance));
    this.camera.near = distance / 100;
    this.camera.far = distance * 20;
    this.camera.updateProjectionMatrix();
    this.controls.update();
    this.placeGround(center, radius, box.min.z);
  }

  private placeGround(center: THREE.Vector3, radius: number, height: number): void {
    const step = 10 ** Math.floor(Math.log10(radius));
    const half = Math.ceil(radius * 2 / step) * step;
    if (this.grid) this.ground.remove(this.grid);
    this.grid?.geometry.dispose();
    this.grid = new THREE.GridHelper(2 * half, Math.round(2 * half / step));
    this.grid.rotation.x = Math.PI / 2;
    this.grid.material.dispose();
    this.grid.material = this.gridMaterial;
    this.floor.geometry.dispose();
    this.floor.geometry = new THREE.PlaneGeometry(2 * half, 2 * half);
    this.floor.position.z = -radius / 2000;
    this.ground.add(this.grid);
    this.ground.position.set(Math.round(center.x / step) * step, Math.round(center.y / step) * step, height);
    this.placeLight(center, radius);
    const { x, y, z } = kTowardsLight, level = height - radius / 1000;
    this.flatten.set(1, 0, -x / z, level * x / z, 0, 1, -y / z, level * y / z, 0, 0, 0, level, 0, 0, 0, 1);
    for (const body of this.bodies) this.placeShadow(body);
    for (const { shadows } of this.crowds) {
      shadows.mesh.matrix.copy(this.flatten);
      shadows.mesh.matrixWorldNeedsUpdate = true;
    }
    this.isDirty = true;
  }

  private placeLight(center: THREE.Vector3, radius: number): void {
    this.light.position.copy(center).addScaledVector(kTowardsLight, 2 * radius);
    this.light.target.position.copy(center);
    const shadow = this.light.shadow.camera;
    shadow.left = shadow.bottom = -1.15 * radius;
    shadow.right = shadow.top = 1.15 * radius;
    shadow.near = radius / 10;
    shadow.far = radius * 6;
    shadow.updateProjectionMatrix();
    this.light.shadow.normalBias = radius / 300;
  }

  private color(name: string): THREE.Color {
    return new THREE.Color(getComputedStyle(document.documentElement).getPropertyValue(name).trim());
  }

  /** Takes over the colours of the page. */
  applyTheme(): void {
    const ground = this.color("--view");
    this.world.background = ground;
    // As dark as the floor's shadow, which is blended in the colours of the screen.
    this.flatShadow.color = ground.clone().convertLinearToSRGB().multiplyScalar(0.7).convertSRGBToLinear();
    this.gridMaterial.color = this.color("--grid");
    this.paths.setColors(this.color("--path"), this.color("--handle"));
    this.isDirty = true;
  }

  showPaths(scene: Scene): void {
    this.paths.show(scene, this.runtime!, this.extent);
    this.isDirty = true;
  }

  private resize(): void {
    const { clientWidth: width, clientHeight: height } = this.overlay;
    if (width === 0 || height === 0) return;
    this.renderer.setSize(width, height, false);
    this.camera.aspect = width / height;
    this.camera.updateProjectionMatrix();
    this.isDirty = true;
  }

  /** Draws what has changed: at once as well as there is time, with all care when it rests. To be called for every frame. */
  draw(now: number): void {
    const isSlow = this.meter.add(now, this.isDirty);
    if (isSlow && this.motion + 1 < kQualities.length) ++this.motion;
    if (this.isDirty) {
      this.isDirty = false;
      this.changedAt = now;
      this.render(this.motion);
    } else if (this.shown !== 0 && now - this.changedAt > kRest) {
      this.render(0);
    }
  }

  /** Whether the picture is drawn with all care. */
  get isAtRest(): boolean {
    return this.shown === 0 && !this.isDirty;
  }

  private render(level: number): void {
    const quality = kQualities[level]!;
    if (level !== this.shown) this.apply(quality);
    this.shown = level;
    if (quality.tolerance > 0) this.gather(quality);
    else for (const body of this.bodies) body.mesh.geometry = body.shadow.geometry = this.pose(body, 0);
    this.renderer.render(this.world, this.camera);
    this.placeNames();
  }

  private gather(quality: Quality): void {
    for (const { look, bodies, shadows } of this.crowds) {
      const members = this.bodies.filter((body) => body.look === look);
      const forms = (tolerance: number): Parameters<Crowd["gather"]>[0] =>
        members.map((body) => ({ geometry: this.pose(body, tolerance), matrix: body.mesh.matrix }));
      bodies.gather(forms(quality.tolerance));
      if (quality.shadow === "flat") shadows.gather(forms(2 * quality.tolerance));
    }
  }

  private apply(quality: Quality): void {
    this.renderer.setPixelRatio(quality.ratio);
    this.light.castShadow = this.floor.visible = quality.shadow === "soft";
    const isCrowd = quality.tolerance > 0, isFlat = quality.shadow === "flat";
    for (const body of this.bodies) {
      body.mesh.visible = !isCrowd;
      body.shadow.visible = !isCrowd && isFlat;
    }
    for (const crowd of this.crowds) {
      crowd.bodies.mesh.visible = isCrowd;
      crowd.shadows.mesh.visible = isCrowd && isFlat;
    }
  }

  private pose(body: Body, tolerance: number): THREE.BufferGeometry {
    const distance = this.camera.position.distanceTo(new THREE.Vector3().setFromMatrixPosition(body.mesh.matrix));
    const pixels = this.canvas.height / 2 / Math.tan(THREE.MathUtils.degToRad(this.camera.fov / 2));
    const size = 2 * body.look.radius * body.mesh.matrix.getMaxScaleOnAxis() * pixels / Math.max(distance, 1e-30);
    return this.poses!.geometry(body.instance, body.placement!, this.frame, body.look.cellsFor(size, tolerance));
  }

  private placeNames(): void {
    const p = new THREE.Vector3();
    for (const { body, element } of this.names) {
      p.set(0, 0, body.look.top + 0.15 * body.look.radius).applyMatrix4(body.mesh.matrix).project(this.camera);
      const x = (p.x + 1) / 2 * this.overlay.clientWidth, y = (1 - p.y) / 2 * this.overlay.clientHeight;
      element.style.transform = `translate(${x.toFixed(1)}px, ${y.toFixed(1)}px) translate(-50%, -100%)`;
      element.hidden = p.z > 1;
    }
  }
}

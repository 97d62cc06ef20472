// How an object looks: its materials, and its poses as three.js wants them.
import * as THREE from "three";
import { formOf, normalsOf, representatives, type Form } from "./forms";
import type { MeshLayout, Placement, Runtime } from "./runtime";
import type { PageData, Triple } from "./scene";

/** With more cells along its longest side a simpler form would hardly differ. */
const kMostCells = 48;
const kMostPoses = 1500;

interface Shared {
  form: Form;
  index: THREE.BufferAttribute;
  uv: THREE.BufferAttribute;
}

export class ObjectLook {
  readonly materials: THREE.Material[] = [];
  /** Of the points that the look was made with, in the object's own space. */
  readonly radius: number;
  readonly top: number;
  readonly triangles: number;
  private readonly forms = new Map<number, Shared>();
  private readonly places = new Map<number, number>();

  constructor(private readonly layout: MeshLayout, private readonly points: Float32Array,
              looks: PageData["materials"][string]) {
    for (const id of layout.materials) {
      if (!this.places.has(id)) this.places.set(id, this.materials.push(materialOf(id, looks[id] ?? null)) - 1);
    }
    const box = new THREE.Box3().setFromArray(points);
    this.radius = box.getSize(new THREE.Vector3()).length() / 2;
    this.top = box.max.z;
    this.triangles = layout.triangles.length / 3;
  }

  /** The cells of the simpler form that differs by about `tolerance` on a diameter of `size`; 0 for the mesh as it is. */
  cellsFor(size: number, tolerance: number): number {
    const cells = tolerance > 0 ? size / tolerance : Infinity;
    if (!(cells < kMostCells)) return 0;
    return Math.max(4, Math.round(2 ** (Math.ceil(2 * Math.log2(cells)) / 2)));
  }

  private shared(cells: number): Shared {
    let shared = this.forms.get(cells);
    if (!shared) {
      const form = formOf(this.layout, cells > 0 ? representatives(this.points, cells) : null);
      shared = {
        form,
        index: new THREE.BufferAttribute(form.index, 1),
        uv: new THREE.BufferAttribute(form.uvs, 2),
      };
      this.forms.set(cells, shared);
    }
    return shared;
  }

  geometry(points: Float32Array, cells: number): THREE.BufferGeometry {
    const { form, index, uv } = this.shared(cells);
    const normals = normalsOf(points, this.layout.triangles);
    const positions = new Float32Array(3 * form.sources.length);
    const spread = new Float32Array(3 * form.sources.length);
    form.sources.forEach((source, corner) => {
      for (let k = 0; k < 3; ++k) {
        positions[3 * corner + k] = points[3 * source + k]!;
        spread[3 * corner + k] = normals[3 * source + k]!;
      }
    });
    const geometry = new THREE.BufferGeometry();
    geometry.setIndex(index);
    geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
    geometry.setAttribute("normal", new THREE.BufferAttribute(spread, 3));
    geometry.setAttribute("uv", uv);
    for (const group of form.groups) geometry.addGroup(group.start, group.count, this.places.get(group.material));
    return geometry;
  }
}

/** The poses that were asked for. One depends on the object, the take and its frame only. */
export class Poses {
  private readonly looks = new Map<number, ObjectLook>();
  private readonly known = new Map<string, THREE.BufferGeometry>();

  constructor(private readonly runtime: Runtime, private readonly page: PageData) {}

  look(instance: number): ObjectLook {
    const { object } = this.runtime.instances[instance]!;
    let look = this.looks.get(object);
    if (!look) {
      const file = this.page.scene.objects?.[object]?.mesh ?? "";
      const points = this.runtime.points(instance);
      look = new ObjectLook(this.runtime.layout(instance), points, this.page.materials[file] ?? []);
      this.looks.set(object, look);
    }
    return look;
  }

  /** The pose that the placement of an instance has at a frame of the scene. */
  geometry(instance: number, placement: Placement, frame: number, cells: number): THREE.BufferGeometry {
    const key = `${this.runtime.instances[instance]!.object} ${placement.take} ${placement.frame} ${cells}`;
    let geometry = this.known.get(key);
    if (geometry) return geometry;
    if (this.known.size >= kMostPoses) this.forget();
    this.runtime.setFrame(frame);
    geometry = this.look(instance).geometry(this.runtime.points(instance), cells);
    this.known.set(key, geometry);
    return geometry;
  }

  /** All at once: three.js frees what poses share with the first of them. */
  private forget(): void {
    for (const geometry of this.known.values()) geometry.dispose();
    this.known.clear();
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

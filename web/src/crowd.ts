// All bodies of one look as one mesh: every draw call takes time of its own.
import * as THREE from "three";

interface Member {
  geometry: THREE.BufferGeometry;
  matrix: THREE.Matrix4;
}

export class Crowd {
  readonly mesh: THREE.Mesh;
  private geometry = new THREE.BufferGeometry();
  private corners = 0;
  private indices = 0;

  /** With one material for all triangles, or one for each that the bodies have. */
  constructor(private readonly material: THREE.Material | THREE.Material[]) {
    this.mesh = new THREE.Mesh(this.geometry, material);
    this.mesh.matrixAutoUpdate = this.mesh.frustumCulled = false;
  }

  /** Takes over the members' triangles, placed in the world. */
  gather(members: Member[]): void {
    let corners = 0, indices = 0;
    for (const { geometry } of members) {
      corners += geometry.getAttribute("position").count;
      indices += geometry.index!.count;
    }
    this.reserve(corners, indices);
    let base = 0;
    for (const member of members) base += this.addCorners(member, base);
    this.addTriangles(members);
    for (const name of ["position", "normal", "uv"]) this.send(this.geometry.getAttribute(name) as THREE.BufferAttribute, corners);
    this.send(this.geometry.index!, indices);
  }

  /** Only what is in use goes to the graphics card. */
  private send(attribute: THREE.BufferAttribute, count: number): void {
    attribute.clearUpdateRanges();
    attribute.addUpdateRange(0, count * attribute.itemSize);
    attribute.needsUpdate = true;
  }

  private reserve(corners: number, indices: number): void {
    if (corners <= this.corners && indices <= this.indices) return;
    this.corners = Math.ceil(1.5 * corners);
    this.indices = Math.ceil(1.5 * indices);
    this.geometry.dispose();
    this.geometry = new THREE.BufferGeometry();
    const add = (name: string, size: number): void => {
      const attribute = new THREE.BufferAttribute(new Float32Array(size * this.corners), size);
      this.geometry.setAttribute(name, attribute.setUsage(THREE.DynamicDrawUsage));
    };
    add("position", 3);
    add("normal", 3);
    add("uv", 2);
    this.geometry.setIndex(new THREE.BufferAttribute(new Uint32Array(this.indices), 1).setUsage(THREE.DynamicDrawUsage));
    this.mesh.geometry = this.geometry;
  }

  private addCorners(member: Member, base: number): number {
    const positions = this.geometry.getAttribute("position").array, normals = this.geometry.getAttribute("normal").array;
    const p = member.geometry.getAttribute("position").array, n = member.geometry.getAttribute("normal").array;
    const m = member.matrix.elements;
    // The shader scales normals to unit length; a scale that differs by axis leaves them a little off.
    for (let i = 0, j = 3 * base; i < p.length; i += 3, j += 3) {
      for (let k = 0; k < 3; ++k) {
        positions[j + k] = m[k]! * p[i]! + m[4 + k]! * p[i + 1]! + m[8 + k]! * p[i + 2]! + m[12 + k]!;
        normals[j + k] = m[k]! * n[i]! + m[4 + k]! * n[i + 1]! + m[8 + k]! * n[i + 2]!;
      }
    }
    (this.geometry.getAttribute("uv").array as Float32Array).set(member.geometry.getAttribute("uv").array, 2 * base);
    return p.length / 3;
  }

  private addTriangles(members: Member[]): void {
    this.geometry.clearGroups();
    let next = 0;
    const add = (material: number | null): void => {
      const start = next;
      let base = 0;
      for (const { geometry } of members) {
        for (const group of geometry.groups) {
          if (material === null || group.materialIndex === material) next = this.copy(geometry, group, base, next);
        }
        base += geometry.getAttribute("position").count;
      }
      if (material !== null) this.geometry.addGroup(start, next - start, material);
    };
    if (Array.isArray(this.material)) this.material.forEach((_, material) => add(material));
    else add(null);
    this.geometry.setDrawRange(0, next);
  }

  private copy(from: THREE.BufferGeometry, range: { start: number; count: number }, base: number, next: number): number {
    const index = this.geometry.index!.array, corners = from.index!.array;
    for (let i = range.start; i < range.start + range.count; ++i) index[next++] = corners[i]! + base;
    return next;
  }
}

// Triangles with the corners that a picture needs, as they are or with fewer of them.
import type { MeshLayout } from "./runtime";

/** Corners take the point of a vertex and have texture coordinates of their own. */
export interface Form {
  /** The vertex of each corner. */
  sources: Uint32Array;
  uvs: Float32Array;
  /** Three corners per triangle, those of one material together. */
  index: Uint32Array;
  groups: { start: number; count: number; material: number }[];
}

/** How finely corners of a simpler form keep apart what lies apart in the texture. */
const kTextureCells = 16;

/**
 * For each point the one that stands for all points in its cell of a grid with so many cells along
 * the longest side: the nearest to their middle.
 */
export function representatives(points: Float32Array, cells: number): Uint32Array {
  const low = [Infinity, Infinity, Infinity], high = [-Infinity, -Infinity, -Infinity];
  points.forEach((x, i) => {
    low[i % 3] = Math.min(low[i % 3]!, x);
    high[i % 3] = Math.max(high[i % 3]!, x);
  });
  const size = Math.max(...high.map((x, k) => x - low[k]!), 1e-30) / cells;
  const members = new Map<number, number[]>();
  for (let v = 0; v < points.length / 3; ++v) {
    let cell = 0;
    for (let k = 0; k < 3; ++k) cell = cell * (cells + 1) + Math.floor((points[3 * v + k]! - low[k]!) / size);
    const list = members.get(cell);
    if (list) list.push(v);
    else members.set(cell, [v]);
  }
  const chosen = new Uint32Array(points.length / 3);
  for (const list of members.values()) {
    const best = nearestToMiddle(points, list);
    for (const v of list) chosen[v] = best;
  }
  return chosen;
}

function nearestToMiddle(points: Float32Array, vertices: number[]): number {
  const middle = [0, 1, 2].map((k) => vertices.reduce((sum, v) => sum + points[3 * v + k]!, 0) / vertices.length);
  const distance = (v: number): number => Math.hypot(...middle.map((x, k) => x - points[3 * v + k]!));
  return vertices.reduce((best, v) => (distance(v) < distance(best) ? v : best));
}

/** The triangles of a mesh whose vertices are replaced; those that become lines or points go. */
export function formOf(layout: MeshLayout, replacement: Uint32Array | null): Form {
  const corners = new Map<string, number>();
  const sources: number[] = [], uvs: number[] = [];
  const cornerOf = (i: number): number => {
    const vertex = layout.triangles[i] ?? 0;
    const source = replacement?.[vertex] ?? vertex;
    const u = layout.uvs?.[2 * i] ?? 0, v = layout.uvs?.[2 * i + 1] ?? 0;
    const key = replacement ? `${source} ${Math.floor(u * kTextureCells)} ${Math.floor(v * kTextureCells)}` : `${source} ${u} ${v}`;
    let corner = corners.get(key);
    if (corner === undefined) {
      corner = sources.push(source) - 1;
      uvs.push(u, v);
      corners.set(key, corner);
    }
    return corner;
  };
  const byMaterial = new Map<number, number[]>();
  const known = new Set<string>();
  for (let i = 0; i + 2 < layout.triangles.length; i += 3) {
    if (replacement) {
      const ends = [0, 1, 2].map((k) => replacement[layout.triangles[i + k]!]!).sort((a, b) => a - b);
      if (ends[0] === ends[1] || ends[1] === ends[2] || known.has(ends.join())) continue;
      known.add(ends.join());
    }
    const material = layout.materials[i / 3] ?? 0;
    if (!byMaterial.has(material)) byMaterial.set(material, []);
    byMaterial.get(material)!.push(cornerOf(i), cornerOf(i + 1), cornerOf(i + 2));
  }
  const groups: Form["groups"] = [];
  const index: number[] = [];
  for (const [material, list] of byMaterial) {
    groups.push({ start: index.length, count: list.length, material });
    for (const corner of list) index.push(corner);
  }
  return { sources: Uint32Array.from(sources), uvs: Float32Array.from(uvs), index: Uint32Array.from(index), groups };
}

/** Per vertex the direction of the sum of its triangles' normals, of length 1. */
export function normalsOf(p: Float32Array, triangles: Uint32Array): Float32Array {
  const normals = new Float32Array(p.length);
  for (let i = 0; i + 2 < triangles.length; i += 3) {
    const a = 3 * triangles[i]!, b = 3 * triangles[i + 1]!, c = 3 * triangles[i + 2]!;
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

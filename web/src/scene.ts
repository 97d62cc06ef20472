// A scene file as docs/scene_format.md describes it, and what `vexa view` adds.

export type Triple = [number, number, number];

export interface PathPoint {
  position: Triple;
  before?: Triple;
  after?: Triple;
}
export interface ScenePath {
  name: string;
  closed?: boolean;
  points: PathPoint[];
}
export interface SceneKey {
  frame: number;
  value: number | string | number[];
  curve?: string | number;
}
export interface SceneValue {
  name: string;
  kind?: string | number;
  type?: string | number;
  cyclic?: boolean;
  repeat?: number;
  path?: string;
  instance?: string;
  keys: SceneKey[];
}
export interface SceneInstance {
  name: string;
  object?: string;
  take?: string;
  startOffset?: number;
}
export interface SceneObject {
  name: string;
  mesh: string;
  animation: string;
  takes: { name: string }[];
}
export interface Scene {
  settings?: { timeScale?: number };
  paths?: ScenePath[];
  objects?: SceneObject[];
  instances?: SceneInstance[];
  values?: SceneValue[];
}

/** What a range of frames gave, see scene/recorded_results.h. */
export interface Results {
  frames: number[];
  values: { name: string; arithmeticOnly: boolean; numbers: (number | null)[] }[];
  instances: { name: string; meshes: string; placement: (number | null)[] }[];
}

/** What `vexa view` writes into the page, see scene/page.h. */
export interface PageData {
  name: string;
  scene: Scene;
  first: number;
  last: number;
  /** Two opposite corners, or nothing where there is no mesh. */
  extent: Triple[];
  results: Results;
  files: Record<string, string>;
  materials: Record<string, ({ color: Triple; texture: string } | null)[]>;
}

export function dateText(seconds: number): string {
  const date = new Date(seconds * 1000);
  return Number.isNaN(date.getTime()) ? String(seconds) : date.toISOString().replace(".000Z", "Z");
}

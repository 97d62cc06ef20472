// What three.js makes of an animated model: its clips, and where its vertices are at a time.
import { readFileSync } from 'node:fs';
import { dirname, extname, join } from 'node:path';

import { DOMParser } from '@xmldom/xmldom';
import * as THREE from 'three';

// The loaders expect a browser; pictures, which poses do not need, are never loaded.
globalThis.self = globalThis;
globalThis.window = globalThis;
globalThis.DOMParser = DOMParser;
globalThis.ProgressEvent = class {};
globalThis.document = {
  createElementNS: () => ({ addEventListener() {}, removeEventListener() {}, set src(_) {} }),
};
URL.createObjectURL = () => '';

const { BVHLoader } = await import('three/addons/loaders/BVHLoader.js');
const { ColladaLoader } = await import('three/addons/loaders/ColladaLoader.js');
const { FBXLoader } = await import('three/addons/loaders/FBXLoader.js');
const { GLTFLoader } = await import('three/addons/loaders/GLTFLoader.js');

const plain = (buffer) => buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength);

// A glTF file as one text: without materials, its buffers as data.
function selfContained(file) {
  const bytes = readFileSync(file);
  const isBinary = bytes.toString('latin1', 0, 4) === 'glTF';
  const length = isBinary ? bytes.readUInt32LE(12) : bytes.length;
  const text = isBinary ? bytes.toString('utf8', 20, 20 + length) : bytes.toString('utf8');
  const json = JSON.parse(text);
  for (const mesh of json.meshes ?? []) for (const p of mesh.primitives) delete p.material;
  for (const name of ['materials', 'textures', 'images', 'samplers']) delete json[name];
  for (const buffer of json.buffers ?? []) {
    if (buffer.uri?.startsWith('data:')) continue;
    const data = buffer.uri ? readFileSync(join(dirname(file), decodeURIComponent(buffer.uri)))
                            : bytes.subarray(28 + length);
    buffer.uri = 'data:application/octet-stream;base64,' + data.toString('base64');
  }
  return JSON.stringify(json);
}

// Root object, clips, and what the poses are compared by: all vertices, or only the joints.
export async function load(file) {
  switch (extname(file).toLowerCase()) {
    case '.gltf':
    case '.glb': {
      const gltf = await new GLTFLoader().parseAsync(selfContained(file), '');
      return { root: gltf.scene, clips: gltf.animations, joints: false };
    }
    case '.fbx': {
      const root = new FBXLoader().parse(plain(readFileSync(file)), '');
      return { root, clips: root.animations, joints: false };
    }
    case '.dae': {
      const { scene } = new ColladaLoader().parse(readFileSync(file, 'utf8'), '');
      return { root: scene, clips: scene.animations, joints: false };
    }
    case '.bvh': {
      const { skeleton, clip } = new BVHLoader().parse(readFileSync(file, 'utf8'));
      const root = new THREE.Group();
      root.add(skeleton.bones[0]);
      return { root, clips: [clip], joints: true };
    }
    default:
      throw new Error('three.js is not asked about files of that kind');
  }
}

// The vertices that triangles use, or the joints below the first one, in the world.
function points(model) {
  const found = [];
  model.root.updateMatrixWorld(true);
  model.root.traverse((object) => {
    // A joint in the place of the one above it has no point of its own in our stick figure.
    if (model.joints && object.parent?.isBone && object.position.length() > 1e-4) {
      found.push(new THREE.Vector3().setFromMatrixPosition(object.matrixWorld));
    }
    if (model.joints || !object.isMesh) return;
    if (object.isSkinnedMesh) object.skeleton.update();
    const { index, attributes } = object.geometry;
    const used = index ? new Set(index.array) : [...Array(attributes.position.count).keys()];
    for (const i of used) {
      found.push(object.getVertexPosition(i, new THREE.Vector3()).applyMatrix4(object.matrixWorld));
    }
  });
  return found;
}

// Per time in seconds of a clip, or none, the points as x, y, z, x, y, z, ...
export function posesOf(model, clip, times) {
  if (!clip) return times.map(() => points(model).flatMap((p) => [p.x, p.y, p.z]));
  const mixer = new THREE.AnimationMixer(model.root);
  const action = mixer.clipAction(clip);
  action.setLoop(THREE.LoopOnce);
  action.clampWhenFinished = true;
  action.play();
  const poses = times.map((time) => {
    mixer.setTime(time);
    return points(model).flatMap((p) => [p.x, p.y, p.z]);
  });
  mixer.stopAllAction();
  return poses;
}

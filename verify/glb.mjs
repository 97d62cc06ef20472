// Plays the GLB of a run with three.js and compares every vertex with the OBJ files of the same run.
//
// usage: node glb.mjs VEXA SCENE FRAMES [ARGUMENT...]     the arguments go to `vexa run --mesh glb`
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

import { oneWay, readObj, sizeOf, trajectories } from './compare.mjs';
import { load, posesOf } from './poses.mjs';

const LIMIT = 1e-6;  // of the size
const MOST_POSES = 12;

const [vexa, scene, frames, ...more] = process.argv.slice(2);
const folder = mkdtempSync(join(tmpdir(), 'vexa-verify-'));
try {
  const run = (mesh, ...rest) =>
    execFileSync(vexa, ['run', scene, '--frames', frames, '--mesh', mesh, '--out', folder, ...rest],
                 { encoding: 'utf8', stdio: ['ignore', 'pipe', 'inherit'] });
  const kind = run('glb', ...more).split('\n').find((line) => line.includes('scene.glb:'));
  run('obj');
  const files = readdirSync(folder).filter((name) => name.startsWith('frame_')).sort();
  const model = await load(join(folder, 'scene.glb'));
  const [clip] = model.clips;
  const duration = clip ? clip.duration : 0;
  const step = Math.ceil(files.length / MOST_POSES);
  const shown = files.map((_, i) => i).filter((i) => i % step === 0 || i === files.length - 1);
  const times = shown.map((i) => Math.fround(duration * i / Math.max(1, files.length - 1)));
  const theirs = posesOf(model, clip, times);
  const ours = shown.map((i) => readObj(join(folder, files[i])));
  const a = trajectories(theirs), b = trajectories(ours);
  const difference = Math.max(oneWay(a, b), oneWay(b, a)) / Math.min(...ours.map(sizeOf));
  console.log(`${difference.toExponential(1)} of the size, ${shown.length} poses` +
              `${kind ? kind.slice(kind.indexOf('scene.glb:') + 10) : ''}`);
  process.exitCode = difference <= LIMIT ? 0 : 1;
} finally {
  rmSync(folder, { recursive: true });
}

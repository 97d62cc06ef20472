// Compares what `vexa import` makes of models with what three.js makes of them.
//
// usage: node verify.mjs VEXA MODEL...
//
// Per model and clip: every vertex by its whole trajectory over a few frames, with the nearest
// trajectory of the other side, both ways. Exit status 1 when a difference is above the limit.
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, join } from 'node:path';

import { oneWay, readObj, sizeOf, trajectories } from './compare.mjs';
import { load, posesOf } from './poses.mjs';

// Of the model's size. Quaternions a little off unit length cost up to 1.3e-4 of a model, because
// three.js takes them as they are.
const LIMIT = 2e-4;
// three.js keeps four influences per vertex.
const MOST_INFLUENCES = 4, LIMIT_BEYOND = 2e-2;
const MOST_CLIPS = 4;

const [vexa, ...models] = process.argv.slice(2);
if (!vexa || models.length === 0) {
  console.error('usage: verify.mjs VEXA MODEL...');
  process.exit(2);
}

// glTF is played by both sides as the file means it: a few frames of the clip. Between the keys of
// the other formats three.js draws straight lines, so that only times are compared at which all
// tracks have keys, and frames are so dense that these times are frames.
function samplingOf(clip, file) {
  if (/\.(gltf|glb)$/i.test(file)) {
    const last = Math.floor(clip.duration * 30 + 1e-4);
    return { rate: 30, start: 0, frames: some([...Array(last + 1).keys()]) };
  }
  const rounded = (t) => Math.round(t * 2000);
  const sets = clip.tracks.map((track) => new Set([...track.times].map(rounded)));
  const keys = [...clip.tracks[0].times].filter((t) => sets.every((set) => set.has(rounded(t))));
  const start = /\.fbx$/i.test(file) ? Math.min(...clip.tracks.map((t) => t.times[0])) : 0;
  const times = some(keys).map((t) => t - start);
  const fits = (rate) => times.every((t) => Math.abs(t * rate - Math.round(t * rate)) < 0.02);
  const rate = [24, 25, 30, 60, 120].find(fits) ?? 1 / (keys[1] - keys[0]);
  return { rate, start, frames: times.map((t) => Math.round(t * rate)) };
}

// The first, the last, and two between.
function some(list) {
  const last = list.length - 1;
  const picked = [0, Math.round(last / 3), Math.round((2 * last) / 3), last];
  return [...new Set(picked)].map((i) => list[i]);
}

function ourPoses(folder, scene, take, frames) {
  const one = structuredClone(scene);
  one.instances[0].take = take.name;
  const last = take.frames - 1;
  one.values[0].keys = [{ frame: 0, value: 0 }, { frame: take.frames, value: last }];
  writeFileSync(join(folder, 'scene.json'), JSON.stringify(one));
  return frames.map((frame) => {
    const out = join(folder, 'out');
    execFileSync(vexa, ['run', join(folder, 'scene.json'), '--frames', String(frame), '--mesh',
                        'obj', '--out', out], { stdio: 'pipe' });
    return readObj(join(out, `frame_${String(frame).padStart(6, '0')}.obj`));
  });
}

function compareClip(model, clip, folder, scene, take, sampling) {
  const frames = sampling.frames.map((f) => Math.min(f, take.frames - 1));
  const theirs = posesOf(model, clip, frames.map((f) => sampling.start + f / sampling.rate));
  const ours = ourPoses(folder, scene, take, frames);
  const a = trajectories(theirs), b = trajectories(ours);
  // Where there are only joints to compare with, our stick figure has more points than those.
  const worst = model.joints ? oneWay(a, b) : Math.max(oneWay(a, b), oneWay(b, a));
  return worst / Math.max(...theirs.map(sizeOf));
}

async function verify(file) {
  const model = await load(file);
  const facts = JSON.parse(execFileSync(vexa, ['info', file, '--json'], { stdio: 'pipe' }));
  const isCut = facts.mostInfluencesPerVertex > MOST_INFLUENCES;
  const limit = isCut ? LIMIT_BEYOND : LIMIT;
  const folder = mkdtempSync(join(tmpdir(), 'vexa-verify-'));
  let isGood = true;
  try {
    for (const [index, clip] of model.clips.slice(0, MOST_CLIPS).entries()) {
      const sampling = samplingOf(clip, file);
      execFileSync(vexa, ['import', file, '--fps', String(sampling.rate), '--out',
                          join(folder, 'm')], { stdio: 'pipe' });
      const scene = JSON.parse(readFileSync(join(folder, 'm.json'), 'utf8'));
      const { takes } = scene.objects[0];
      const take = takes.find((t) => t.name === clip.name) ?? takes[index];
      const difference = compareClip(model, clip, folder, scene, take, sampling);
      isGood &&= difference <= limit;
      console.log(`${difference <= limit ? 'ok ' : 'BAD'}  ${difference.toExponential(1)}  ` +
                  `${basename(file)}  "${take.name}"  ${sampling.frames.length} poses` +
                  `${model.joints ? ', joints only' : ''}` +
                  `${isCut ? ', four influences in three.js' : ''}`);
    }
  } finally {
    rmSync(folder, { recursive: true });
  }
  return isGood && model.clips.length > 0;
}

let status = 0;
for (const file of models) {
  try {
    if (!(await verify(file))) status = 1;
  } catch (error) {
    console.log(`BAD  ${basename(file)}: ${error.stderr?.toString().trim() || error.message}`);
    status = 1;
  }
}
process.exit(status);

// Poses as lists of x, y, z, and how far two sets of moving points are apart.
import { readFileSync } from 'node:fs';

// The points that faces use.
export function readObj(file) {
  const points = [], used = new Set();
  for (const line of readFileSync(file, 'utf8').split('\n')) {
    const words = line.split(' ');
    if (words[0] === 'v') points.push([+words[1], +words[3], -words[2]]);  // +Z up to +Y up
    if (words[0] === 'f') for (const c of words.slice(1)) used.add(parseInt(c) - 1);
  }
  return [...used].flatMap((i) => points[i]);
}

// One trajectory per point: its places at all times, one after the other.
export function trajectories(poses) {
  const result = new Map();
  for (let i = 0; i < poses[0].length; i += 3) {
    const t = poses.flatMap((pose) => pose.slice(i, i + 3));
    result.set(t.join(), t);
  }
  return [...result.values()];
}

function farthest(a, b, best) {
  let worst = 0;
  for (let i = 0; i < a.length && worst < best; i += 3) {
    worst = Math.max(worst, Math.hypot(a[i] - b[i], a[i + 1] - b[i + 1], a[i + 2] - b[i + 2]));
  }
  return worst;
}

// The largest distance from a trajectory to the nearest of the other side. These are sorted by their
// first coordinate, so that the search ends where that alone is too far away.
export function oneWay(from, to) {
  const sorted = [...to].sort((a, b) => a[0] - b[0]);
  let worst = 0;
  for (const a of from) {
    let low = 0, high = sorted.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (sorted[middle][0] < a[0]) low = middle + 1;
      else high = middle;
    }
    let best = Infinity;
    for (let i = low; i < sorted.length && sorted[i][0] - a[0] < best; ++i) {
      best = Math.min(best, farthest(a, sorted[i], best));
    }
    for (let i = low - 1; i >= 0 && a[0] - sorted[i][0] < best; --i) {
      best = Math.min(best, farthest(a, sorted[i], best));
    }
    worst = Math.max(worst, best);
  }
  return worst;
}

export function sizeOf(pose) {
  const axis = (k) => pose.filter((_, i) => i % 3 === k);
  const extent = (v) => v.reduce((a, b) => Math.max(a, b)) - v.reduce((a, b) => Math.min(a, b));
  return Math.hypot(...[0, 1, 2].map((k) => extent(axis(k))));
}

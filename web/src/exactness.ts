// Compares what the runtime gives in this page with what it gave when the page was written.
import type { Runtime } from "./runtime";
import type { PageData, Results } from "./scene";

const bits = new BigInt64Array(1);
const asDouble = new Float64Array(bits.buffer);

/** The number in the order of the doubles: neighbours differ by 1. */
function rank(x: number): bigint {
  asDouble[0] = x;
  const b = bits[0]!;
  return b < 0n ? -(b & 0x7fffffffffffffffn) : b;
}

/** Units in the last place between two numbers; null is what JSON has for infinities and NaN. */
function distance(a: number | null, b: number | null): number {
  if (a === null || b === null) return a === b ? 0 : Infinity;
  const d = rank(a) - rank(b);
  return Number(d < 0n ? -d : d);
}

export interface Finding {
  name: string;
  text: string;
  isFault: boolean;
}

function compareNumbers(name: string, here: (number | null)[], there: (number | null)[], mustEqual: boolean): Finding {
  let differing = 0, most = 0;
  here.forEach((x, i) => {
    const d = distance(x, there[i] ?? null);
    if (d > 0) ++differing;
    most = Math.max(most, d);
  });
  const isEqual = differing === 0 && here.length === there.length;
  const text = isEqual
    ? `${here.length} numbers equal to the bit`
    : `${differing} of ${here.length} numbers differ, by at most ${most} units in the last place`;
  return { name, text, isFault: mustEqual && !isEqual };
}

/** One line per value and per instance, arithmetic and deformed meshes must agree to the bit. */
export function compare(here: Results, there: Results): Finding[] {
  const findings = here.values.map((value, i) => {
    const other = there.values[i]!;
    const note = value.arithmeticOnly ? "" : " (uses sine)";
    return compareNumbers(`value ${value.name}${note}`, value.numbers, other.numbers, value.arithmeticOnly);
  });
  here.instances.forEach((instance, i) => {
    const other = there.instances[i]!;
    if (instance.meshes !== "") {
      const isFault = instance.meshes !== other.meshes;
      findings.push({
        name: `deformed meshes of ${instance.name}`,
        text: isFault ? `${instance.meshes} here, ${other.meshes} when written` : `${instance.meshes}, equal to the bit`,
        isFault,
      });
    }
    findings.push(compareNumbers(`placement of ${instance.name} (uses sine)`, instance.placement, other.placement, false));
  });
  return findings;
}

/** Records the frames of the page's results in slices, then shows the comparison. */
export async function showExactness(host: HTMLElement, runtime: Runtime, page: PageData, restore: () => void,
                                    isStale: () => boolean): Promise<void> {
  runtime.recordBegin();
  let slice = performance.now();
  for (const frame of page.results.frames) {
    runtime.record(frame);
    if (performance.now() - slice < 8) continue;
    restore();
    await new Promise((resolve) => setTimeout(resolve));
    if (isStale()) return;
    slice = performance.now();
  }
  const results = runtime.recordResults();
  restore();
  const findings = compare(results, page.results);
  const faults = findings.filter((finding) => finding.isFault).length;
  const summary = document.createElement("p");
  summary.className = faults > 0 ? "fault" : "good";
  const range = `${page.results.frames.length} of ${page.last - page.first + 1} frames compared`;
  summary.textContent = faults > 0
    ? `${faults} results differ that must be equal to the bit (${range}).`
    : `Everything that must be equal to the bit is (${range}).`;
  const list = document.createElement("ul");
  for (const finding of findings.slice(0, 400)) {
    const item = document.createElement("li");
    item.className = finding.isFault ? "fault" : "";
    item.textContent = `${finding.name}: ${finding.text}`;
    list.append(item);
  }
  host.replaceChildren(summary, list);
  host.dataset["state"] = faults > 0 ? "different" : "equal";
}

// Every value of the scene as a plot over the shown range, with the value at the frame.
import type { Runtime } from "./runtime";
import { dateText, type Scene } from "./scene";

const kHeight = 64, kMargin = 6, kInks = 6, kMostPlots = 40;

function numberText(x: number): string {
  return Number.isInteger(x) ? String(x) : x.toPrecision(6).replace(/\.?0+($|e)/, "$1");
}

interface Plot {
  value: number;
  figure: HTMLElement;
  canvas: HTMLCanvasElement;
  current: HTMLElement;
  low: number;
  high: number;
}

export class Plots {
  /** Called while a key is dragged to another frame and, for a single number, another value. */
  onKeyDrag: (value: number, key: number, frame: number, number: number | null) => void = () => {};
  onKeyDragEnd: () => void = () => {};

  /** Per value, frame by frame from the first: its parts. */
  private samples: Float64Array[][] = [];
  private plots: Plot[] = [];
  private frame = 0;
  private pending = 0;

  constructor(private readonly host: HTMLElement, private readonly runtime: Runtime, private scene: Scene,
              private readonly first: number, private readonly last: number) {
    runtime.values.slice(0, kMostPlots).forEach((_, i) => this.plots.push(this.makePlot(i)));
    new ResizeObserver(() => this.draw()).observe(host);
  }

  private makePlot(value: number): Plot {
    const facts = this.runtime.values[value]!;
    const figure = document.createElement("figure");
    const caption = document.createElement("figcaption");
    const name = document.createElement("b");
    name.textContent = facts.name;
    const current = document.createElement("output");
    current.setAttribute("aria-label", `${facts.name} at the frame`);
    caption.append(name, current);
    const canvas = document.createElement("canvas");
    canvas.setAttribute("role", "img");
    canvas.setAttribute("aria-label", `${facts.name} over the frames`);
    figure.append(caption, canvas);
    this.host.append(figure);
    const plot = { value, figure, canvas, current, low: 0, high: 1 };
    this.addPointer(plot);
    return plot;
  }

  /** Takes the scene's values over all frames; in slices, so that the page answers meanwhile. */
  async sample(scene: Scene, restore: () => void): Promise<void> {
    this.scene = scene;
    const turn = ++this.pending;
    const samples: Float64Array[][] = this.runtime.values.map(() => []);
    let slice = performance.now();
    for (let frame = this.first; frame <= this.last; ++frame) {
      this.runtime.setFrame(frame);
      this.runtime.samples().forEach((parts, i) => samples[i]!.push(parts));
      if (performance.now() - slice < 8) continue;
      restore();
      await new Promise((resolve) => setTimeout(resolve));
      if (turn !== this.pending) return;
      slice = performance.now();
    }
    restore();
    this.samples = samples;
    for (const plot of this.plots) this.fit(plot);
    this.draw();
  }

  private fit(plot: Plot): void {
    const all = this.samples[plot.value]!.flatMap((parts) => Array.from(parts)).filter(Number.isFinite);
    let low = Infinity, high = -Infinity;
    for (const x of all) {
      low = Math.min(low, x);
      high = Math.max(high, x);
    }
    [plot.low, plot.high] = low < high ? [low, high] : [low - 1, low + 1];
    if (!Number.isFinite(plot.low)) [plot.low, plot.high] = [0, 1];
  }

  private x(plot: Plot, frame: number): number {
    const span = Math.max(this.last - this.first, 1);
    return kMargin + ((frame - this.first) / span) * (plot.canvas.clientWidth - 2 * kMargin);
  }
  private y(plot: Plot, number: number): number {
    return kHeight - kMargin - ((number - plot.low) / (plot.high - plot.low)) * (kHeight - 2 * kMargin);
  }

  show(frame: number): void {
    this.frame = frame;
    const samples = this.runtime.samples();
    for (const plot of this.plots) this.write(plot, frame, samples[plot.value]!);
    this.draw();
  }

  private write(plot: Plot, frame: number, parts: Float64Array): void {
    const facts = this.runtime.values[plot.value]!;
    const text = facts.date
      ? dateText(parts[0] ?? 0)
      : facts.parts.map((name, i) => `${name === "" ? "" : name + " "}${numberText(parts[i] ?? 0)}`).join("  ");
    plot.current.textContent = frame === this.frame ? text : `frame ${frame}: ${text}`;
    plot.current.style.setProperty("--swatch", facts.color ? `rgb(${parts[0]} ${parts[1]} ${parts[2]})` : "transparent");
    plot.current.classList.toggle("color", facts.color);
  }

  private draw(): void {
    for (const plot of this.plots) this.drawPlot(plot);
  }

  private drawPlot(plot: Plot): void {
    const { canvas } = plot;
    const width = canvas.clientWidth, ratio = devicePixelRatio;
    if (width === 0) return;
    if (canvas.width !== Math.round(width * ratio)) {
      canvas.width = Math.round(width * ratio);
      canvas.height = kHeight * ratio;
    }
    const pen = canvas.getContext("2d")!;
    const style = getComputedStyle(document.documentElement);
    pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    pen.clearRect(0, 0, width, kHeight);
    const samples = this.samples[plot.value];
    if (samples) this.drawCurves(plot, pen, style, samples);
    this.scene.values?.[plot.value]?.keys.forEach((key) => {
      pen.fillStyle = style.getPropertyValue("--text");
      pen.beginPath();
      pen.arc(this.x(plot, key.frame), this.keyY(plot, key.frame), 3.5, 0, 7);
      pen.fill();
    });
    pen.fillStyle = style.getPropertyValue("--accent");
    pen.fillRect(this.x(plot, this.frame) - 0.75, 0, 1.5, kHeight);
  }

  private drawCurves(plot: Plot, pen: CanvasRenderingContext2D, style: CSSStyleDeclaration,
                     samples: Float64Array[]): void {
    const facts = this.runtime.values[plot.value]!;
    if (facts.color) {
      samples.forEach((c, i) => {
        const left = this.x(plot, this.first + i);
        pen.fillStyle = `rgb(${c[0]} ${c[1]} ${c[2]})`;
        pen.fillRect(left, kHeight - 7, this.x(plot, this.first + i + 1) - left + 0.5, 7);
      });
    }
    facts.parts.forEach((_, part) => {
      pen.strokeStyle = style.getPropertyValue(`--ink${part % kInks}`);
      pen.lineWidth = 1.5;
      pen.beginPath();
      samples.forEach((parts, i) => pen.lineTo(this.x(plot, this.first + i), this.y(plot, parts[part]!)));
      pen.stroke();
    });
  }

  private keyY(plot: Plot, frame: number): number {
    const parts = this.samples[plot.value]?.[frame - this.first];
    return parts && parts.length === 1 ? this.y(plot, parts[0]!) : kHeight - 12;
  }

  private frameAt(plot: Plot, event: PointerEvent): number {
    const part = (event.offsetX - kMargin) / Math.max(plot.canvas.clientWidth - 2 * kMargin, 1);
    const frame = Math.round(this.first + part * (this.last - this.first));
    return Math.min(Math.max(frame, this.first), this.last);
  }

  private addPointer(plot: Plot): void {
    let dragged = -1;
    const keyAt = (event: PointerEvent): number => {
      const keys = this.scene.values?.[plot.value]?.keys ?? [];
      return keys.findIndex((key) =>
        Math.hypot(this.x(plot, key.frame) - event.offsetX, this.keyY(plot, key.frame) - event.offsetY) < 9);
    };
    plot.canvas.addEventListener("pointerdown", (event) => {
      dragged = keyAt(event);
      if (dragged >= 0) plot.canvas.setPointerCapture(event.pointerId);
    });
    plot.canvas.addEventListener("pointermove", (event) => {
      const frame = this.frameAt(plot, event);
      if (dragged >= 0) {
        const part = (kHeight - kMargin - event.offsetY) / (kHeight - 2 * kMargin);
        const isNumber = this.runtime.values[plot.value]!.parts.length === 1;
        this.onKeyDrag(plot.value, dragged, frame, isNumber ? plot.low + part * (plot.high - plot.low) : null);
        return;
      }
      plot.canvas.style.cursor = keyAt(event) >= 0 ? "grab" : "";
      const parts = this.samples[plot.value]?.[frame - this.first];
      if (parts) this.write(plot, frame, parts);
    });
    const end = (): void => {
      if (dragged >= 0) this.onKeyDragEnd();
      dragged = -1;
    };
    plot.canvas.addEventListener("pointerup", end);
    plot.canvas.addEventListener("pointercancel", end);
    plot.canvas.addEventListener("pointerleave", () => {
      if (dragged < 0) this.show(this.frame);
    });
  }
}

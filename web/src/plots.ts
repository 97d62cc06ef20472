// Every value of the scene as a plot over the shown range, with the value at the frame.
import type { Runtime } from "./runtime";
import { dateText, type Scene } from "./scene";

const kHeight = 64, kMargin = 6, kInks = 6;
/** Milliseconds between two changes of the texts while the scene plays. */
const kTextPause = 100;

function numberText(x: number): string {
  return Number.isInteger(x) ? String(x) : x.toPrecision(6).replace(/\.?0+($|e)/, "$1");
}

function make<K extends keyof HTMLElementTagNameMap>(tag: K, className: string, ...content: (Node | string)[]): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  element.className = className;
  element.append(...content);
  return element;
}

interface Plot {
  value: number;
  canvas: HTMLCanvasElement;
  pen: CanvasRenderingContext2D;
  output: HTMLElement;
  /** The frame that is written when it is not the shown one, and the number of each part. */
  at: HTMLElement;
  numbers: HTMLElement[];
  low: number;
  high: number;
  hovered: number | null;
  isVisible: boolean;
  isDrawn: boolean;
}

export class Plots {
  /** Called while a key is dragged to another frame and, for a single number, another value. */
  onKeyDrag: (value: number, key: number, frame: number, number: number | null) => void = () => {};
  onKeyDragEnd: () => void = () => {};

  /** Per value, frame by frame from the first: its parts. */
  private samples: Float64Array[][] = [];
  private readonly plots: Plot[];
  private readonly cursor = make("i", "cursor");
  private frame = 0;
  private writtenAt = -Infinity;
  private isWritten = false;
  private pending = 0;
  private isDragging = false;

  constructor(private readonly host: HTMLElement, private readonly runtime: Runtime, private scene: Scene,
              private readonly first: number, private readonly last: number) {
    this.plots = runtime.values.map((_, i) => this.makePlot(i));
    host.append(this.cursor);
    this.cursor.hidden = this.plots.length === 0;
    const seen = new IntersectionObserver((entries) => {
      for (const entry of entries) this.plots.find((plot) => plot.canvas === entry.target)!.isVisible = entry.isIntersecting;
      this.isWritten = false;
      this.drawVisible();
    }, { rootMargin: "200px" });
    for (const plot of this.plots) seen.observe(plot.canvas);
    new ResizeObserver(() => this.redraw()).observe(host);
  }

  private makePlot(value: number): Plot {
    const facts = this.runtime.values[value]!;
    const numbers = facts.parts.map(() => make("span", "number"));
    const parts = numbers.map((number, i) => {
      const part = make("span", "part", facts.parts[i]! === "" ? "" : make("b", "", facts.parts[i]!), " ", number);
      part.style.setProperty("--ink", `var(--ink${i % kInks})`);
      return part;
    });
    const at = make("span", "at");
    const output = make("output", facts.color ? "color" : "", at, ...parts);
    output.setAttribute("aria-label", `${facts.name} at the frame`);
    output.setAttribute("aria-live", "off");
    const canvas = make("canvas", "");
    canvas.setAttribute("role", "img");
    canvas.setAttribute("aria-label", `${facts.name} over the frames`);
    this.host.append(make("figure", "", make("figcaption", "", make("b", "", facts.name), output), canvas));
    // A canvas that is read often is drawn by the processor: without a graphics card that is faster.
    const pen = canvas.getContext("2d", { willReadFrequently: true })!;
    const plot = { value, canvas, pen, output, at, numbers, low: 0, high: 1, hovered: null, isVisible: false, isDrawn: false };
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
    if (!this.isDragging) this.fitAll();
    this.redraw();
  }

  /** Gives every plot the range of its samples. Not during a drag: a key would run away. */
  private fitAll(): void {
    for (const plot of this.plots) {
      let low = Infinity, high = -Infinity;
      for (const parts of this.samples[plot.value] ?? []) {
        for (const x of parts) {
          if (!Number.isFinite(x)) continue;
          low = Math.min(low, x);
          high = Math.max(high, x);
        }
      }
      [plot.low, plot.high] = low < high ? [low, high] : [low - 1, low + 1];
      if (!Number.isFinite(plot.low)) [plot.low, plot.high] = [0, 1];
    }
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
    this.isWritten = false;
    const plot = this.plots[0];
    if (plot) this.cursor.style.transform = `translateX(${this.x(plot, frame).toFixed(1)}px)`;
  }

  /** Writes the values at the frame, not more often than can be read. */
  write(now: number): void {
    if (this.isWritten || now - this.writtenAt < kTextPause) return;
    this.isWritten = true;
    this.writtenAt = now;
    const samples = this.runtime.samples();
    for (const plot of this.plots) {
      if (plot.isVisible && plot.hovered === null) this.writeParts(plot, "", samples[plot.value]!);
    }
  }

  private writeParts(plot: Plot, at: string, parts: Float64Array): void {
    const facts = this.runtime.values[plot.value]!;
    plot.at.textContent = at;
    plot.numbers.forEach((number, i) => {
      number.textContent = facts.date ? dateText(parts[i] ?? 0) : numberText(parts[i] ?? 0);
    });
    if (facts.color) plot.output.style.setProperty("--swatch", `rgb(${parts[0]} ${parts[1]} ${parts[2]})`);
  }

  /** Draws all plots anew, those out of sight when they come into it. */
  redraw(): void {
    for (const plot of this.plots) plot.isDrawn = false;
    this.drawVisible();
    this.show(this.frame);
  }

  private drawVisible(): void {
    const style = getComputedStyle(document.documentElement);
    for (const plot of this.plots) {
      if (plot.isVisible && !plot.isDrawn) this.draw(plot, style);
    }
  }

  private draw(plot: Plot, style: CSSStyleDeclaration): void {
    const { canvas, pen } = plot;
    const width = canvas.clientWidth, ratio = devicePixelRatio;
    if (width === 0) return;
    plot.isDrawn = true;
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(kHeight * ratio);
    pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    const samples = this.samples[plot.value];
    if (samples) this.drawCurves(plot, style, samples);
    pen.fillStyle = style.getPropertyValue("--text");
    this.scene.values?.[plot.value]?.keys.forEach((key) => {
      pen.beginPath();
      pen.arc(this.x(plot, key.frame), this.keyY(plot, key.frame), 3.5, 0, 7);
      pen.fill();
    });
  }

  private drawCurves(plot: Plot, style: CSSStyleDeclaration, samples: Float64Array[]): void {
    const { pen } = plot;
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

  private keyAt(plot: Plot, event: PointerEvent): number {
    const keys = this.scene.values?.[plot.value]?.keys ?? [];
    return keys.findIndex((key) =>
      Math.hypot(this.x(plot, key.frame) - event.offsetX, this.keyY(plot, key.frame) - event.offsetY) < 9);
  }

  private addPointer(plot: Plot): void {
    const { canvas } = plot;
    let dragged = -1;
    canvas.addEventListener("pointerdown", (event) => {
      dragged = this.keyAt(plot, event);
      this.isDragging = dragged >= 0;
      if (this.isDragging) canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointermove", (event) => {
      const frame = this.frameAt(plot, event);
      if (dragged >= 0) {
        const part = (kHeight - kMargin - event.offsetY) / (kHeight - 2 * kMargin);
        const isNumber = plot.numbers.length === 1;
        this.onKeyDrag(plot.value, dragged, frame, isNumber ? plot.low + part * (plot.high - plot.low) : null);
        return;
      }
      canvas.style.cursor = this.keyAt(plot, event) >= 0 ? "grab" : "";
      const parts = this.samples[plot.value]?.[frame - this.first];
      plot.hovered = parts ? frame : null;
      if (parts) this.writeParts(plot, `frame ${frame}: `, parts);
    });
    const end = (): void => {
      if (dragged < 0) return;
      dragged = -1;
      this.isDragging = false;
      this.fitAll();
      this.redraw();
      this.onKeyDragEnd();
    };
    canvas.addEventListener("pointerup", end);
    canvas.addEventListener("pointercancel", end);
    canvas.addEventListener("pointerleave", () => {
      plot.hovered = null;
      this.isWritten = false;
    });
  }
}

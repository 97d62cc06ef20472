// The time line: which frame is shown, and how it goes on.

const kSpeeds = [0.1, 0.25, 0.5, 1, 2, 4];
/** Milliseconds between two changes of the number while the scene plays. */
const kTextPause = 100;

function element<T extends HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

export class Timeline {
  frame: number;
  isPlaying = false;
  /** Called with every new frame. */
  onFrame: (frame: number) => void = () => {};

  private readonly slider = element<HTMLInputElement>("time");
  private readonly number = element<HTMLInputElement>("frame");
  private readonly play = element<HTMLButtonElement>("play");
  private readonly speed = element<HTMLSelectElement>("speed");
  private readonly loop = element<HTMLInputElement>("loop");
  private readonly marks = element("marks");
  private position: number;
  private last: number | null = null;
  private writtenAt = 0;

  constructor(readonly firstFrame: number, readonly lastFrame: number, private readonly framesPerSecond: number) {
    this.frame = this.position = firstFrame;
    for (const input of [this.slider, this.number]) {
      input.min = String(firstFrame);
      input.max = String(lastFrame);
    }
    this.slider.valueAsNumber = this.number.valueAsNumber = firstFrame;
    for (const speed of kSpeeds) {
      this.speed.add(new Option(`${speed} ×`, String(speed), speed === 1, speed === 1));
    }
    this.slider.addEventListener("input", () => this.show(this.slider.valueAsNumber));
    this.number.addEventListener("change", () => {
      if (Number.isFinite(this.number.valueAsNumber)) this.show(this.number.valueAsNumber);
    });
    this.play.addEventListener("click", () => this.setPlaying(!this.isPlaying));
    document.addEventListener("keydown", (event) => this.key(event));
  }

  private key(event: KeyboardEvent): void {
    const target = event.target as HTMLElement;
    const isField = target.matches("input:not([type=range]), select, textarea");
    if (isField || event.ctrlKey || event.altKey || event.metaKey) return;
    const steps: Record<string, () => void> = {
      ArrowLeft: () => this.show(this.frame - (event.shiftKey ? 10 : 1)),
      ArrowRight: () => this.show(this.frame + (event.shiftKey ? 10 : 1)),
      Home: () => this.show(this.firstFrame),
      End: () => this.show(this.lastFrame),
      " ": () => this.setPlaying(!this.isPlaying),
    };
    if (event.key === " " && target.matches("button, summary, a")) return;
    const step = steps[event.key];
    if (!step) return;
    event.preventDefault();
    step();
  }

  setPlaying(isPlaying: boolean): void {
    if (isPlaying && this.frame >= this.lastFrame) this.show(this.firstFrame);
    this.isPlaying = isPlaying;
    this.last = null;
    this.write(this.frame);
    this.play.textContent = isPlaying ? "Pause" : "Play";
    this.play.setAttribute("aria-pressed", String(isPlaying));
  }

  show(frame: number): void {
    this.position = Math.min(Math.max(Math.round(frame), this.firstFrame), this.lastFrame);
    this.move();
  }

  /** Moves on while playing; `now` in milliseconds. */
  advance(now: number): void {
    if (!this.isPlaying) return;
    const elapsed = this.last === null ? 0 : Math.min(now - this.last, 250) / 1000;
    this.last = now;
    this.position += elapsed * this.framesPerSecond * Number(this.speed.value);
    if (this.position > this.lastFrame) {
      if (this.loop.checked) {
        this.position = this.firstFrame;
      } else {
        this.position = this.lastFrame;
        this.setPlaying(false);
      }
    }
    this.move();
  }

  private move(): void {
    const frame = Math.floor(this.position);
    if (!this.isPlaying || performance.now() - this.writtenAt > kTextPause) this.write(frame);
    if (frame === this.frame) return;
    this.frame = frame;
    this.onFrame(frame);
  }

  private write(frame: number): void {
    this.writtenAt = performance.now();
    this.slider.valueAsNumber = frame;
    if (document.activeElement !== this.number || !this.isPlaying) this.number.valueAsNumber = frame;
  }

  markKeys(frames: Iterable<number>): void {
    this.marks.replaceChildren();
    const span = Math.max(this.lastFrame - this.firstFrame, 1);
    for (const frame of new Set(frames)) {
      if (frame < this.firstFrame || frame > this.lastFrame) continue;
      const mark = document.createElement("i");
      mark.style.left = `${(100 * (frame - this.firstFrame)) / span}%`;
      mark.title = `key at frame ${frame}`;
      this.marks.append(mark);
    }
  }
}

"""scripts/bench --growth: how the time of the main operations grows when a size doubles."""
import json
import math
import subprocess

LIMIT = 2.2  # times per doubling, over the whole range


def measure(program):
    """For each operation its sizes and the least of three times, in ns."""
    out = subprocess.run([program, "--benchmark_min_time=0.02", "--benchmark_repetitions=3",
                          "--benchmark_format=json"], check=True, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    curves = {}
    for run in json.loads(out)["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        name, size = run["run_name"].split("/")
        times = curves.setdefault(name, {})
        times[int(size)] = min(run["cpu_time"], times.get(int(size), math.inf))
    return curves


def per_doubling(times):
    """Of a doubling: the mean factor over the range, and the largest."""
    sizes = sorted(times)
    steps = [times[b] / times[a] for a, b in zip(sizes, sizes[1:])]
    return math.prod(steps) ** (1 / len(steps)), max(steps)


def table(curves):
    lines = [f"{'Doubled':12}{'From':>8}{'To':>10}{'Mean':>7}{'Largest':>9}  Reached (<= {LIMIT})"]
    for name, times in curves.items():
        mean, largest = per_doubling(times)
        lines.append(f"{name:12}{min(times):8,}{max(times):10,}{mean:7.2f}{largest:9.2f}  "
                     f"{'yes' if mean <= LIMIT else 'no'}")
    return "\n".join(lines)


def drawing(curves, title):
    """Time over size, both as multiples of the first, on logarithmic axes."""
    width, height, left, top, span = 760, 460, 60, 40, 10
    colours = ["#1f77b4", "#d62728", "#2ca02c", "#9467bd", "#8c564b", "#e377c2", "#7f7f7f",
               "#17becf"]
    highest = span * math.log2(LIMIT)
    x = lambda doublings: left + doublings / span * (width - left - 140)
    y = lambda factor: height - 40 - math.log2(factor) / highest * (height - top - 40)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
             'font-family="sans-serif" font-size="12">',
             '<rect width="100%" height="100%" fill="white"/>',
             f'<text x="{left}" y="22">Time when a size doubles, {title}</text>']
    for doubling in range(span + 1):
        parts.append(f'<line x1="{x(doubling):.1f}" y1="{y(1):.1f}" x2="{x(doubling):.1f}" '
                     f'y2="{top}" stroke="#eee"/><text x="{x(doubling):.1f}" y="{height - 20}" '
                     f'text-anchor="middle">{2 ** doubling}</text>')
    for factor, name in ((2, "twice"), (LIMIT, f"limit, {LIMIT}")):
        parts.append(f'<line x1="{x(0):.1f}" y1="{y(1):.1f}" x2="{x(span):.1f}" '
                     f'y2="{y(factor ** span):.1f}" stroke="#999" stroke-dasharray="4 3"/>'
                     f'<text x="{x(span) + 6:.1f}" y="{y(factor ** span) + 4:.1f}" fill="#777">'
                     f'{name}</text>')
    for place, (name, times) in enumerate(curves.items()):
        first, colour = min(times), colours[place % len(colours)]
        points = " ".join(f"{x(math.log2(size / first)):.1f},{y(time / times[first]):.1f}"
                          for size, time in sorted(times.items()))
        parts.append(f'<polyline points="{points}" fill="none" stroke="{colour}" '
                     f'stroke-width="1.5"/><text x="{width - 118}" y="{150 + 18 * place}" '
                     f'fill="{colour}">{name}</text>')
    return "\n".join(parts + ["</svg>", ""])

"""Compares the saver with others of Debian 12, and its frames with a replay of their OpenGL calls.

peers.py [--rounds N] [--sizes WxH,...] [--only NAME,...]; run by scripts/bench --peers, which has built the release
preset. Writes tables into docs/speed.md and the plot docs/speed-peers.svg.
"""

import argparse
import os
import pathlib
import re
import subprocess
import tempfile
import time

from recording import (SOURCE, STAGES, Display, Run, Show, build_of, date_and_load, median, picture_of, put_between,
                       recorder_of)

BUILD = build_of(SOURCE)
SIZES = "1024x768,1920x1080,3840x2160"
REPLAY_SIZE = "1920x1080"
OURS = "Tamblor"
SAVERS = pathlib.Path("/usr/libexec/xscreensaver")
TRACER = "/usr/lib/x86_64-linux-gnu/apitrace/wrappers/glxtrace.so"
WARM_UP = 3  # seconds; some build what they show while it is shown
MEASURED = 4


class Peer:
    """A saver with the options that let it draw as fast as it can, over the whole screen."""

    def __init__(self, name, package, on_desktop=False, options=()):
        self.name, self.package, self.on_desktop, self.options = name, package, on_desktop, options

    def command(self, size):
        if self.package == "rss-glx":
            return [str(SAVERS / self.name), "--root", "--maxfps", "0", "--vsync", "0", *self.options]
        # In a window: on the root window those that take the desktop's picture wait for it without end.
        return [str(SAVERS / self.name), "--window", "-geometry", size + "+0+0", "--delay", "0"]


PEERS = [Peer("flipscreen3d", "xscreensaver-gl", True), Peer("gleidescope", "xscreensaver-gl", True),
         Peer("mirrorblob", "xscreensaver-gl"), Peer("glplanet", "xscreensaver-gl-extra"),
         Peer("euphoria", "rss-glx", options=["--regular"]), Peer("skyrocket", "rss-glx")]


def start_of(run):
    run.wait_for(1)
    first = run.frame(0)
    return {"start": first.shown * 1000, "resident": first.resident}


def measure_peer(peer, display):
    environment = {"PATH": f"{os.environ['PATH']}:{SAVERS}"}  # where the program is that takes the desktop's picture
    with Run(peer.command(display.size), display, environment) as run:
        found = start_of(run)
        time.sleep(WARM_UP)
        seconds, processor = run.draw_for(MEASURED)
        found.update(frame=seconds * 1000, processor=processor * 1000, later=run.frame(-1).resident)
    return {peer.name: found}


def measure_ours(display):
    """A row for each stage; start and memory are the same in all of them."""
    rows = {}
    with Show(BUILD, display) as show:
        common = start_of(show)
        show.pass_first_cycle()
        for number, stage in enumerate(STAGES):
            show.enter(number)
            seconds, processor = show.draw_for(MEASURED)
            rows[f"{OURS}, {stage}"] = dict(common, frame=seconds * 1000, processor=processor * 1000)
        for row in rows.values():
            row["later"] = show.frame(-1).resident
    return rows


class Replay:
    """The OpenGL calls of one frame of each stage, and of all that is built before, as apitrace keeps them."""

    def __init__(self, display, folder):
        self.display = display
        self.environment = dict(os.environ, DISPLAY=display.name, LIBGL_ALWAYS_SOFTWARE="1")
        self.traces = []
        whole = folder / "whole.trace"
        environment = {"LD_PRELOAD": f"{display.recorder}:{TRACER}", "TRACE_FILE": str(whole)}
        frames = []
        with Show(BUILD, display, environment) as show:
            show.pass_first_cycle()
            for number in range(len(STAGES)):
                show.enter(number)
                show.wait_for(show.count() + 1)
                frames.append(show.count() - 1)
                self.photograph(folder / f"shown{number}.png")
        few = folder / "few.trace"
        self.run("apitrace", "trim", "--frames=" + ",".join(map(str, [0] + frames)), "-o", few, whole)
        whole.unlink()
        for number in range(len(frames)):
            trace = folder / f"stage{number}.trace"
            self.run("apitrace", "trim", f"--frames=0,{number + 1}", "-o", trace, few)
            self.run("glretrace", "--call-nos=0", "-S", "frame", "-s", folder / f"replayed{number}-", trace)
            self.expect_same(folder / f"shown{number}.png", folder / f"replayed{number}-0000000001.png")
            self.traces.append(trace)
        few.unlink()

    def run(self, *command):
        done = subprocess.run(list(map(str, command)), env=self.environment, capture_output=True, text=True,
                              check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{command}: {done.stderr[-500:]}")
        return done.stdout

    def photograph(self, file):
        self.run("import", "-silent", "-window", "root", file)

    @staticmethod
    def expect_same(shown, replayed):
        """The frame that was left alone with the first one must still draw what the saver drew."""
        compared = subprocess.run(["compare", "-metric", "AE", str(shown), str(replayed), "null:"], capture_output=True,
                                  text=True, check=False)
        if compared.stderr.split() != ["0"]:
            raise RuntimeError(f"{replayed} is not {shown}: {compared.stderr.strip()} pixels differ")

    def retrace(self, trace, loops, *options):
        """Seconds and processor seconds, and frames, of the first frame once and the other one so often."""
        with tempfile.TemporaryFile("w+") as out:
            process = subprocess.Popen(
                ["glretrace", "--benchmark", "--singlethread", f"--loop={loops}", *options, trace],
                env=self.environment, stdout=out, stderr=out)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            out.seek(0)
            words = out.read()
        found = re.search(r"Rendered (\d+) frames in ([\d.]+) secs", words)
        if process.returncode != 0 or not found:
            raise RuntimeError(f"glretrace {trace}: {process.returncode} {words[-300:]}")
        return float(found[2]), usage.ru_utime + usage.ru_stime

    def frame(self, stage, loops, *options):
        """Milliseconds and processor milliseconds of one frame: what more of them take, by how many more there are."""
        few, many = (self.retrace(self.traces[stage], n, *options) for n in (2, 2 + loops))
        return [(b - a) / loops * 1000 for a, b in zip(few, many)]


def measure_replay(display, rounds, folder):
    replay = Replay(display, folder)
    columns = ("ours", "replay", "reading", "ours processor", "replay processor", "reading processor")
    rows = [{column: [] for column in columns} for _ in STAGES]
    for number in range(rounds):
        with Show(BUILD, display) as show:
            show.pass_first_cycle()
            for stage, row in enumerate(rows):
                show.enter(stage)
                seconds, processor = show.draw_for(MEASURED)
                row["ours"].append(seconds * 1000)
                row["ours processor"].append(processor * 1000)
        for stage, row in enumerate(rows):
            loops = max(10, round(MEASURED * 1000 / row["ours"][-1]))
            for what, options in (("replay", []), ("reading", ["--ignore-calls=*"])):
                milliseconds, processor = replay.frame(stage, loops, *options)
                row[what].append(milliseconds)
                row[what + " processor"].append(processor)
            print(f"replay, round {number + 1}, {STAGES[stage]}: " + ", ".join(
                f"{key} {values[-1]:.0f}" for key, values in row.items()), flush=True)
    return [{key: median(values) for key, values in row.items()} for row in rows]


def measure(sizes, rounds, only):
    peers = [peer for peer in PEERS if not only or peer.name in only]
    results = {}
    for size in sizes:
        runs = {}
        with Display(size, picture_of(BUILD), recorder_of(BUILD)) as display:
            for number in range(rounds):
                for task in [measure_ours] + [lambda d, p=peer: measure_peer(p, d) for peer in peers]:
                    for name, row in task(display).items():
                        runs.setdefault(name, []).append(row)
                        print(f"{size}, round {number + 1}, {name}: " + ", ".join(
                            f"{key} {value:.0f}" for key, value in row.items()), flush=True)
        results[size] = {name: {key: median([row[key] for row in rows]) for key in rows[0]}
                         for name, rows in runs.items()}
    return results


def table(results, replayed, rounds, when):
    text = f"Medians of {rounds} runs of each in turn; {when}. * works on the desktop's picture.\n\n"
    stars = {peer.name: peer.name + " *" for peer in PEERS if peer.on_desktop}
    packages = {peer.name: peer.package for peer in PEERS}
    for size, rows in results.items():
        text += (f"| {size.replace('x', ' x ')} | from | ms a frame | processor ms a frame "
                 "| start to the first frame, ms | MB then | MB later |\n|---|---|---|---|---|---|---|\n")
        for name, row in rows.items():
            title = name + " *" if name.startswith(OURS) else stars.get(name, name)
            text += (f"| {title} | {packages.get(name, '')} | {row['frame']:.1f} | {row['processor']:.1f} "
                     f"| {row['start']:.0f} | {row['resident']:.0f} | {row['later']:.0f} |\n")
        text += "\n"
    if replayed:
        text += (f"| stage, at {REPLAY_SIZE.replace('x', ' x ')} | ours, ms | replay, ms | ratio (held to 1.10) "
                 "| the same in processor ms | replay without reading its file, processor ms | ratio |\n"
                 "|---|---|---|---|---|---|---|\n")
        for stage, row in zip(STAGES, replayed):
            ours, replay = row["ours processor"], row["replay processor"]
            drawing = replay - row["reading processor"]
            text += (f"| {stage} | {row['ours']:.1f} | {row['replay']:.1f} | {row['ours'] / row['replay']:.2f} "
                     f"| {ours:.1f} : {replay:.1f} = {ours / replay:.2f} | {drawing:.1f} | {ours / drawing:.2f} |\n")
        text += "\n"
    return text + "![The same as bars](speed-peers.svg)\n"


def plot(results, file):
    """Bars of all programs at all sizes: a frame, the start, the memory."""
    sizes, rows = list(results), list(next(iter(results.values())))
    panels, blocks = "", ""
    for key, title in (("frame", "milliseconds a frame"), ("start", "milliseconds from the start to the first frame"),
                       ("later", "MB of memory")):
        names = {name: name for name in rows}
        if key != "frame":  # the same in all stages
            names = {name: name.split(",")[0] for name in rows if not name.startswith(OURS) or name.endswith(STAGES[0])}
        blocks += f"${key} << EOD\n" + "\t".join(["program"] + [size.replace("x", " x ") for size in sizes]) + "\n"
        for name, text in names.items():
            label = text.replace(", ", ",\\n").replace("desktop ", "desktop\\n")
            blocks += "\t".join([label] + [f"{results[size][name][key]:.2f}" for size in sizes]) + "\n"
        blocks += "EOD\n"
        panels += (f'set title "{title}"\n'
                   f'plot for [i=2:{len(sizes) + 1}] ${key} using i:xtic(1) title columnheader(i)\nunset key\n')
    script = blocks + f"""
set terminal svg size 1100,1000 font "DejaVu Sans,12" background "white"
set output "{file}"
set datafile separator tab
set style data histograms
set style histogram clustered gap 1
set style fill solid 0.9 noborder
set boxwidth 0.9
set yrange [0:*]
set grid ytics
set xtics nomirror font ",11"
set key outside top right horizontal
set linetype 1 lc rgb "#f2a03d"
set linetype 2 lc rgb "#c2452d"
set linetype 3 lc rgb "#4a2545"
set multiplot layout 3,1
{panels}
"""
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def main():
    parser = argparse.ArgumentParser(prog="scripts/bench --peers")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--sizes", default=SIZES)
    parser.add_argument("--only", default="", help="names of peers")
    words = parser.parse_args()
    when = date_and_load()
    results = measure(words.sizes.split(","), words.rounds, [name for name in words.only.split(",") if name])
    put_between(SOURCE / "docs/speed.md", "scripts/bench --peers", table(results, [], words.rounds, when))
    plot(results, SOURCE / "docs/speed-peers.svg")
    with tempfile.TemporaryDirectory(dir=BUILD) as folder, \
            Display(REPLAY_SIZE, picture_of(BUILD), recorder_of(BUILD)) as display:
        replayed = measure_replay(display, words.rounds, pathlib.Path(folder))
    text = table(results, replayed, words.rounds, when)
    put_between(SOURCE / "docs/speed.md", "scripts/bench --peers", text)
    print(text)


main()

"""Compares the saver with an older commit's, built and run in turn with it, and writes the table into docs/speed.md.

against.py COMMIT [--rounds N]; run by scripts/bench --against, which has built the release preset.
"""

import argparse
import contextlib
import subprocess

from recording import (SOURCE, STAGES, Display, ParentWindow, Run, Show, build_of, date_and_load, median, picture_of,
                       put_between, recorder_of)

SIZE = "1920x1080"


def build(commit):
    """The commit's own release preset in build/against; gives its build folder."""
    name = subprocess.run(["git", "rev-parse", "--short", commit + "^{commit}"], cwd=SOURCE, capture_output=True,
                          text=True, check=True).stdout.strip()
    tree = SOURCE / "build/against" / name
    if not tree.exists():
        subprocess.run(["git", "worktree", "prune"], cwd=SOURCE, check=True)
        subprocess.run(["git", "worktree", "add", "--detach", tree, name], cwd=SOURCE, check=True)
    subprocess.run(["cmake", "--preset", "release", "-DTAMBLOR_TESTS=OFF", "-DTAMBLOR_BENCH=OFF"], cwd=tree, check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "release", "--target", "tamblor", "show_package"], cwd=tree,
                   check=True)
    return name, tree / "build/release"


def measure(folder, display):
    """One run of the show and one of the preview."""
    found = {}
    with Show(folder, display) as show:
        show.wait_for(1)
        first = show.frame(0)
        found["start"] = first.shown * 1000
        found["resident"] = first.resident
        found.update(show.measure_stages())
        found["peak"] = show.frame(-1).peak
    with ParentWindow(display, 152, 112) as parent, \
            Run([str(folder / "bin/tamblor"), "/p", str(parent.number)], display,
                {"TAMBLOR_DATA": str(folder / "share/tamblor")}) as preview:
        preview.wait_for(1)
        found["preview"] = preview.frame(0).shown * 1000
    return found


def megabytes(folder, name):
    file = folder / name
    return file.stat().st_size / 1e6 if file.exists() else None


def row(what, old, new, limit, unit):
    ratio = f"{new / old:.2f}" if old and new else ""
    text = [f"{value:.1f} {unit}" if value is not None else "none" for value in (old, new)]
    return f"| {what} | {text[0]} | {text[1]} | {ratio} | {limit} |\n"


def table(name, folders, runs, rounds, when):
    def both(key):
        return [median([run[key] for run in runs[folder]]) for folder in folders]

    text = (f"At {SIZE} on a virtual display with software OpenGL, medians of {rounds} runs in turn with "
            f"commit {name}; {when}.\n\n"
            f"| what | {name} | now | ratio | held to |\n|---|---|---|---|---|\n")
    text += row("start to the first frame shown", *both("start"), "0.5", "ms")
    text += row("resident memory at that moment", *both("resident"), "0.6", "MB")
    text += row("resident memory at the peak of a cycle", *both("peak"), "0.6", "MB")
    for what, file, limit in (("package", "tamblor", "12 MB"), ("package for larger screens", "tamblor-4k", "26 MB")):
        text += row(what, *(megabytes(folder, f"share/{file}/tamb.dat") for folder in folders), limit, "MB")
    for number, stage in enumerate(STAGES):
        text += row(f"frame, {stage}", *both(f"frame {number}"), "0.85", "ms")
    for number, stage in enumerate(STAGES):
        text += row(f"processor time of a frame, {stage}", *both(f"processor {number}"), "", "ms")
    return text + row("preview, start to its still", *both("preview"), "0.5", "ms")


def main():
    parser = argparse.ArgumentParser(prog="scripts/bench --against")
    parser.add_argument("commit")
    parser.add_argument("--rounds", type=int, default=5)
    words = parser.parse_args()
    name, old = build(words.commit)
    folders = [old, build_of(SOURCE)]
    when = date_and_load()
    runs = {folder: [] for folder in folders}
    with contextlib.ExitStack() as stack:
        display = stack.enter_context(Display(SIZE, picture_of(folders[1]), recorder_of(folders[1])))
        for number in range(words.rounds):
            for folder in folders:
                runs[folder].append(measure(folder, display))
                print(f"round {number + 1}, {folder.parent.parent.name}: " + ", ".join(
                    f"{key} {value:.0f}" for key, value in runs[folder][-1].items()), flush=True)
    text = table(name, folders, runs, words.rounds, when)
    put_between(SOURCE / "docs/speed.md", "scripts/bench --against", text)
    print(text)


main()

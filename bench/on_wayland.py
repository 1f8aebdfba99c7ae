"""Compares the saver on Wayland with the same on X11, run in turn, and writes the table into docs/speed.md.

on_wayland.py [--rounds N]; run by scripts/bench --wayland, which has built the release preset.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

from recording import SOURCE, STAGES, Display, Show, build_of, date_and_load, median, picture_of, put_between, recorder_of

SIZE = "1920x1080"
NOBODY = 65534


class Compositor:
    """sway, on an output that is nowhere, with a picture as its background; what runs on it is recorded."""

    def __init__(self, size, picture, recorder):
        self.recorder = recorder
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tamblor-bench-"))
        shutil.copy(picture, self.folder / "desktop.png")
        (self.folder / "config").write_text("xwayland disable\n"
                                            f"output * mode --custom {size}@60Hz bg {self.folder}/desktop.png fill\n")
        command = ["sway", "-c", str(self.folder / "config")]
        if os.getuid() == 0:  # which it refuses
            os.chown(self.folder, NOBODY, NOBODY)
            command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", *command]
        self.environment = {"WAYLAND_DISPLAY": str(self.folder / "wayland-1"), "XDG_RUNTIME_DIR": str(self.folder)}
        self.server = subprocess.Popen(
            command, stderr=subprocess.DEVNULL,
            env=dict(os.environ, HOME=str(self.folder), XDG_RUNTIME_DIR=str(self.folder), WLR_BACKENDS="headless",
                     WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1", WLR_HEADLESS_OUTPUTS="1"))
        for _ in range(100):
            if (self.folder / "wayland-1").exists():
                break
            time.sleep(0.1)
        else:
            raise RuntimeError("sway did not start")
        time.sleep(2)  # the background comes after the socket

    def paint(self):
        """The background is always there."""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()
        shutil.rmtree(self.folder)


def measure(screen):
    """One run of the show."""
    found = {}
    with Show(build_of(SOURCE), screen) as show:
        show.wait_for(1)
        found["start"] = show.frame(0).shown * 1000
        found.update(show.measure_stages())
    return found


def main():
    parser = argparse.ArgumentParser(prog="scripts/bench --wayland")
    parser.add_argument("--rounds", type=int, default=5)
    words = parser.parse_args()
    when = date_and_load()
    runs = {"x11": [], "wayland": []}
    build = build_of(SOURCE)
    with contextlib.ExitStack() as stack:
        x11, wayland = (stack.enter_context(kind(SIZE, picture_of(build), recorder_of(build)))
                        for kind in (Display, Compositor))
        for number in range(words.rounds):
            for name, screen in (("x11", x11), ("wayland", wayland)):
                runs[name].append(measure(screen))
                print(f"round {number + 1}, {name}: " + ", ".join(
                    f"{key} {value:.0f}" for key, value in runs[name][-1].items()), flush=True)
    text = (f"At {SIZE} with software OpenGL on Xvfb and on a headless sway, medians of {words.rounds} runs in turn; "
            f"{when}.\n\n| what | X11 | Wayland | ratio | held to |\n|---|---|---|---|---|\n")
    whats = [("start to the first frame shown", "start", "1.1")]
    whats += [(f"frame, {stage}", f"frame {number}", "1.1") for number, stage in enumerate(STAGES)]
    whats += [(f"processor time of a frame, {stage}", f"processor {number}", "") for number, stage in enumerate(STAGES)]
    for what, key, limit in whats:
        old, new = (median([run[key] for run in runs[name]]) for name in ("x11", "wayland"))
        text += f"| {what} | {old:.1f} ms | {new:.1f} ms | {new / old:.2f} | {limit} |\n"
    put_between(SOURCE / "docs/speed.md", "scripts/bench --wayland", text)
    print(text)


main()

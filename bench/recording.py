"""Runs programs that draw on a virtual X display, with frame_recorder.cpp preloaded, and reads what it recorded."""

import ctypes
import datetime
import mmap
import os
import pathlib
import shutil
import signal
import statistics
import struct
import subprocess
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
STAGES = ["the desktop dissolves", "it burns", "pause", "it is rebuilt", "it returns"]
_REBUILDING = 3

_HEAD = struct.Struct("<Ii56x")
_FRAME = struct.Struct("<qqIIiI")
_ROOM = 20000  # frames of one run


class Frame:
    """After one swap: seconds since the start of the process, seconds of all processors, MB, and the watched number."""

    def __init__(self, fields, start):
        self.shown = (fields[0] - start) / 1e9
        self.processor = fields[1] / 1e9
        self.resident = fields[2] / 1024
        self.peak = fields[3] / 1024
        self.watched = fields[4]


class Display:
    """A virtual display of one size with a picture on its root window; what runs on it is recorded."""

    def __init__(self, size, picture, recorder):
        self.size = size
        self.recorder = recorder
        ours, theirs = os.pipe()
        # -noreset: it would begin anew whenever its last program ends, and refuse the next one meanwhile.
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(theirs), "-screen", "0", f"{size}x24", "-nolisten", "tcp",
             "-noreset"],
            pass_fds=[theirs], stderr=subprocess.DEVNULL)
        os.close(theirs)
        with os.fdopen(ours) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("the virtual display did not start")
        self.name = ":" + number
        self.environment = {"DISPLAY": self.name}
        self.picture = str(picture)

    def paint(self):
        """Puts the picture onto the root window, where the last program may have drawn."""
        # It says 1 all the same.
        subprocess.run(["display", "-window", "root", "-resize", self.size + "!", self.picture],
                       env=dict(os.environ, DISPLAY=self.name), stderr=subprocess.DEVNULL, check=False)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()


class Run:
    """One running program. Ends with the block that it was made for. watch: see frame_recorder.cpp."""

    def __init__(self, command, display, environment=None, watch=""):
        display.paint()
        self.home = tempfile.mkdtemp(prefix="tamblor-bench-")
        record = os.path.join(self.home, "record")
        with open(record, "wb") as file:
            file.truncate(_HEAD.size + _ROOM * _FRAME.size)
        with open(record, "r+b") as file:
            self.memory = mmap.mmap(file.fileno(), 0)
        # The desktop's picture is what those that want a picture may take.
        pathlib.Path(self.home, ".xscreensaver").write_text("grabDesktopImages: True\nchooseRandomImages: False\n")
        settings = dict(os.environ, HOME=self.home, XDG_STATE_HOME=self.home, XDG_CONFIG_HOME=self.home,
                        LIBGL_ALWAYS_SOFTWARE="1", LD_PRELOAD=str(display.recorder),
                        TAMBLOR_RECORD=record, TAMBLOR_RECORD_WATCH=watch)
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            settings.pop(name, None)
        settings.update(display.environment)
        settings.update(environment or {})
        self.errors = open(os.path.join(self.home, "errors"), "w+b")
        self.command = command
        self.start = time.monotonic_ns()
        self.process = subprocess.Popen(command, env=settings, cwd=self.home, stdout=self.errors, stderr=self.errors,
                                        start_new_session=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            os.killpg(self.process.pid, signal.SIGTERM)
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                os.killpg(self.process.pid, signal.SIGKILL)
                self.process.wait()
        self.errors.close()
        self.memory.close()
        shutil.rmtree(self.home)

    def count(self):
        return _HEAD.unpack_from(self.memory)[0]

    def frame(self, index):
        """The frame with that number; -1 is the last one."""
        if index < 0:
            index += self.count()
        return Frame(_FRAME.unpack_from(self.memory, _HEAD.size + index * _FRAME.size), self.start)

    def wait_for(self, frames, seconds=120):
        """Until so many frames were recorded."""
        end = time.monotonic() + seconds
        while self.count() < frames:
            if self.process.poll() is not None or time.monotonic() > end:
                self.errors.seek(0)
                raise RuntimeError(f"{' '.join(self.command)}: {self.count()} of {frames} frames, "
                                   f"then {self.process.poll()}: {self.errors.read().decode(errors='replace')[-500:]}")
            time.sleep(0.0005)

    def draw_for(self, seconds, least=5):
        """Lets it draw so long, and at least so many frames; gives seconds and processor seconds of one."""
        first = self.count()
        self.wait_for(first + 1)  # one has begun before now
        time.sleep(seconds)
        self.wait_for(first + 1 + least)
        begin, end = self.frame(first), self.frame(-1)
        frames = self.count() - 1 - first
        return (end.shown - begin.shown) / frames, (end.processor - begin.processor) / frames


class Show(Run):
    """The saver itself, its clock in our hands and the stage that it is in known."""

    def __init__(self, build, display, environment=None):
        self.now = 1000000  # milliseconds
        self.clock_file = tempfile.NamedTemporaryFile()
        self.clock_file.write(struct.pack("<I", self.now))
        self.clock_file.flush()
        self.clock = mmap.mmap(self.clock_file.fileno(), 4)
        settings = {"TAMBLOR_DATA": str(build / "share/tamblor"), "TAMBLOR_CLOCK": self.clock_file.name}
        settings.update(environment or {})
        saver = build / "bin/tamblor"
        symbols = subprocess.run(["nm", saver], capture_output=True, text=True, check=True).stdout
        stage = next(line.split()[0] for line in symbols.splitlines() if line.endswith(" _ZN4show5stageE"))
        super().__init__([str(saver), "/s"], display, settings, stage)

    def __exit__(self, *_):
        super().__exit__()
        self.clock.close()
        self.clock_file.close()

    def step(self, seconds):
        """Turns the clock on, and waits until a frame of the new time was shown."""
        self.now += round(seconds * 1000)
        self.clock[:] = struct.pack("<I", self.now)
        self.wait_for(self.count() + 2)  # one may have begun before

    def go_on_to(self, stage, seconds):
        """In steps of so many seconds. A stage begins with the frame that ends the one before: none is passed over.

        A frame takes the morph on by one key frame at the most. Steps are shorter there, or shows whose morphs have
        different numbers of key frames would come to the next stage at different times."""
        for _ in range(120):
            watched = self.frame(-1).watched
            if watched == stage:
                return
            self.step(min(seconds, 0.2) if watched == _REBUILDING else seconds)
        raise RuntimeError(f"the saver does not come to stage {stage}")

    def enter(self, stage):
        """Goes on to the middle of the next such stage."""
        self.go_on_to(stage, 2 if stage == 1 else 5)
        for _ in range(8 if stage == 1 else 1):  # half of the screen is burnt
            self.step(1)
        if self.frame(-1).watched != stage:
            raise RuntimeError(f"stage {stage} ended too soon")

    def pass_first_cycle(self):
        """Until the desktop has returned for the first time; the cube is out from then on."""
        self.wait_for(1)
        self.go_on_to(4, 20)
        self.go_on_to(0, 20)

    def measure_stages(self, seconds=3):
        """A frame of each stage of the second cycle: its time and processor time, in milliseconds."""
        self.pass_first_cycle()
        found = {}
        for stage in range(len(STAGES)):
            self.enter(stage)
            frame, processor = self.draw_for(seconds)
            found[f"frame {stage}"] = frame * 1000
            found[f"processor {stage}"] = processor * 1000
        return found


class ParentWindow:
    """A window for a preview."""

    def __init__(self, display, width, height):
        x = ctypes.CDLL("libX11.so.6")
        x.XOpenDisplay.restype = x.XDefaultRootWindow.restype = x.XCreateSimpleWindow.restype = ctypes.c_void_p
        self.x = x
        self.connection = ctypes.c_void_p(x.XOpenDisplay(display.name.encode()))
        root = ctypes.c_void_p(x.XDefaultRootWindow(self.connection))
        self.number = x.XCreateSimpleWindow(self.connection, root, 0, 0, width, height, 0, ctypes.c_ulong(0),
                                            ctypes.c_ulong(0))
        x.XMapWindow(self.connection, ctypes.c_void_p(self.number))
        x.XSync(self.connection, 0)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.x.XCloseDisplay(self.connection)


def build_of(tree):
    return tree / "build/release"


def picture_of(build):
    """The generated desktop."""
    return build / "assets/desktop.png"


def recorder_of(build):
    return build / "bench/libtamb_frame_recorder.so"


def load_now():
    """How many others want the processors, on average over two seconds. (The load average remembers the build.)"""
    seen = []
    for _ in range(20):
        seen.append(int(pathlib.Path("/proc/loadavg").read_text().split()[3].split("/")[0]) - 1)
        time.sleep(0.1)
    return statistics.mean(seen)


def date_and_load():
    """For a table: when it was made, and whether the machine had other things to do."""
    load = load_now()
    busy = f", WITH OTHER WORK ON THE MACHINE (load {load:.1f}): TO BE REPEATED" if load > 0.7 else ""
    return f"{datetime.date.today()}, {os.cpu_count()} cores{busy}"


def median(values):
    return statistics.median(values)


def put_between(document, mark, text):
    """Replaces what stands between <!-- MARK --> and <!-- end of MARK -->."""
    begin, end = f"<!-- {mark} -->\n", f"<!-- end of {mark} -->\n"
    words = document.read_text()
    head, rest = words.split(begin)
    _, tail = rest.split(end)
    document.write_text(head + begin + text + end + tail)

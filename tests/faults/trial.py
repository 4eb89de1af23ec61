# SPDX-License-Identifier: GPL-3.0-or-later
"""What the trials share: clips, a home of its own for the console program, and what is looked at afterwards."""

import hashlib
import json
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time

TREE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BATCH = os.path.join(TREE, "build/dev/bin/tavrix-batch")
FFMPEG = shutil.which("ffmpeg") or "/usr/bin/ffmpeg"
OLDER = b"older output, not to be lost\n" * 10000  # above the size below which nothing counts as an output
PATIENCE = 240  # seconds; only a hang lasts longer, also on a busy machine


def make_clip(path, seconds=2, size="640x360", noise=12):
    """A camera clip whose output in every format is above 200 kilobytes."""
    subprocess.run(
        [FFMPEG, "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
         f"testsrc2=s={size}:r=25:d={seconds},noise=alls={noise}:allf=t", "-f", "lavfi", "-i",
         f"sine=440:r=48000:d={seconds}", "-c:v", "libx264", "-preset", "ultrafast", "-crf", "28", "-g", "12",
         "-pix_fmt", "yuv420p", "-c:a", "ac3", "-ac", "2", "-f", "mpegts", "file:" + path],
        check=True,
    )


def digest(path):
    """Nothing for what is no regular file: a pipe would never end."""
    if not os.path.isfile(path):
        return None
    try:
        with open(path, "rb") as file:
            return hashlib.sha256(file.read()).hexdigest()
    except OSError:
        return None


def files_below(folder):
    found = []
    for root, _, names in os.walk(folder):
        found += [os.path.relpath(os.path.join(root, name), folder) for name in names]
    return sorted(found)


def pictures(path):
    """How many pictures of a file can be decoded; -1 when it cannot be read."""
    answer = subprocess.run(
        ["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries", "stream=nb_read_frames",
         "-of", "csv=p=0", "file:" + path],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
    ).stdout.decode().strip().strip(",")
    return int(answer) if answer.isdigit() else -1


class Run:
    """One run of the console program: what it printed and how it ended. The watcher gets each event as it comes."""

    def __init__(self, process, log, watcher=None):
        self.process = process
        self.log = log
        self.hung = False
        self.events = []
        self.watcher = watcher
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            try:
                event = json.loads(line)
            except ValueError:
                event = {"event": "no JSON", "text": line.decode(errors="replace").strip()}
            self.events.append(event)
            if self.watcher:
                self.watcher(event)

    def poll(self):
        return self.process.poll()

    def finish(self, patience=PATIENCE):
        try:
            self.process.wait(patience)
        except subprocess.TimeoutExpired:
            self.hung = True
            self.process.kill()
            self.process.wait()
        self.reader.join(10)
        return self

    def named(self, name):
        return [event for event in self.events if event.get("event") == name]

    @property
    def rows(self):
        ends = self.named("end")
        return ends[-1]["rows"] if ends else self.named("row-finished")

    @property
    def status(self):
        return self.process.returncode

    def words(self):
        """What a person is told of what went wrong."""
        said = [row.get("reason") or row.get("warning") or "" for row in self.rows]
        said += [event.get("reason", "") for event in self.named("rejected")]
        if not any(said):
            said += [event.get("title", "") + " " + event.get("text", "") for event in self.named("message")]
            said += [event.get("text", "") for event in self.named("no JSON")]
        if not any(said):
            with open(self.log, errors="replace") as file:
                lines = file.read().splitlines()
            # A wrong command line is told before the usage.
            said += [line for line in lines if line.startswith("tavrix-batch: ")][:1] or lines[-1:]
        return "; ".join(word.strip() for word in said if word.strip())


def end_on_request(*_):
    raise SystemExit(1)  # by way of the clearing away


class World:
    """A home, a temporary folder, a destination and clips, all gone at the end."""

    def __init__(self, batch=BATCH, folder=None):
        if threading.current_thread() is threading.main_thread():
            signal.signal(signal.SIGTERM, end_on_request)
        self.root = tempfile.mkdtemp(prefix="tavrix-trial-", dir=folder)
        self.batch = os.path.abspath(batch)
        self.home = self.folder("home")
        self.temporary = self.folder("tmp")
        self.destination = self.folder("out")
        self.clips = self.folder("clips")
        self.environment = {
            "HOME": self.home, "TMPDIR": self.temporary, "XDG_DATA_HOME": os.path.join(self.home, "data"),
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"), "LANG": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen",
        }

    def folder(self, name):
        path = os.path.join(self.root, name)
        os.makedirs(path, exist_ok=True)
        os.chmod(path, 0o700)
        return path

    def close(self):
        for pid in self.processes():
            os.kill(pid, signal.SIGKILL)
        for root, folders, _ in os.walk(self.root):
            for name in folders:
                if not os.path.islink(os.path.join(root, name)):
                    os.chmod(os.path.join(root, name), 0o700)
        shutil.rmtree(self.root)

    def start(self, form, *sources, existing="replace", limits=None, prefix=(), watcher=None):
        self.count = getattr(self, "count", 0) + 1
        log = os.path.join(self.root, f"log{self.count}")
        with open(log, "wb") as errors:
            process = subprocess.Popen(
                [*prefix, self.batch, "--json", "--existing", existing, "--format", str(form), "--output",
                 self.destination, *(sources or [self.clips])],
                env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors,
                preexec_fn=limits,
            )
        return Run(process, log, watcher)

    def run(self, form, *sources, patience=PATIENCE, **options):
        return self.start(form, *sources, **options).finish(patience)

    def processes(self, program=""):
        """Processes of this home, the program itself and what it started; of one program when it is named."""
        found = []
        mark = ("HOME=" + self.home).encode()
        for name in os.listdir("/proc"):
            if not name.isdigit():
                continue
            try:
                with open(f"/proc/{name}/environ", "rb") as file:
                    own = mark in file.read().split(b"\0")
                if own and (not program or os.readlink(f"/proc/{name}/exe").endswith(program)):
                    found.append(int(name))
            except OSError:
                continue
        return found

    def all_gone(self, patience=20):
        end = time.monotonic() + patience
        while self.processes():
            if time.monotonic() > end:
                return False
            time.sleep(0.02)
        return True

    def temporary_files(self):
        """All but the locks, which stay."""
        return [name for name in files_below(self.temporary) if not name.endswith(".lock")]

    def outputs(self):
        return files_below(self.destination)

"""The faults of the matrix: how each is made, and what may come of it."""

import os
import plistlib
import resource
import shutil
import subprocess
import threading
from dataclasses import dataclass
from typing import Callable

ALL = (0, 1, 2, 3, 4, 5)
MASTER = (4, 5)  # formats with a second pass
HANGING = 20  # seconds of silence after which a tool counts as hanging, in the settings of the runs that try it
DONE, INCOMPLETE, FAILED, REFUSED, REFUSED_ALL = "done", "incomplete", "failed", "refused", "does not start"

# A tool in front of the installed ffmpeg that behaves otherwise for the first clip: `kind` says what it is asked for.
FAKE = """#!/bin/sh
real=REAL
last=
for word; do last=$word; done
case "$*" in *clips/a.MTS*) ;; *) exec "$real" "$@" ;; esac
case " $* " in *" -max_error_rate "*) kind=encode ;; *) kind=analysis ;; esac
BODY
exec "$real" "$@"
"""
WITHOUT_LAST = """count=$#
while [ $count -gt 1 ]; do first=$1; shift; set -- "$@" "$first"; count=$((count - 1)); done
shift"""


def encode_lies(words):
    """Leaves the place of the output and adds these words before it."""
    return f'[ $kind = encode ] && {{ {WITHOUT_LAST}; exec "$real" "$@" {words} "$last"; }}'


@dataclass
class Fault:
    name: str
    stage: str  # analysis, first pass, second pass, finish, start
    prepare: Callable
    allowed: tuple
    forms: tuple = (3,)
    next_row: tuple = (DONE,)  # what may become of the second clip
    needs_root: bool = False
    short: bool = False  # in the tests as well
    older_may_go: bool = False  # the fault itself takes it
    source_changes: bool = False  # likewise


# Making of faults. A case has the world, the options of the run, and actions at events.


def ffmpeg_body(body):
    return lambda case: case.fake_ffmpeg(body)


def flooding(kind):
    return ffmpeg_body(f'[ $kind = {kind} ] && yes "$(printf %080d 0)" | head -c 5000000 >&2')


def hanging(kind):
    def prepare(case):
        preferences(plistlib.dumps({"silenceAnalysis": HANGING, "silenceEncode": HANGING}))(case)
        case.fake_ffmpeg(f"[ $kind = {kind} ] && exec sleep 1000")
    return prepare


def movencoder_body(body):
    return lambda case: case.fake_movencoder(body)


def at(event, action):
    return lambda case: case.at(event, lambda: action(case))


def mount_small(case, path, kilobytes):
    subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={kilobytes}k,mode=700", "none", path], check=True)
    case.mounts.append(path)


def small_destination(kilobytes):
    def prepare(case):
        mount_small(case, case.world.destination, kilobytes)
        case.put_older()
    return prepare


def filling_destination(spare_kilobytes):
    """Large at first, and full but for that much as soon as the row has begun."""
    def prepare(case):
        mount_small(case, case.world.destination, 400000)
        case.put_older()

        def fill():
            status = os.statvfs(case.world.destination)
            with open(os.path.join(case.world.root, "out", "filler"), "wb") as file:
                os.posix_fallocate(file.fileno(), 0, status.f_bavail * status.f_frsize - spare_kilobytes * 1024)
        case.at("row-started", fill)
    return prepare


def full_temporary(case):
    mount_small(case, case.world.temporary, 64)
    file = os.open(os.path.join(case.world.temporary, "filler"), os.O_WRONLY | os.O_CREAT, 0o600)
    try:
        while os.write(file, b"x" * 4096) > 0:
            pass
    except OSError:
        pass  # full
    finally:
        os.close(file)


def read_only(name):
    def prepare(case):
        path = getattr(case.world, name)
        subprocess.run(["mount", "--bind", path, path], check=True)
        case.mounts.append(path)
        subprocess.run(["mount", "-o", "remount,bind,ro", path], check=True)
    return prepare


def file_limit(kilobytes):
    def prepare(case):
        size = kilobytes * 1024
        case.options["limits"] = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return prepare


def remove_clip(name):
    return lambda case: os.unlink(os.path.join(case.world.clips, name))


def shrink(case):
    path = os.path.join(case.world.clips, "a.MTS")
    os.truncate(path, os.path.getsize(path) * 2 // 5)


def grow(case):
    path = os.path.join(case.world.clips, "a.MTS")
    with open(path, "rb") as file:
        more = file.read(188 * 200)

    def append():
        for _ in range(200):  # an end, since a busy machine may not catch up
            if case.ended.wait(0.05):
                return
            with open(path, "ab") as file:
                file.write(more)
    threading.Thread(target=append, daemon=True).start()


def clip_is_fifo(case):
    path = os.path.join(case.world.clips, "a.MTS")
    os.unlink(path)
    os.mkfifo(path)


def clip_is_list(case):
    with open(os.path.join(case.world.clips, "a.MTS"), "w") as file:
        file.write("#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nb.MTS\n#EXT-X-ENDLIST\n")


def remove_temporary(case):
    for name in os.listdir(case.world.temporary):
        shutil.rmtree(os.path.join(case.world.temporary, name), ignore_errors=True)


def remove_events(case):
    shutil.rmtree(os.path.dirname(case.output), ignore_errors=True)


def put_at_output(kind):
    def action(case):
        os.path.exists(case.output) and os.unlink(case.output)
        if kind == "folder":
            os.mkdir(case.output)
        elif kind == "fifo":
            os.mkfifo(case.output)
        elif kind == "link":
            os.symlink(os.path.join(case.world.clips, "b.MTS"), case.output)
    return action


def preferences(data):
    def prepare(case):
        path = case.preferences_path()
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if data is None:
            os.mkdir(path)
        else:
            with open(path, "wb") as file:
                file.write(data)
    return prepare


def nul_in_text():
    text = b"a\0b"
    parts = [b"\xd1\x51k", bytes([0x50 | len(text)]) + text]
    dictionary = b"\xd1\x01\x02"
    objects = [dictionary, b"\x51k", parts[1]]
    body, offsets = b"bplist00", []
    for each in objects:
        offsets.append(len(body))
        body += each
    table = len(body)
    body += bytes(offsets)
    return body + bytes(6) + b"\x01\x01" + len(objects).to_bytes(8, "big") + bytes(8) + table.to_bytes(8, "big")


def nested():
    return b'<?xml version="1.0"?><plist version="1.0">' + b"<array>" * 300000 + b"</array>" * 300000 + b"</plist>"


def taken_temporary(make):
    return lambda case: make(os.path.join(case.world.temporary, "Tavrix"))


def remove_tool(name):
    return lambda case: case.own_program() and os.unlink(case.tool(name))


def unstartable_tool(name):
    return lambda case: case.own_program() and os.chmod(case.tool(name), 0o600)


def hide_ffmpeg(case):
    case.options["prefix"] = ["unshare", "-m", "sh", "-c", 'mount --bind /dev/null /usr/bin/ffmpeg && exec "$0" "$@"']


NOT_WHOLE = (FAILED,)
FAULTS = [
    # The tool that reads the clip.
    Fault("ffmpeg ends with 1 at once", "analysis", ffmpeg_body("[ $kind = analysis ] && exit 1"), (REFUSED, FAILED)),
    Fault("ffmpeg crashes", "analysis", ffmpeg_body("[ $kind = analysis ] && kill -SEGV $$"), (REFUSED, FAILED)),
    Fault("ffmpeg is silent: exit 0, nothing said", "analysis", ffmpeg_body("[ $kind = analysis ] && exit 0"),
          (REFUSED, FAILED)),
    Fault("ffmpeg floods with 5 MB of messages", "analysis",
          flooding("analysis"), (DONE,)),
    Fault("ffmpeg prints 20 MB without a line end", "analysis",
          ffmpeg_body("[ $kind = analysis ] && head -c 20000000 /dev/zero | tr '\\0' x >&2"), (DONE, REFUSED)),
    Fault("ffmpeg hangs", "analysis", hanging("analysis"), (REFUSED, FAILED)),
    Fault("no ffmpeg is installed", "analysis", hide_ffmpeg, (REFUSED, FAILED, REFUSED_ALL),
          next_row=(REFUSED, FAILED, REFUSED_ALL), needs_root=True),
    Fault("the program's own ffmpeg is missing", "start", remove_tool("ffmpeg"), (REFUSED, FAILED, REFUSED_ALL),
          next_row=(REFUSED, FAILED, REFUSED_ALL)),
    Fault("the program's own ffmpeg is not executable", "start", unstartable_tool("ffmpeg"),
          (REFUSED, FAILED, REFUSED_ALL), next_row=(REFUSED, FAILED, REFUSED_ALL)),
    # The tool that writes the output.
    Fault("ffmpeg ends with 1 at once", "first pass", ffmpeg_body("[ $kind = encode ] && exit 1"), NOT_WHOLE, ALL),
    Fault("ffmpeg crashes half way", "first pass",
          ffmpeg_body(f'[ $kind = encode ] && {{ {WITHOUT_LAST}; "$real" "$@" -t 1 "$last"; kill -SEGV $$; }}'),
          NOT_WHOLE, ALL),
    Fault("exit 0, the output is half as long", "first pass", ffmpeg_body(encode_lies("-t 1.4")), NOT_WHOLE, ALL,
          short=True),
    Fault("exit 0, the output is five pictures short", "first pass", ffmpeg_body(encode_lies("-frames:v 70")),
          NOT_WHOLE, ALL),
    Fault("exit 0, the output has sound only", "first pass", ffmpeg_body(encode_lies("-vn")), NOT_WHOLE, ALL),
    Fault("exit 0, the output has pictures only", "first pass", ffmpeg_body(encode_lies("-an")), NOT_WHOLE, ALL),
    Fault("exit 0, the output is empty", "first pass", ffmpeg_body("[ $kind = encode ] && exit 0"), NOT_WHOLE, ALL,
          short=True),
    Fault("exit 0, the output is noise", "first pass",
          ffmpeg_body('[ $kind = encode ] && { head -c 900000 /dev/urandom >"${last#file:}"; exit 0; }'), NOT_WHOLE,
          ALL, short=True),
    Fault("ffmpeg hangs", "first pass", hanging("encode"), NOT_WHOLE, (1, 3)),
    Fault("ffmpeg floods with 5 MB of messages", "first pass",
          flooding("encode"), (DONE,), (3,)),
    # movencoder.
    Fault("movencoder is missing", "second pass", remove_tool("movencoder"), NOT_WHOLE, MASTER, next_row=NOT_WHOLE),
    Fault("movencoder is not executable", "second pass", unstartable_tool("movencoder"), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE),
    Fault("movencoder ends with 1 at once", "second pass", movencoder_body("exit 1"), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE),
    Fault("movencoder: exit 0, nothing written", "second pass", movencoder_body("exit 0"), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE, short=True),
    Fault("movencoder: exit 0, noise under the output's name", "second pass",
          movencoder_body('head -c 900000 /dev/urandom >"$last"; exit 0'), NOT_WHOLE, MASTER, next_row=NOT_WHOLE,
          older_may_go=True),
    Fault("movencoder crashes", "second pass", movencoder_body("kill -SEGV $$"), NOT_WHOLE, MASTER, next_row=NOT_WHOLE),
    # Room.
    Fault("no room in the destination from the start", "first pass", small_destination(1200), NOT_WHOLE, (1, 3, 5),
          next_row=NOT_WHOLE, needs_root=True),
    Fault("the destination fills during the encode", "first pass", filling_destination(300), NOT_WHOLE, (1, 2, 3, 5),
          next_row=NOT_WHOLE, needs_root=True),
    Fault("the destination fills during the second pass", "second pass", filling_destination(4000), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE, needs_root=True),
    Fault("no file may become larger than 150 kB", "start", file_limit(150), (REFUSED_ALL,), next_row=(REFUSED_ALL,)),
    Fault("no file may become larger than 9 MB", "second pass", file_limit(9000), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE),
    Fault("the temporary folder is full", "analysis", full_temporary, (REFUSED, FAILED, REFUSED_ALL, DONE),
          next_row=(REFUSED, FAILED, REFUSED_ALL, DONE), needs_root=True),
    # Permissions.
    Fault("the destination is read-only", "first pass", read_only("destination"), (FAILED, REFUSED_ALL), (3, 5),
          next_row=(FAILED, REFUSED_ALL), needs_root=True),
    Fault("the temporary folder is read-only", "analysis", read_only("temporary"), (REFUSED, FAILED, REFUSED_ALL, DONE),
          next_row=(REFUSED, FAILED, REFUSED_ALL, DONE), needs_root=True),
    Fault("HOME is read-only", "start", read_only("home"), (DONE, REFUSED_ALL), next_row=(DONE, REFUSED_ALL),
          needs_root=True),
    # What goes away.
    Fault("the clip goes before its row", "first pass", at("queued-end", remove_clip("a.MTS")), NOT_WHOLE, (0, 3, 5),
          source_changes=True, short=True),
    Fault("the clip goes during its row", "first pass", at("row-started", remove_clip("a.MTS")), (FAILED, DONE),
          (0, 3, 5), source_changes=True),
    Fault("the destination's folder goes", "finish", at("row-started", remove_events), (FAILED, DONE), (1, 5),
          next_row=(FAILED, DONE), older_may_go=True),
    Fault("the temporary folder goes", "first pass", at("row-started", remove_temporary), (FAILED, DONE), (3, 5),
          next_row=(FAILED, DONE)),
    Fault("HOME goes", "first pass", at("row-started", lambda case: shutil.rmtree(case.world.home)), (FAILED, DONE),
          (3, 5), next_row=(FAILED, DONE)),
    # Sources that change or are none.
    Fault("the clip grows", "analysis", grow, (DONE, INCOMPLETE, FAILED, REFUSED), (0, 3), source_changes=True),
    Fault("the clip grows", "first pass", at("row-started", grow), (DONE, INCOMPLETE, FAILED), (0, 3),
          source_changes=True),
    Fault("the clip shrinks", "first pass", at("row-started", shrink), (FAILED, INCOMPLETE), (0, 1, 3, 5),
          source_changes=True),
    Fault("the clip is a pipe", "analysis", clip_is_fifo, (REFUSED, FAILED), source_changes=True),
    Fault("the clip is a play list", "analysis", clip_is_list, (REFUSED, FAILED), source_changes=True),
    # The end.
    Fault("a folder stands under the output's name", "finish", lambda case: put_at_output("folder")(case), NOT_WHOLE,
          (3, 5), older_may_go=True),
    Fault("a pipe stands under the output's name", "finish", lambda case: put_at_output("fifo")(case), NOT_WHOLE,
          (3, 5), older_may_go=True),
    Fault("a link stands under the output's name", "finish", lambda case: put_at_output("link")(case), (FAILED, DONE),
          (3, 5), older_may_go=True),
    Fault("a folder appears under the output's name", "finish", at("row-started", put_at_output("folder")), NOT_WHOLE,
          (1, 5), older_may_go=True),
    # The start.
    Fault("preferences: a NUL inside a text", "start", preferences(nul_in_text()), (DONE,), short=True),
    Fault("preferences: 300,000 lists in each other", "start", preferences(nested()), (DONE,)),
    Fault("preferences: noise", "start", preferences(bytes(range(256)) * 40), (DONE,)),
    Fault("preferences: empty", "start", preferences(b""), (DONE,)),
    Fault("preferences: a folder", "start", preferences(None), (DONE,)),
    Fault("a file is named like the working folder", "start", taken_temporary(lambda path: open(path, "w").close()),
          (DONE, REFUSED_ALL), next_row=(DONE, REFUSED_ALL)),
    Fault("a link is named like the working folder", "start",
          taken_temporary(lambda path: os.symlink("/var", path)), (DONE, REFUSED_ALL), next_row=(DONE, REFUSED_ALL)),
    Fault("no HOME in the environment", "start", lambda case: case.world.environment.pop("HOME"), (DONE, REFUSED_ALL),
          next_row=(DONE, REFUSED_ALL)),
]

# SPDX-License-Identifier: GPL-3.0-or-later
"""The faults of the matrix: how each is made, and what may come of it."""

import os
import plistlib
import resource
import shutil
import subprocess
import threading
from dataclasses import dataclass
from typing import Callable

import trial

ALL = (0, 1, 2, 3, 4, 5)
MASTER = (4, 5)  # formats with a second pass
SHIM = os.path.join(os.path.dirname(os.path.abspath(__file__)), "shim.c")
DAYS = 24 * 3600
NOBODY = 65534
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
    needs: tuple = ()  # programs
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


def hanging_movencoder(case):
    preferences(plistlib.dumps({"silenceEncode": HANGING}))(case)
    case.fake_movencoder("exec sleep 1000")


def with_shim(case):
    case.world.environment["LD_PRELOAD"] = case.shim()


def hanging_clip(case):
    preferences(plistlib.dumps({"silenceAnalysis": HANGING, "silenceEncode": HANGING}))(case)
    with_shim(case)
    case.world.environment["TRIAL_HANGING"] = "clips/a.MTS"


def hanging_clip_in_encode(case):
    """Its reading in the analysis is left alone."""
    hanging_clip(case)
    case.fake_ffmpeg("[ $kind = analysis ] && unset TRIAL_HANGING")


def set_clock(case, seconds):
    with open(case.clock, "r+") as file:
        file.write(f"{seconds:<31}")


def clock_jump(days, event=None):
    """As the program meets the event, or as movencoder starts."""
    def prepare(case):
        with_shim(case)
        case.clock = os.path.join(case.world.root, "clock")
        with open(case.clock, "w") as file:
            file.write(f"{0:<31}\0")
        case.world.environment["TRIAL_CLOCK"] = case.clock
        if event:
            case.at(event, lambda: set_clock(case, days * DAYS))
        else:
            case.fake_movencoder(f"printf %-31d {days * DAYS} 1<>'{case.clock}'; exec \"$0.real\" \"$@\"")
    return prepare


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


def file_count(number):
    return lambda case: case.options.update(
        limits=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (number, number)))


def own_by(case, user):
    for folder, folders, names in os.walk(case.world.root):
        for name in (".", *folders, *names):
            os.chown(os.path.join(folder, name), user, user, follow_symlinks=False)


def as_user(*closed, mode=0o755):
    """As another user than root, to whom all belongs but what is named: that is root's."""
    def prepare(case):
        own_by(case, NOBODY)
        for path in [path(case) if callable(path) else getattr(case.world, path) for path in closed]:
            os.chown(path, 0, 0)
            os.chmod(path, mode)
        os.chmod(case.world.root, 0o755)
        case.options["prefix"] = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
    return prepare


def of_clip(case):
    return os.path.join(case.world.clips, "a.MTS")


def of_output(case):
    return case.output


def of_events(case):
    return os.path.dirname(case.output)


def leaving_destination(case):
    mount_small(case, case.world.destination, 400000)
    case.put_older()
    case.at("row-started", lambda: subprocess.run(["umount", "-l", case.mounts.pop()], check=False))


def exfat_destination(case):
    image = os.path.join(case.world.root, "disk")
    with open(image, "wb") as file:
        file.truncate(300 << 20)
    subprocess.run(["mkfs.exfat", image], check=True, stdout=subprocess.DEVNULL)
    answer = subprocess.run(["losetup", "-f", "--show", image], check=True, stdout=subprocess.PIPE)
    device = answer.stdout.decode().strip()
    case.devices.append(device)
    subprocess.run(["mount.exfat-fuse", "-o", "nonempty", device, case.world.destination], check=True,
                   stdout=subprocess.DEVNULL)
    case.mounts.append(case.world.destination)
    case.put_older()


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
    case.writers.append(threading.Thread(target=append, daemon=True))
    case.writers[-1].start()


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
    Fault("ffmpeg is killed", "analysis", ffmpeg_body("[ $kind = analysis ] && kill -KILL $$"), (REFUSED, FAILED)),
    # The tool that writes the output.
    Fault("ffmpeg ends with 1 at once", "first pass", ffmpeg_body("[ $kind = encode ] && exit 1"), NOT_WHOLE, ALL),
    Fault("ffmpeg crashes", "first pass",
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
    Fault("ffmpeg is killed", "first pass",
          ffmpeg_body(f'[ $kind = encode ] && {{ {WITHOUT_LAST}; "$real" "$@" -t 1 "$last"; kill -KILL $$; }}'),
          NOT_WHOLE, ALL),
    Fault("ffmpeg hangs", "first pass", hanging("encode"), NOT_WHOLE, ALL),
    Fault("ffmpeg floods with 5 MB of messages", "first pass",
          flooding("encode"), (DONE,), ALL),
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
    Fault("movencoder: exit 0, the output is half as long", "second pass",
          movencoder_body(f'{trial.FFMPEG} -v error -nostdin -y -i "$before" -t 1.4 -c copy "$last"; exit 0'), NOT_WHOLE,
          MASTER, next_row=NOT_WHOLE, older_may_go=True),
    Fault("movencoder: exit 0, the output has sound only", "second pass",
          movencoder_body(f'{trial.FFMPEG} -v error -nostdin -y -i "$before" -vn -c copy "$last"; exit 0'), NOT_WHOLE,
          MASTER, next_row=NOT_WHOLE, older_may_go=True),
    Fault("movencoder crashes", "second pass", movencoder_body("kill -SEGV $$"), NOT_WHOLE, MASTER, next_row=NOT_WHOLE,
          short=True),
    Fault("movencoder is killed half way", "second pass",
          movencoder_body('"$0.real" "$@" & sleep 0.4; kill -KILL $! $$'), NOT_WHOLE, MASTER, next_row=NOT_WHOLE),
    Fault("movencoder hangs", "second pass", hanging_movencoder, NOT_WHOLE, MASTER, next_row=NOT_WHOLE),
    Fault("movencoder floods with 5 MB of messages", "second pass",
          movencoder_body('yes "$(printf %080d 0)" | head -c 5000000 >&2; exec "$0.real" "$@"'), (DONE,), MASTER),
    Fault("the first pass's movie goes", "second pass", movencoder_body('rm -f "$before"; exec "$0.real" "$@"'),
          NOT_WHOLE, MASTER, next_row=NOT_WHOLE),
    Fault("the first pass's movie shrinks", "second pass",
          movencoder_body('truncate -s 300K "$before"; exec "$0.real" "$@"'), NOT_WHOLE, MASTER,
          next_row=(FAILED, INCOMPLETE)),
    # Room.
    Fault("no room in the destination from the start", "first pass", small_destination(300), NOT_WHOLE, ALL,
          next_row=NOT_WHOLE, needs_root=True),
    Fault("the destination fills during the encode", "first pass", filling_destination(100), NOT_WHOLE, ALL,
          next_row=NOT_WHOLE, needs_root=True),
    Fault("the destination fills during the second pass", "second pass", filling_destination(4000), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE, needs_root=True),
    Fault("no file may become larger than 150 kB", "start", file_limit(150), (REFUSED_ALL,), next_row=(REFUSED_ALL,)),
    Fault("no file may become larger than 9 MB", "second pass", file_limit(9000), NOT_WHOLE, MASTER,
          next_row=NOT_WHOLE),
    Fault("the temporary folder is full", "analysis", full_temporary, (REFUSED, FAILED, REFUSED_ALL, DONE),
          next_row=(REFUSED, FAILED, REFUSED_ALL, DONE), needs_root=True),
    Fault("no more than 24 files may be open", "start", file_count(24), (REFUSED, FAILED, REFUSED_ALL, DONE),
          next_row=(REFUSED, FAILED, REFUSED_ALL, DONE)),
    # Permissions.
    Fault("the destination is read-only", "first pass", read_only("destination"), (FAILED, REFUSED_ALL), ALL,
          next_row=(FAILED, REFUSED_ALL), needs_root=True),
    Fault("the temporary folder is read-only", "analysis", read_only("temporary"), (REFUSED, FAILED, REFUSED_ALL, DONE),
          next_row=(REFUSED, FAILED, REFUSED_ALL, DONE), needs_root=True),
    Fault("HOME is read-only", "start", read_only("home"), (DONE, REFUSED_ALL), next_row=(DONE, REFUSED_ALL),
          needs_root=True),
    Fault("the user may not read the clip", "analysis", as_user(of_clip, mode=0o600), (REFUSED, REFUSED_ALL),
          next_row=(DONE, REFUSED_ALL), needs_root=True),
    Fault("the user may not write to the temporary folder", "analysis", as_user("temporary"),
          (REFUSED, FAILED, REFUSED_ALL, DONE), next_row=(REFUSED, FAILED, REFUSED_ALL, DONE), needs_root=True),
    Fault("the user may not write to HOME", "start", as_user("home"), (DONE, REFUSED_ALL),
          next_row=(DONE, REFUSED_ALL), needs_root=True),
    Fault("the user may not write to the destination", "first pass", as_user("destination", of_events),
          (FAILED, REFUSED_ALL), (3, 5), next_row=(FAILED, REFUSED_ALL), needs_root=True),
    Fault("the folder of the outputs is another user's", "first pass", as_user(of_events), (FAILED, REFUSED_ALL), ALL,
          next_row=(FAILED, REFUSED_ALL), needs_root=True),
    Fault("the older output is another user's and protected", "finish", as_user(of_output, mode=0o444), (FAILED,),
          (3, 5), needs_root=True),
    Fault("the destination is exFAT", "finish", exfat_destination, (DONE,), (1, 3, 5), needs_root=True,
          needs=("mkfs.exfat", "mount.exfat-fuse")),
    # What goes away.
    Fault("the clip goes before its row", "first pass", at("queued-end", remove_clip("a.MTS")), NOT_WHOLE, ALL,
          source_changes=True, short=True),
    Fault("the clip goes during its row", "first pass", at("row-started", remove_clip("a.MTS")), (FAILED, DONE),
          ALL, source_changes=True),
    Fault("the destination's folder goes", "first pass",
          lambda case: case.fake_ffmpeg(f'[ $kind = encode ] && rm -rf "{os.path.dirname(case.output)}"'), NOT_WHOLE,
          ALL, older_may_go=True, short=True),
    Fault("the destination's folder goes", "second pass",
          lambda case: case.fake_movencoder(f'rm -rf "{os.path.dirname(case.output)}"; exec "$0.real" "$@"'), NOT_WHOLE,
          MASTER, next_row=NOT_WHOLE, older_may_go=True),
    Fault("the destination's disk goes", "finish", leaving_destination, (FAILED, DONE), (1, 3, 5), next_row=(FAILED, DONE),
          older_may_go=True, needs_root=True),
    Fault("the temporary folder goes", "analysis", at("analysing", remove_temporary), (REFUSED, FAILED, DONE),
          next_row=(REFUSED, FAILED, DONE)),
    Fault("the temporary folder goes", "first pass", at("row-started", remove_temporary), (FAILED, DONE), ALL,
          next_row=(FAILED, DONE)),
    Fault("HOME goes", "first pass", at("row-started", lambda case: shutil.rmtree(case.world.home)), (FAILED, DONE),
          ALL, next_row=(FAILED, DONE)),
    # Sources that change or are none, or a clock that does.
    Fault("the clip's disk hangs", "analysis", hanging_clip, (REFUSED, FAILED)),
    Fault("the clip's disk hangs", "first pass", hanging_clip_in_encode, NOT_WHOLE, ALL),
    Fault("the clock is set forward by 400 days", "analysis", clock_jump(400, "analysing"), (DONE,)),
    Fault("the clock is set back by 400 days", "analysis", clock_jump(-400, "analysing"), (DONE,)),
    Fault("the clock is set forward by 400 days", "first pass", clock_jump(400, "row-started"), (DONE,), ALL),
    Fault("the clock is set back by 400 days", "first pass", clock_jump(-400, "row-started"), (DONE,), ALL, short=True),
    Fault("the clock is set forward by 400 days", "second pass", clock_jump(400), (DONE,), MASTER),
    Fault("the clock is set back by 400 days", "second pass", clock_jump(-400), (DONE,), MASTER),
    Fault("the clip grows", "analysis", grow, (DONE, INCOMPLETE, FAILED, REFUSED), source_changes=True),
    Fault("the clip grows", "first pass", at("row-started", grow), (DONE, INCOMPLETE, FAILED), ALL,
          source_changes=True),
    Fault("the clip shrinks", "first pass", at("row-started", shrink), (FAILED, INCOMPLETE), ALL,
          source_changes=True),
    Fault("the clip shrinks", "analysis", at("analysing", shrink), (FAILED, INCOMPLETE, REFUSED), source_changes=True),
    Fault("the clip is a pipe", "analysis", clip_is_fifo, (REFUSED, FAILED), source_changes=True),
    Fault("the clip is a play list", "analysis", clip_is_list, (REFUSED, FAILED), source_changes=True),
    # The end.
    Fault("a folder stands under the output's name", "finish", lambda case: put_at_output("folder")(case), NOT_WHOLE,
          ALL, older_may_go=True),
    Fault("a pipe stands under the output's name", "finish", lambda case: put_at_output("fifo")(case), NOT_WHOLE,
          ALL, older_may_go=True),
    Fault("a link stands under the output's name", "finish", lambda case: put_at_output("link")(case), (FAILED, DONE),
          ALL, older_may_go=True),
    Fault("a folder appears under the output's name", "finish", at("row-started", put_at_output("folder")), NOT_WHOLE,
          ALL, older_may_go=True),
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

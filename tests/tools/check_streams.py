"""check_streams.py NQOML SAMPLES FOLDER: nqoml with standard streams that are closed, full
or left by their readers, with links, and ended by signals. Works in FOLDER."""

import os
import resource
import shutil
import signal
import subprocess
import sys
import time

nqoml, samples, folder = (os.path.abspath(path) for path in sys.argv[1:4])
shutil.rmtree(folder, ignore_errors=True)
temporary = os.path.join(folder, "temporary")
os.makedirs(temporary)
os.chdir(folder)
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
for name in ("graph.grammar", "karate.oml"):
    shutil.copy(os.path.join(samples, name), name)
with open("broken.oml", "w") as file:
    file.write("{")
with open("-", "w") as file:
    file.truncate(2 << 30)  # too much for the tool, if it were read
os.symlink("target.oml", "link.oml")
os.mkfifo("fifo")
environment = dict(os.environ, TMPDIR=temporary, n=nqoml, g="--grammar=graph.grammar")

UNREAD = "nqoml: `<stdin>': cannot be read\n"
UNWRITTEN = "nqoml: standard output cannot be written\n"
ROWS = [  # a shell's command, the exit code, standard error
    ("$n check -q $g - <&-", 2, UNREAD),
    ("$n convert $g --to text - <.", 2, UNREAD),
    ("$n dump - <&-", 2, UNREAD),
    ("$n format - <.", 2, UNREAD),
    ("$n check $g karate.oml >/dev/full", 2, UNWRITTEN),
    ("$n check $g karate.oml >&-", 2, UNWRITTEN),
    ("$n --help >/dev/full", 2, UNWRITTEN),
    ("$n convert $g --to text karate.oml >&-", 2, "nqoml: `-': cannot be written\n"),
    ("$n convert $g --to text karate.oml -o /dev/full", 2,
     "nqoml: `/dev/full': cannot be written\n"),
    # No file takes the place of a closed stream and receives what was meant for it.
    ("$n format broken.oml <&- >&- 2>&-; cat broken.oml", 0, ""),
    ("$n convert $g broken.oml --to text -o broken.oml <&- >&- 2>&-", 1, ""),
    ("test $(cat broken.oml) = {", 0, ""),
    ("cat karate.oml | $n check -q $g /dev/stdin && $n check -q $g /dev/null", 0, ""),
    ("printf '{}' | $n dump -", 0, ""),
    # A link that leads nowhere yet stays a link.
    ("$n convert $g karate.oml --to text -o link.oml && test -L link.oml -a -f target.oml",
     0, ""),
    # A link to a device is not followed to what has no name.
    ("test $($n convert $g karate.oml --to text -o /dev/stdout | wc -l) -gt 9", 0, ""),
    # Neither does a limit that is met leave anything behind.
    ("sh -c 'ulimit -f 1; $n convert $g karate.oml --to text -o big.oml; test $? -gt 128' "
     "2>&-", 0, ""),
    # A reader that leaves ends the program quietly.
    ("yes '({[<' | head -c 300000 | { $n dump -; echo $? >code; } | true; grep -q 141 code",
     0, ""),
]

# A file whose group cannot be kept: what the old group was allowed, the new one is not.
if os.geteuid() == 0:
    os.mkdir("shared")
    os.chmod("shared", 0o777)
    with open("shared/loose.oml", "w") as file:
        file.write("x:1")
    os.chown("shared/loose.oml", 65534, 1234)
    os.chmod("shared/loose.oml", 0o664)
    ROWS.append(("setpriv --reuid=65534 --regid=65534 --clear-groups $n format "
                 "shared/loose.oml && test $(stat -c %a:%g shared/loose.oml) = 604:65534",
                 0, ""))

failed = False
for command, code, errors in ROWS:
    done = subprocess.run(command, shell=True, env=environment, capture_output=True,
                          text=True, timeout=60)
    if done.returncode != code or done.stderr != errors:
        print(f"{command}\n  expected {code} {errors!r}\n"
              f"  got      {done.returncode} {done.stderr!r}")
        failed = True

# The converted file waits for a reader of the FIFO. No signal leaves it behind.
for end in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM, signal.SIGXCPU,
            signal.SIGXFSZ):
    running = subprocess.Popen([nqoml, "convert", "-g", "graph.grammar", "karate.oml",
                                "--to=text", "--output=fifo"], env=environment,
                               preexec_fn=lambda: signal.signal(end, signal.SIG_DFL))
    last = time.monotonic() + 30
    while not os.listdir(temporary) and time.monotonic() < last:
        time.sleep(0.01)
    was_there = os.listdir(temporary)
    running.send_signal(end)
    if running.wait(30) != -end or not was_there or os.listdir(temporary):
        print(f"{end}: {running.returncode}, {was_there}, {os.listdir(temporary)}")
        failed = True

left = [name for name in os.listdir(folder) if name.count(".") > 1] + os.listdir(temporary)
if left:
    print("left behind:", left)
sys.exit(1 if failed or left else 0)

#!/usr/bin/env python3
"""Runs the driver scripts beside this file through a built `cauce guion` and checks what it prints.

Each line printed must hold the keys and values of
the matching line of the .json file beside the script (a line may list only the controls it checks),
an "error" absent from the expected line must be absent from the printed one, no line may be missing
or left over, and the driver must end with status 0. A comment "# @copy FILE" copies FILE into the
folder the script runs in.

It runs the program as a user would, so that another build of it (another system, another compiler,
the Windows build under wine) is held to the same expected output:

    run_scripts.py build/cli/cauce
    run_scripts.py --emulator /usr/lib/wine/wine64 build-mingw/cli/cauce.exe
"""
import argparse
import concurrent.futures
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent


def compare(name, printed, expected_text):
    """The differences between what the driver printed and the expected lines, as messages."""
    faults = []
    printed_lines = printed.splitlines()
    n = 0
    for e in expected_text.splitlines():
        if not e.strip():
            continue
        if n >= len(printed_lines):
            faults.append(f"{name}: falta la línea {n + 1} de la salida")
            return faults
        want = json.loads(e)
        try:
            got = json.loads(printed_lines[n])
        except json.JSONDecodeError:
            faults.append(f"{name}: la línea {n + 1} no es JSON: {printed_lines[n]!r}")
            return faults
        n += 1
        for key, value in want.items():
            if got.get(key, "<absent>") != value:
                faults.append(f"{name}, línea {n}, {key}: se esperaba {value!r}, salió {got.get(key, '<absent>')!r}")
        if "error" not in want and "error" in got:
            faults.append(f"{name}, línea {n}: error inesperado: {got['error']!r}")
    if n < len(printed_lines):
        faults.append(f"{name}: salida de más: {printed_lines[n]!r}")
    return faults


def wine_environment(emulator):
    """Wine quiet, in a prefix of its own that is removed afterwards (a fresh prefix is what makes its
    first start slow), without the prompts to install Mono and Gecko."""
    prefix = tempfile.mkdtemp(prefix="cauce-wine-") if "WINEPREFIX" not in os.environ else None
    env = dict(os.environ, WINEDEBUG=os.environ.get("WINEDEBUG", "-all"), WINEDLLOVERRIDES="mscoree,mshtml=")
    if prefix:
        env["WINEPREFIX"] = prefix

    def end():
        server = Path(emulator).with_name("wineserver")
        if server.exists():
            subprocess.run([str(server), "-k"], env=env, check=False)
        if prefix:
            shutil.rmtree(prefix, ignore_errors=True)
    return env, end


def run(name, program, timeout, env):
    script = HERE / f"{name}.guion"
    text = script.read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory(prefix=f"cauce-guion-{name}-") as scratch:
        for line in text.splitlines():
            if line.startswith("# @copy "):
                shutil.copy(HERE / line[len("# @copy "):], scratch)
        # The script is passed by a name relative to the folder it runs in, which reads the same on
        # every system (wine included).
        shutil.copy(script, Path(scratch) / script.name)
        done = subprocess.run(program + ["guion", script.name], cwd=scratch, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=timeout, env=env)
    printed = done.stdout.decode("utf-8", errors="replace")
    if done.returncode != 0:
        return [f"{name}: el programa terminó con estado {done.returncode}: "
                f"{done.stderr.decode('utf-8', errors='replace').strip()}"]
    return compare(name, printed, (HERE / f"{name}.json").read_text(encoding="utf-8"))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("cauce", help="the program to run")
    parser.add_argument("names", nargs="*", help="scripts to run (by default every one)")
    parser.add_argument("--emulator", default="", help="runs the program through this (e.g. wine64)")
    parser.add_argument("--timeout", type=float, default=300, help="seconds each script may take")
    parser.add_argument("--jobs", type=int, default=4, help="scripts run at once")
    args = parser.parse_args()

    # The scripts run in folders of their own: the program is named by its full path.
    program = ([args.emulator] if args.emulator else []) + [str(Path(args.cauce).resolve())]
    names = args.names or sorted(p.stem for p in HERE.glob("*.guion"))
    env, end = (None, lambda: None)
    if "wine" in Path(args.emulator).name:
        env, end = wine_environment(args.emulator)
    def timed(name):
        start = time.monotonic()
        return run(name, program, args.timeout, env), time.monotonic() - start

    # Most of a script's time under wine is the start of the process: several run at once.
    faults = []
    try:
        with concurrent.futures.ThreadPoolExecutor(max_workers=args.jobs) as pool:
            for name, (found, seconds) in zip(names, pool.map(timed, names)):
                print(f"{name}: {'bien' if not found else 'FALLA'} ({seconds:.1f} s)", flush=True)
                faults += found
    finally:
        end()
    for f in faults:
        print(f, file=sys.stderr)
    print(f"{len(names)} guiones, {len(faults)} diferencias")
    return 1 if faults or not names else 0


if __name__ == "__main__":
    sys.exit(main())

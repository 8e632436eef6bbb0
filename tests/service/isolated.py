#!/usr/bin/env python3
"""Runs one test module in a process namespace of its own.

The service looks for its host among all processes of the user. In a namespace of its own a test
sees only the hosts that it started itself, so that tests may run side by side, and whatever a test
leaves behind ends with it. Where the system allows no namespaces the module runs as it is.

    isolated.py MODULE.py
    isolated.py --check      # exit status 0 where there are namespaces
"""

import os
import subprocess
import sys

AS_ROOT = ["unshare", "--pid", "--fork", "--mount-proc", "--kill-child"]
AS_USER = ["unshare", "--user", "--map-current-user", *AS_ROOT[1:]]


def works(command):
    try:
        return subprocess.run([*command, "true"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0
    except FileNotFoundError:
        return False


def main():
    if sys.argv[1] == "--check":
        return 0 if works(AS_ROOT) or works(AS_USER) else 1
    module = [sys.executable, sys.argv[1], "-v", *sys.argv[2:]]
    for command in (AS_ROOT, AS_USER):
        if works(command):
            # A shell is process 1: it reaps what is orphaned.
            os.execvp(command[0], [*command, "sh", "-c", '"$@"; exit $?', "sh", *module])
    print("no namespaces here: other hosts of this user are seen too", file=sys.stderr)
    return os.execv(sys.executable, module)


if __name__ == "__main__":
    sys.exit(main())

# SPDX-License-Identifier: LGPL-2.1-or-later
"""Runs the tests that reach a mutant, until one fails."""

import os
import resource
import shutil
import signal
import subprocess
import tempfile
from collections import defaultdict
from dataclasses import dataclass

MEMORY = 4 << 30     # of one test program; more is a mutant's doing
FILE_SIZE = 2 << 30
QUICK = 100          # milliseconds; slower tests run after the quick ones of their program
SLOWEST = 5000       # tests that take longer are left out


@dataclass
class Test:
    program: str
    name: str
    milliseconds: int
    reached: set


class Trials:
    def __init__(self, tree):
        self.tree = tree
        self.reaching = defaultdict(list)

    # --- reach

    def record_reach(self):
        """Runs every test once, on the original program, and keeps what each reaches."""
        for program in self.tree.programs:
            for test in self.tests_of(program):
                for number in test.reached:
                    self.reaching[number].append(test)

    def tests_of(self, program):
        with tempfile.NamedTemporaryFile("r", suffix=".reach") as lines:
            if not self.passes(program, None, 0, 1200, {"QUARNER_MUTANT_REACH": lines.name}):
                raise SystemExit(f"mutate: {program} fails without a mutant")
            tests = [self.test_from(program, line) for line in lines]
        at_start = tests[0].reached
        for test in tests[1:]:
            test.reached |= at_start
        return [test for test in tests[1:] if test.milliseconds <= SLOWEST]

    @staticmethod
    def test_from(program, line):
        name, milliseconds, *reached = line.split()
        return Test(program, name, int(milliseconds), {int(number) for number in reached})

    # --- trial

    def is_caught(self, number, first):
        """`first`: the number of the mutant's site, under which its reach was recorded."""
        for program, tests in self.stages(self.reaching[first]):
            seconds = 5 + 10 * sum(test.milliseconds for test in tests) / 1000
            if not self.passes(program, [test.name for test in tests], number, seconds):
                return True
        return False

    def stages(self, tests):
        for program in self.tree.programs:
            own = [test for test in tests if test.program == program]
            yield from self.parts(program, [one for one in own if one.milliseconds < QUICK])
            yield from self.parts(program, [one for one in own if one.milliseconds >= QUICK])

    @staticmethod
    def parts(program, tests):
        """So many at once as a command line can name."""
        for start in range(0, len(tests), 1000):
            yield program, tests[start:start + 1000]

    def passes(self, program, names, number, seconds, environment=None):
        folder = tempfile.mkdtemp(prefix="quarner-mutant-")
        os.chmod(folder, 0o755)  # as /tmp: tests become other users
        variables = {**os.environ, "QUARNER_MUTANT": str(number), "TMPDIR": folder,
                     **(environment or {})}
        if names is not None:
            variables["GTEST_FILTER"] = ":".join(names)
        run = subprocess.Popen([self.tree.program(program), "--gtest_fail_fast"], env=variables,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               stdin=subprocess.DEVNULL, start_new_session=True, cwd=folder,
                               preexec_fn=self.limit)
        try:
            return run.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            self.end(run)
            shutil.rmtree(folder, ignore_errors=True)

    @staticmethod
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    @staticmethod
    def end(run):
        """Also what the program started."""
        try:
            os.killpg(run.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        run.wait()

# SPDX-License-Identifier: LGPL-2.1-or-later
"""A copy of the tree, built with all mutants in it."""

import json
import os
import re
import shutil
import subprocess

from rewrite import rewritten
from sites import find_sites

LOCATION = re.compile(r"([^\s:]+\.cpp):(\d+)(?::\d+)?: (?:error|  required from)")


class Tree:
    OBJECTS = ("quarner_core", "quarner_engine")  # what holds the mutants

    def __init__(self, root, programs):
        self.root = root
        self.copy = os.path.join(root, "build/mutants/tree")
        # As deep as the debug preset's folder, so that ccache knows what is compiled unchanged.
        self.build = os.path.join(self.copy, "build/debug")
        self.programs = programs

    def program(self, name):
        return os.path.join(self.build, "bin", name)

    # --- sources

    def find(self, paths):
        """The sources with their sites, whose mutants are numbered from 1."""
        arguments = self.compile_arguments()
        sources = [find_sites(path, os.path.join(self.root, path), arguments[path])
                   for path in paths]
        number = 1
        for site in (site for source in sources for site in source.sites):
            site.first = number
            number += len(site.mutants)
        return sources

    def compile_arguments(self):
        subprocess.run(["cmake", "--preset", "debug"], cwd=self.root, check=True,
                       stdout=subprocess.DEVNULL)
        with open(os.path.join(self.root, "build/debug/compile_commands.json")) as file:
            commands = json.load(file)
        return {os.path.relpath(one["file"], self.root): self.relevant(one["command"].split())
                for one in commands}

    @staticmethod
    def relevant(words):
        kept = [word for word in words if word.startswith(("-I", "-D", "-std"))]
        for flag, folder in zip(words, words[1:]):
            if flag == "-isystem":
                kept += [flag, folder]
        return kept

    # --- copy

    def write(self, sources, dropped):
        """Files that stay the same keep their time, so that they are not compiled again."""
        wanted = self.tracked_files()
        for path in wanted:
            self.write_file(path, self.read(os.path.join(self.root, path)))
        listener = self.read(os.path.join(self.root, "scripts/mutation/Reach.cpp"))
        for program in self.programs.values():
            wanted.add(program + "/MutantReachTest.cpp")
            self.write_file(program + "/MutantReachTest.cpp", listener)
        for source in sources:
            text = rewritten(source, dropped.get(source.path, {}))
            self.write_file(source.path, text.encode("latin-1"))
        self.remove_others(wanted)

    def tracked_files(self):
        listed = subprocess.run(["git", "ls-files", "-z", "-co", "--exclude-standard"],
                                cwd=self.root, check=True, capture_output=True, text=True)
        return {path for path in listed.stdout.split("\0")
                if path and os.path.exists(os.path.join(self.root, path))}

    def write_file(self, path, content):
        target = os.path.join(self.copy, path)
        if os.path.exists(target) and self.read(target) == content:
            return
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "wb") as file:
            file.write(content)
        original = os.path.join(self.root, path)
        if os.path.exists(original):
            shutil.copymode(original, target)

    @staticmethod
    def read(path):
        with open(path, "rb") as file:
            return file.read()

    def remove_others(self, wanted):
        for folder, folders, files in os.walk(self.copy):
            if folder == self.copy:
                folders.remove("build") if "build" in folders else None
            for name in files:
                path = os.path.join(folder, name)
                if os.path.relpath(path, self.copy) not in wanted:
                    os.remove(path)

    # --- build

    def compile(self, sources):
        """Builds the programs without the mutants that do not compile; returns which those are:
        for each path what `Source.kept` takes."""
        dropped = {source.path: {} for source in sources}
        while True:
            self.write(sources, dropped)
            output = self.make(self.OBJECTS) or self.make(self.programs)
            if output is None:
                return dropped
            faulty = self.faulty_lines(output, dropped)
            if not any(dropped[path].get(line, 0) < 2 for path, line in faulty):
                raise SystemExit("mutate: the tree does not build\n" + output[-3000:])
            for path, line in faulty:
                dropped[path][line] = dropped[path].get(line, 0) + 1

    def make(self, targets):
        """What the compiler wrote; nothing if all is built."""
        subprocess.run(["cmake", "-S", self.copy, "-B", self.build, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Debug", "-DQUARNER_BUILD_TESTS=ON"],
                       check=True, stdout=subprocess.DEVNULL)
        done = subprocess.run(["ninja", "-C", self.build, "-k", "0", *targets],
                              capture_output=True, text=True)
        return done.stdout if done.returncode else None

    def faulty_lines(self, output, dropped):
        """(path, line) of the mutated sources that the compiler complains of."""
        located = ((os.path.relpath(os.path.join(self.build, name), self.copy), int(line))
                   for name, line in LOCATION.findall(output))
        return {(path, line) for path, line in located if path in dropped}

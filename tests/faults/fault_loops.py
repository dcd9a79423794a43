#!/usr/bin/env python3
"""Fault loops: each job is run with the first call of a class failing, the second, and so on, until it
passes untouched; once with that call alone, once with all behind it failing too. After each fault
zelprint must have ended by itself, soon, with a documented status and one line; success means the whole
and right document, anything else no document, or the whole one where the status says so; and nothing
else may be left behind.

    fault_loops.py ZELPRINT LIBRARY [--selection] [--most N] [--memory N] [--job J] [--class C] [--mode M]
    fault_loops.py ZELPRINT LIBRARY --job J --class C --mode M --at N     one fault, and who made the call
"""
import argparse
import collections
import concurrent.futures
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

import jobs

CLASSES = ('open', 'write', 'short-write', 'close', 'fsync', 'rename', 'link', 'mkdir', 'stat', 'mmap', 'malloc',
           'pthread_create', 'posix_spawn', 'dlsym')
MODES = ('once', 'always')
STATUSES = (0, 1, 2, 3, 4, 5)
# With these the document may be there, and whole: standard output or the queue did not take its part.
KEPT = (3, 5)
# Loops that have found what a few of their calls would not: tried whole in every run.
WHOLE = (('pdf', 'write'), ('separation', 'open'), ('settings', 'stat'))
LIMIT = 10  # seconds; what takes longer hangs
WORK = 'Störungen und Folgen'
OUTCOMES = ('right', 'refused', 'kept')
DEFECTS = ('signal', 'hang', 'status', 'silent', 'wrong', 'half', 'left')

LPR = '''#!/bin/sh
# A print queue: keeps what it is given.
for file; do :; done
cat "$file" >"{queue}/.taken" && mv "{queue}/.taken" "{queue}/${{file##*/}}"
'''


def without_date(data):
    return re.sub(rb'(?m)^%%CreationDate:.*$', b'%%CreationDate:', data)


class Place:
    """A home, a hot folder and a queue of one job's own."""

    def __init__(self, options, job):
        self.options, self.job = options, job
        # GNUstep's configuration knows no blanks in the names of folders.
        self.root = tempfile.mkdtemp(prefix='faults-')
        for folder in ('tmp', 'hot', 'queue'):
            os.makedirs(self.path(folder))
        os.makedirs(self.home('GNUstep/Defaults'))
        config = re.sub(r'(?m)^GNUSTEP_USER_DEFAULTS_DIR=.*$',
                        lambda _: f'GNUSTEP_USER_DEFAULTS_DIR={self.home("GNUstep/Defaults")}',
                        open('/etc/GNUstep/GNUstep.conf', encoding='utf-8').read())
        config = re.sub(r'(?m)^(GNUSTEP_USER_DIR_\w*)=GNUstep/', lambda m: f'{m[1]}={self.home("GNUstep")}/', config)
        self.write('GNUstep.conf', config.encode())
        self.write('lpr', LPR.format(queue=self.path('queue')).encode())
        self.write('report', b'')
        os.chmod(self.path('lpr'), 0o755)
        for name, data in {**jobs.SOURCES, **job.ready}.items():
            self.write(name, data)
        self.environment = {**os.environ, 'GNUSTEP_CONFIG_FILE': self.path('GNUstep.conf'), 'HOME': self.root,
                            'XDG_DATA_HOME': self.home('.local/share'), 'XDG_CACHE_HOME': self.home('.cache'),
                            'TMPDIR': self.path('tmp'), 'TEMP': self.path('tmp'), 'LC_ALL': 'C.UTF-8'}
        for arguments in job.before:
            subprocess.run([options.zelprint, *arguments], cwd=self.path(''), env=self.environment, check=True,
                           capture_output=True, timeout=60)
        self.ready = self.contents()

    def home(self, name):
        return os.path.join(self.root, name)

    def path(self, name):
        return os.path.join(self.root, WORK, name)

    def write(self, name, data):
        with open(self.path(name), 'wb') as file:
            file.write(data)

    def contents(self):
        """Every file and folder but the user's preferences."""
        found = {}
        for folder, folders, files in os.walk(self.root):
            relative = os.path.relpath(folder, self.root)
            if relative == 'GNUstep/Defaults':
                folders.clear()
                continue
            for name in folders:
                found[os.path.normpath(os.path.join(relative, name))] = None
            for name in files:
                with open(os.path.join(folder, name), 'rb') as file:
                    found[os.path.normpath(os.path.join(relative, name))] = without_date(file.read())
        del found[f'{WORK}/report']
        return found

    def tidy(self):
        """As it was before."""
        now = self.contents()
        for name in sorted(set(now) - set(self.ready), reverse=True):
            path = self.home(name)
            (shutil.rmtree if os.path.isdir(path) else os.unlink)(path)
        for name, data in self.ready.items():
            if now.get(name) != data and data is not None:
                self.write(os.path.relpath(name, WORK), data)
        shutil.rmtree(self.home('GNUstep/Defaults'))
        os.mkdir(self.home('GNUstep/Defaults'))

    def run(self, fault, trace=False):
        """Runs the job; what became of it."""
        self.write('report', bytes(16))
        folder, library = os.path.split(self.options.library)
        environment = dict(self.environment)
        # A blank ends a path in LD_PRELOAD, so the library's folder is told apart from its name.
        environment.update(LD_PRELOAD=library, LD_LIBRARY_PATH=folder, ZEL_FAULT=fault,
                           ZEL_FAULT_REPORT=self.path('report'), ZEL_FAULT_LPR=self.path(self.job.lpr))
        if trace:
            environment['ZEL_FAULT_TRACE'] = '1'
        start = time.monotonic()
        process = subprocess.Popen([self.options.zelprint, *self.job.arguments], cwd=self.path(''), env=environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        result = Result()
        try:
            result.out, result.err = process.communicate(timeout=self.options.limit)
        except subprocess.TimeoutExpired:
            result.hangs = True
            process.kill()
            result.out, result.err = process.communicate()
        result.seconds = time.monotonic() - start
        result.status = process.returncode
        result.calls, result.failed = struct.unpack('QQ', open(self.path('report'), 'rb').read())
        after = self.contents()
        result.changed = {name: data for name, data in after.items() if self.ready.get(name, b'') != data}
        result.missing = [name for name in self.ready if name not in after]
        if result.changed or result.missing:
            self.tidy()
        return result


class Result:
    hangs = False

    def files(self):
        """Files that are new or changed, without the folders."""
        return {name: data for name, data in self.changed.items() if data is not None}

    def line(self):
        lines = [line for line in self.err.decode(errors='replace').splitlines() if line.startswith('zelprint: ')]
        return lines[-1] if lines else ''


def judge(kind, job, right, result):
    """The outcome of one fault: one of OUTCOMES or DEFECTS, and what is wrong."""
    if result.hangs:
        return 'hang', f'more than {LIMIT} s'
    if result.status < 0:
        return 'signal', f'ended by signal {-result.status}, leaving {sorted(result.changed)}'
    if result.status not in STATUSES:
        return 'status', f'status {result.status}'
    expected = right.files()
    if result.status == 5 and job.instead:
        done, kept = (f'{WORK}/{name}' for name in job.instead)
        expected = {kept: right.changed[done]}
    whole = {name for name, data in result.files().items() if expected.get(name) == data}
    half = sorted(name for name in result.files() if name in expected and name not in whole)
    # Folders that a success makes may stay.
    others = sorted(set(result.changed) - set(right.changed) - set(expected))
    if half or result.missing:
        return 'half', f'status {result.status}, not whole: {half + result.missing}'
    if others:
        return 'left', f'status {result.status}, left behind: {others}'
    if result.status != 0 and not result.line() and 'write' not in kind:
        return 'silent', f'status {result.status} without a word'
    if result.status == job.status and whole == set(expected):
        answers = right.out.startswith(b'{')
        return ('wrong', 'another answer') if answers and result.out != right.out else ('right', '')
    if result.status == 0:
        return 'wrong', f'success without {sorted(set(expected) - whole)}'
    apart = {f'{WORK}/{job.apart}'}
    if whole <= apart:
        return 'refused', ''
    if whole == set(expected) and result.status in KEPT:
        return 'kept', ''
    return 'half', f'status {result.status}, but there: {sorted(whole)} of {len(expected)}'


class Loops:
    def __init__(self, options):
        self.options = options
        self.table = collections.Counter()
        self.defects = []
        self.slowest = (0, '')
        self.lock = threading.Lock()

    def note(self, job, kind, mode, number, result, outcome, why):
        fault = f'--job {job.name} --class {kind} --mode {mode} --at {number}'
        with self.lock:
            self.table[kind, outcome] += 1
            self.slowest = max(self.slowest, (result.seconds, fault))
            if outcome in DEFECTS:
                self.defects.append(f'{outcome}: {fault}: {why}; {result.line()}')

    def numbers(self, job, calls, kind):
        """Which calls fail: all, or that many from the first to the last."""
        most = self.options.memory if kind == 'malloc' else self.options.most
        if (job.name, kind) in WHOLE:
            most = 0
        if not most or calls <= most:
            return range(1, calls + 1)
        return sorted({1 + round(i * (calls - 1) / (most - 1)) for i in range(most)})

    def loop(self, job):
        """All faults of one job."""
        place = Place(self.options, job)
        try:
            right = place.run('open:0:once')
            if right.status != job.status or len(right.files()) != job.makes or right.missing:
                raise SystemExit(f'{job.name} fails by itself with {right.status}: {right.err.decode()}'
                                 f'{sorted(right.changed)} {right.missing}')
            for kind in self.options.kinds:
                calls = place.run(f'{kind}:0:once').calls
                for mode in self.options.modes:
                    for number in self.numbers(job, calls, kind):
                        self.fail(place, job, right, kind, mode, number)
                # And when nothing is left that could fail: the job passes.
                result = place.run(f'{kind}:{2 * calls + 1000}:always')
                same = (result.failed, result.status, result.changed) == (0, right.status, right.changed)
                self.note(job, kind, 'always', 2 * calls + 1000, result, *(('untouched', '') if same else
                                                                           ('wrong', f'untouched, but {result.status}')))
        finally:
            shutil.rmtree(place.root)

    def fail(self, place, job, right, kind, mode, number):
        result = place.run(f'{kind}:{number}:{mode}', self.options.at is not None)
        # Threads do not always make as many calls.
        outcome, why = judge(kind, job, right, result) if result.failed else ('untouched', '')
        self.note(job, kind, mode, number, result, outcome, why)
        if self.options.at is not None:
            print(f'{outcome}: {why}\nstatus {result.status}, {result.failed} of {result.calls} calls failed, '
                  f'{result.seconds:.2f} s\n{result.err.decode(errors="replace")}')

    def one(self, job):
        place = Place(self.options, job)
        right = place.run('open:0:once')
        for kind in self.options.kinds:
            for mode in self.options.modes:
                self.fail(place, job, right, kind, mode, self.options.at)
        shutil.rmtree(place.root)

    def show(self):
        used = [*OUTCOMES, 'untouched', *(defect for defect in DEFECTS if any(o == defect for _, o in self.table))]
        print(f'{"class":15}' + ''.join(f'{outcome:>10}' for outcome in used))
        for kind in self.options.kinds:
            print(f'{kind:15}' + ''.join(f'{self.table[kind, outcome]:10}' for outcome in used))
        total = sum(self.table.values())
        print(f'{"all":15}' + ''.join(f'{sum(n for (_, o), n in self.table.items() if o == outcome):10}'
                                      for outcome in used))
        faults = total - sum(n for (_, o), n in self.table.items() if o == 'untouched')
        print(f'{faults} faults, {len(self.defects)} defects; the slowest run took {self.slowest[0]:.1f} s '
              f'({self.slowest[1]})')
        return faults


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('zelprint')
    parser.add_argument('library')
    parser.add_argument('--selection', action='store_true', help='a few of each, as in every test run')
    parser.add_argument('--most', type=int, default=0, metavar='N',
                        help='N calls of each class in each job and no more, from the first to the last; 0: all')
    parser.add_argument('--memory', type=int, default=400, metavar='N', help='the same for malloc, usually 400')
    parser.add_argument('--job', choices=[job.name for job in jobs.JOBS])
    parser.add_argument('--class', dest='kinds', choices=CLASSES)
    parser.add_argument('--mode', dest='modes', choices=MODES)
    parser.add_argument('--at', type=int)
    parser.add_argument('--limit', type=float, default=LIMIT)
    options = parser.parse_args()
    options.zelprint, options.library = os.path.abspath(options.zelprint), os.path.abspath(options.library)
    options.kinds = [options.kinds] if options.kinds else CLASSES
    options.modes = [options.modes] if options.modes else MODES
    if options.selection:
        options.most, options.memory = 3, 6
    return options


def main():
    options = read_options()
    chosen = [job for job in jobs.JOBS if options.job in (None, job.name)]
    loops = Loops(options)
    start = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        for done in [pool.submit(loops.one if options.at is not None else loops.loop, job) for job in chosen]:
            done.result()
    if options.at is None:
        loops.show()
        print(f'{time.monotonic() - start:.0f} s')
    for defect in loops.defects:
        print(defect)
    return 1 if loops.defects else 0


if __name__ == '__main__':
    sys.exit(main())

#!/usr/bin/env python3
"""watched_folder.py ZELPRINT HOSTS JOBS: that many hosts at once print so many jobs each into one hot
folder, which is watched as a RIP watches it: each file is read as soon as the system tells of it, and
taken away. Every file has to be whole at that moment, and none may be missing or left in the end."""
import ctypes
import os
import struct
import subprocess
import sys
import tempfile
import threading

MOVED_TO, CREATED, CHANGED = 0x80, 0x100, 0x2


class Watch:
    """inotify, which the library of Python lacks."""

    def __init__(self, folder):
        libc = ctypes.CDLL(None, use_errno=True)
        self.fd = libc.inotify_init1(os.O_CLOEXEC)
        if self.fd < 0 or libc.inotify_add_watch(self.fd, os.fsencode(folder), MOVED_TO | CREATED | CHANGED) < 0:
            raise OSError(ctypes.get_errno(), 'inotify')

    def events(self):
        data = os.read(self.fd, 1 << 16)
        while data:
            _, mask, _, length = struct.unpack_from('iIII', data)
            yield mask, os.fsdecode(data[16:16 + length].rstrip(b'\0'))
            data = data[16 + length:]


class Rip(threading.Thread):
    """Takes documents as they come, until it has `wanted` of them or the end mark."""

    def __init__(self, folder, end):
        super().__init__()
        self.folder, self.end = folder, end
        self.watch = Watch(folder)
        self.taken, self.faults = 0, []

    def run(self):
        while True:
            for mask, name in self.watch.events():
                if name == self.end:
                    return
                if name.startswith('.'):
                    continue
                if mask & CHANGED:
                    self.faults.append(f'{name} was written to in the folder')
                else:
                    self.take(name)

    def take(self, name):
        path = os.path.join(self.folder, name)
        with open(path, 'rb') as file:
            data = file.read()
        if not data.startswith(b'%!PS') or not data.endswith(b'%%EOF\n'):
            self.faults.append(f'{name} is not whole: {len(data)} bytes')
        os.unlink(path)
        self.taken += 1


def picture(path):
    with open(path, 'wb') as file:
        file.write(b'P6 200 300 255\n' + bytes(range(240)) * 750)


def host(zelprint, folder, jobs, failures, number):
    for job in range(jobs):
        form = ['--ps'] if (job + number) % 2 else ['--eps', '-n', '2']
        result = subprocess.run(
            [zelprint, '--hot-folder', 'hot', '-t', f'job {job}', '--built-in-printer', '--colour-space', 'rgb', '--quiet',
             *(['--media', '200x300pt', '--resolution', '72'] if form[0] == '--eps' else []), *form, 'page.ppm'],
            cwd=folder, capture_output=True, text=True, check=False)
        if result.returncode != 0:
            failures.append(f'host {number}, job {job}: status {result.returncode}: {result.stderr}')


def main():
    zelprint, hosts, jobs = os.path.abspath(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
    with tempfile.TemporaryDirectory(prefix='Heißer Ordner ') as folder:
        hot = os.path.join(folder, 'hot')
        os.mkdir(hot)
        picture(os.path.join(folder, 'page.ppm'))
        rip, failures = Rip(hot, 'the end'), []
        rip.start()
        threads = [threading.Thread(target=host, args=(zelprint, folder, jobs, failures, number))
                   for number in range(hosts)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        open(os.path.join(hot, rip.end), 'w', encoding='ascii').close()
        rip.join()
        os.unlink(os.path.join(hot, rip.end))
        wanted = sum(1 if (job + number) % 2 else 2 for number in range(hosts) for job in range(jobs))
        left = [name for place in (folder, hot) for name in os.listdir(place) if name not in ('hot', 'page.ppm')]
    print(f'{hosts} hosts, {hosts * jobs} jobs: {rip.taken} of {wanted} files taken, {len(rip.faults)} of them not whole, '
          f'{len(failures)} jobs failed, left: {left}')
    for line in rip.faults + failures:
        print(line)
    return 0 if rip.taken == wanted and not (rip.faults or failures or left) else 1


if __name__ == '__main__':
    sys.exit(main())

"""Prints through zelprint and looks at what came out, rendered by Ghostscript."""
import os
import subprocess
import tempfile
import unittest

ZELPRINT = os.environ['ZEL_TEST_ZELPRINT']


class PrintingTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix='PDF mit Umläuten ')
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def save(self, name, content):
        with open(self.path(name), 'wb') as file:
            file.write(content)
        return self.path(name)

    def zelprint(self, *arguments, **more):
        return subprocess.run([ZELPRINT, '--no-queue', *arguments], capture_output=True, text=True,
                              errors='replace', timeout=300, **more)

    def print_eps(self, pdf, size, *options, dpi=72):
        """Prints a file of one page as EPS on a page of its own; returns the path."""
        out = self.path('out.eps')
        result = self.zelprint('--eps', '--no-rotate', '--no-auto-rotate', '--media', f'{size[0]}x{size[1]}pt', '--resolution', f'{dpi}dpi',
                               '-o', out, *options, pdf)
        self.assertEqual(result.returncode, 0, result.stderr)
        return out

    def plates(self, document, device='pamcmyk32', dpi=72):
        """The pages of a document: lists of rows of pixels."""
        out = self.path('plates')
        subprocess.run(['gs', '-q', '-dSAFER', '-dBATCH', '-dNOPAUSE', f'-sDEVICE={device}', f'-r{dpi}',
                        '-dEPSCrop', f'-sOutputFile={out}', document], check=True, timeout=300)
        with open(out, 'rb') as file:
            return list(read_images(file))

    def refused(self, *arguments, **more):
        """What zelprint says when it fails with status 1 and leaves nothing."""
        folder = self.path('hot')
        os.makedirs(folder, exist_ok=True)
        result = self.zelprint('--hot-folder', folder, *arguments, **more)
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(os.listdir(folder), [])
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith('.zelprint')], [])
        lines = [line for line in result.stderr.splitlines() if line.startswith('zelprint: ')]
        self.assertEqual(len(lines), 1, result.stderr)
        return lines[0]


def read_images(file):
    """All PAM, PPM and PGM images of a file, as rows of tuples."""
    while magic := file.readline().strip():
        head = []
        while len(head) < (5 if magic == b'P7' else 2):
            line = file.readline()
            if not line.startswith(b'#'):
                head.append(line)
        if magic == b'P7':
            fields = dict(line.split() for line in head if b' ' in line)
            width, height, depth = (int(fields[name]) for name in (b'WIDTH', b'HEIGHT', b'DEPTH'))
            while line != b'ENDHDR\n':
                line = file.readline()
        else:
            width, height = map(int, head[0].split())
            depth = 3 if magic == b'P6' else 1
        data = file.read(width * height * depth)
        yield [[tuple(data[(y * width + x) * depth:(y * width + x + 1) * depth]) for x in range(width)]
               for y in range(height)]


def worst(a, b):
    return max(abs(x - y) for x, y in zip(a, b))

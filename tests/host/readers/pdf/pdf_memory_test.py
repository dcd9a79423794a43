"""Memory for pages that are much larger than it: A2 at 300 dpi in CMYK has 139 MB of pixels."""
import os
import subprocess
import sys
import unittest

import pdfwriter
import printing
from printing import PrintingTest

PEAK = os.path.join(os.path.dirname(__file__), '../../../../bench/peak-memory.py')
WIDTH, HEIGHT = 4961, 7016
MOST = 80  # MB of zelprint and its renderer together
MOST_FOR_PICTURES = 60  # where libvips has two threads


def is_sanitized():
    with open(printing.ZELPRINT, 'rb') as file:
        return any(name in file.read() for name in (b'__asan_init', b'__tsan_init'))


@unittest.skipIf(is_sanitized(), 'a sanitizer has memory of its own')
class Memory(PrintingTest):
    def peak(self, path, *options, media='1191x1684pt'):
        """MB, at most at any time."""
        out = self.path('out.eps')
        result = subprocess.run([sys.executable, PEAK, printing.ZELPRINT, '--quiet', '--no-sync', '--eps', '--no-queue', '--media',
                                 media, '--resolution', '300', '--colour-space', 'cmyk', '-o', out, *options, path],
                                capture_output=True, text=True, timeout=300, env=dict(os.environ, VIPS_CONCURRENCY='2'))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertGreater(os.path.getsize(out), 30_000_000)
        os.remove(out)
        return int(result.stdout.split()[1])

    def test_ForAPDFPage_IsLessThanItsPixels(self):
        pdf = pdfwriter.PDF()
        rows = b''.join(bytes((x * 7 + y) % 256 for x in range(3 * 200)) for y in range(200))
        image = pdf.stream('/Type /XObject /Subtype /Image /Width 200 /Height 200 /BitsPerComponent 8 /ColorSpace /DeviceRGB', rows)
        pdf.page('/MediaBox [0 0 1191 1684]', 'q 1191 0 0 1684 0 0 cm /I Do Q 1 0 0 0 k 100 100 900 900 re f',
                 f'/XObject << /I {image} 0 R >>')
        pdf.write(self.path('page.pdf'))
        for colours in 'inks', 'separate':
            self.assertLessEqual(self.peak(self.path('page.pdf'), '--pdf-colours', colours), MOST, colours)

    def picture(self, name, *options):
        """A picture of that many pixels, 104 MB."""
        ppm = self.path('picture.ppm')
        with open(ppm, 'wb') as file:
            file.write(b'P6\n%d %d\n255\n' % (WIDTH, HEIGHT))
            row = bytes(range(256)) * (3 * WIDTH // 256 + 1)
            for y in range(HEIGHT):
                file.write(row[y % 256:y % 256 + 1] * 3 + row[:3 * WIDTH - 3])
        subprocess.run(['convert', ppm, *options, self.path(name)], check=True, timeout=300)
        os.remove(ppm)
        return self.path(name)

    def test_ForPicturesThatAreReadFromTopToBottom_IsLessThanTheirPixels(self):
        for name, options in (('plain.tif', ('-compress', 'none')), ('packed.tif', ('-compress', 'zip')), ('picture.jpg', ()),
                              ('picture.png', ('-quality', '10')), ('copy.ppm', ())):
            picture = self.picture(name, *options)
            for media in '1191x1684pt', '1050x1485pt':
                with self.subTest(name, media=media):
                    self.assertLessEqual(self.peak(picture, '--scale', 'fit', media=media), MOST_FOR_PICTURES)
            os.remove(picture)


if __name__ == '__main__':
    unittest.main()

"""The inks of a printed PDF page, on plates."""
import glob
import subprocess
import unittest

import pdfwriter
from printing import PrintingTest, worst

ICC = '/usr/share/color/icc/ghostscript'


class Inks(PrintingTest):
    def compare(self, got, wanted, most):
        differences = [worst(a, b) for got_row, row in zip(got, wanted) for a, b in zip(got_row, row)]
        self.assertEqual(len(differences), 81 * 72)
        self.assertLessEqual(max(differences), most)

    def driver_inks(self, *options):
        """The colours as the driver itself separates them: printed as a picture, pixel by pixel."""
        picture = self.save('colours.ppm', b'P6\n81 72\n255\n' + pdfwriter.rgb_colours())
        [plate] = self.plates(self.print_eps(picture, (81, 72), *options))
        return plate

    def test_OfObjectsInCMYKGrayAndSpots_Stay(self):
        pdf, cells = pdfwriter.patches(ICC)
        pdf.write(self.path('patches.pdf'))
        [plate] = self.plates(self.print_eps(self.path('patches.pdf'), (20 * len(cells), 20)))
        for i, (name, _, wanted) in enumerate(cells):
            with self.subTest(name):
                got = plate[10][20 * i + 10]
                self.assertLessEqual(worst(got, wanted), 1, f'{got} instead of {wanted}')

    def test_OfRGBObjects_AreTheDriversOwn(self):
        wanted = self.driver_inks()
        for name, pdf in (('image', pdfwriter.rgb_image()), ('image in an RGB group', pdfwriter.rgb_image('page')),
                          ('image in a form\'s RGB group', pdfwriter.rgb_image('form')),
                          ('fills', pdfwriter.rgb_fills())):
            with self.subTest(name):
                pdf.write(self.path('rgb.pdf'))
                [plate] = self.plates(self.print_eps(self.path('rgb.pdf'), (81, 72), '--no-antialias'))
                # A fill's colour is a fraction that no byte need meet.
                self.compare(plate, wanted, 2 if name == 'fills' else 1)

    def test_OfRGBObjects_FollowTheSeparationProfile(self):
        made = subprocess.run([__import__('printing').ZELPRINT, 'make-separation', '--to', f'{ICC}/ps_cmyk.icc',
                               'Press'], capture_output=True, text=True)
        self.assertEqual(made.returncode, 0, made.stderr)
        wanted = self.driver_inks('--separation', 'Press')
        pdfwriter.rgb_image().write(self.path('rgb.pdf'))
        [plate] = self.plates(self.print_eps(self.path('rgb.pdf'), (81, 72), '--separation', 'Press'))
        self.compare(plate, wanted, 1)
        self.assertGreater(max(worst(a, b) for a, b in zip(plate[40], self.driver_inks()[40])), 20)

    def test_OfAPageThatIsBlendedInRGB_AreToldToChange(self):
        def said(pdf):
            pdf.write(self.path('page.pdf'))
            result = self.zelprint('-o', self.path('out.ps'), '--resolution', '72dpi', self.path('page.pdf'))
            self.assertEqual(result.returncode, 0, result.stderr)
            return [line for line in result.stderr.splitlines() if 'blended in RGB' in line]
        for group in ('page', 'form'):
            self.assertEqual(len(said(pdfwriter.rgb_image(group))), 1, group)
        self.assertEqual(said(pdfwriter.rgb_image()), [])
        self.assertEqual(said(pdfwriter.patches(ICC)[0]), [])  # transparent, but in inks

    def test_OfAPictureBesideAPDF_AreTheDriversOwn(self):
        wanted = self.driver_inks()
        pdfwriter.patches(ICC)[0].write(self.path('patches.pdf'))
        result = self.zelprint('--eps', '--no-auto-rotate', '--media', '81x72pt', '--resolution', '72dpi', '-t', 'both',
                               '--hot-folder', self.folder, self.path('patches.pdf'), self.path('colours.ppm'))
        self.assertEqual(result.returncode, 0, result.stderr)
        [plate] = self.plates(self.path('both_p02.eps'))
        self.compare(plate, wanted, 0)
        self.assertIn((0, 0, 0, 255), self.plates(self.path('both.eps'))[0][36])

    def test_AreSeparatedAnewWhereAsked(self):
        pdf, _ = pdfwriter.patches(ICC)
        pdf.write(self.path('patches.pdf'))
        [plate] = self.plates(self.print_eps(self.path('patches.pdf'), (300, 20), '--pdf-colours', 'separate'))
        c, m, y, k = plate[10][10]
        self.assertTrue(min(c, m, y) > 100 and k < 255, (c, m, y, k))

    def test_OfBlackTextOnAFineRaster_AreBlackAlone(self):
        pdf = pdfwriter.text_pages(1)
        pdf.write(self.path('text.pdf'))
        [plate] = self.plates(self.print_eps(self.path('text.pdf'), (100, 50), dpi=600), dpi=600)
        self.assertEqual({pixel for row in plate for pixel in row}, {(0, 0, 0, 0), (0, 0, 0, 255)})


class Light(PrintingTest):
    def test_OfRGBObjects_IsTheFilesOwnInRGB(self):
        pdfwriter.rgb_image().write(self.path('rgb.pdf'))
        for look in 'press', 'plain':
            out = self.print_eps(self.path('rgb.pdf'), (81, 72), '--colour-space', 'rgb', '--cmyk-look', look)
            [plate] = self.plates(out, 'ppmraw')
            got = bytes(value for row in plate for pixel in row for value in pixel)
            self.assertEqual(got, pdfwriter.rgb_colours(), look)

    def test_OfInks_LooksAsAskedFor(self):
        pdf, cells = pdfwriter.patches(ICC)
        pdf.write(self.path('patches.pdf'))
        names = [name for name, _, _ in cells]

        def black(*options):
            out = self.print_eps(self.path('patches.pdf'), (300, 20), '--colour-space', 'rgb', *options)
            return self.plates(out, 'ppmraw')[0][10][20 * names.index('DeviceCMYK black') + 10]
        self.assertEqual(black('--cmyk-look', 'plain'), (0, 0, 0))
        self.assertEqual(black('--cmyk-look', 'press'), black())
        self.assertTrue(20 < min(black()) and max(black()) < 60, black())

    def test_InGray_IsTheWeightedSum(self):
        pdfwriter.rgb_image().write(self.path('rgb.pdf'))
        [plate] = self.plates(self.print_eps(self.path('rgb.pdf'), (81, 72), '--colour-space', 'gray'), 'pgmraw')
        data = pdfwriter.rgb_colours()
        for i in range(81 * 72):
            r, g, b = data[3 * i:3 * i + 3]
            self.assertLessEqual(abs(plate[i // 81][i % 81][0] - (.3 * r + .59 * g + .11 * b)), 2.5)


if __name__ == '__main__':
    unittest.main()

"""PDF pages on the printer's sheets: which sheet, and where on it, measured in millimetres."""
import json
import subprocess
import unittest

import pdfwriter
from printing import PrintingTest

DPI = 100
MM = 72 / 25.4
# A4 with margins of another width at each edge: left 5 mm, top 7 mm, right 6 mm, bottom 8 mm; A5; custom pages or not.
PRINTER = '''*PPD-Adobe: "4.3"
*ColorDevice: True
*LanguageLevel: "3"
*DefaultPageSize: A4
*PageSize A4: "<</PageSize [595 842]>> setpagedevice"
*ImageableArea A4: "14.17 22.68 578 822.16"
*PaperDimension A4: "595 842"
*PageSize A5: "<</PageSize [420 595]>> setpagedevice"
*ImageableArea A5: "10 10 410 585"
*PaperDimension A5: "420 595"
*DefaultResolution: 100dpi
*Resolution 100dpi: ""
'''
CUSTOM = '''*NonUIOrderDependency: 10 AnySetup *CustomPageSize
*CustomPageSize True: "pop pop pop <</PageSize [5 -2 roll]>> setpagedevice"
*ParamCustomPageSize Width: 1 points 100 900
*ParamCustomPageSize Height: 2 points 100 1300
*ParamCustomPageSize WidthOffset: 3 points 0 0
*ParamCustomPageSize HeightOffset: 4 points 0 0
*ParamCustomPageSize Orientation: 5 int 0 0
*HWMargins: 0 0 0 0
'''


def frame(pdf, entries, box, unit=1):
    """A page with a black frame 10 mm inside of `box` (points of the sheet, 1/unit of them in the file)."""
    left, bottom, right, top = box
    edge, line = 10 * MM / unit, 2 * MM / unit
    pdf.page(entries, f'0 g {left + edge} {bottom + edge} {right - left - 2 * edge} {top - bottom - 2 * edge} re '
             f'{left + edge + line} {bottom + edge + line} {right - left - 2 * edge - 2 * line} '
             f'{top - bottom - 2 * edge - 2 * line} re f*')


class SheetTest(PrintingTest):
    def printer(self, custom=''):
        return self.save('printer.ppd', (PRINTER + custom).encode())

    def frame_on_sheet(self, document):
        """Left, top, right, bottom of what is dark, in millimetres from the sheet's upper left corner."""
        out = self.path('sheet.pgm')
        subprocess.run(['gs', '-q', '-dSAFER', '-dBATCH', '-dNOPAUSE', '-sDEVICE=pgmraw', f'-r{DPI}',
                        f'-sOutputFile={out}', document], check=True, timeout=300)
        with open(out, 'rb') as file:
            data = file.read()
        head = data.split(b'\n', 4)
        width, height = map(int, head[2].split())
        samples = bytes(255 if value < 128 else 0 for value in range(256))
        rows = [data[-(height - y) * width:][:width].translate(samples) for y in range(height)]
        dark = [y for y, row in enumerate(rows) if 255 in row]
        lefts = [rows[y].index(b'\xff') for y in dark]
        rights = [rows[y].rindex(b'\xff') + 1 for y in dark]
        return [value * 25.4 / DPI for value in (min(lefts), dark[0], max(rights), dark[-1] + 1)]

    def expect_frame(self, wanted, *options):
        out = self.path('out.ps')
        result = self.zelprint('--ppd', self.printer(), '--resolution', '100', '--no-antialias', '-o', out, *options,
                               self.path('page.pdf'))
        self.assertEqual(result.returncode, 0, result.stderr)
        got = self.frame_on_sheet(out)
        for a, b in zip(got, wanted):
            self.assertAlmostEqual(a, b, delta=.6, msg=f'{got} instead of {wanted}')


class OnASheet(SheetTest):
    # A4 as the sheet is, upright: entries, the box in the file, and how many points one of its units is.
    BOXES = {
        'media box': ('/MediaBox [0 0 595 842]', (0, 0, 595, 842), 1),
        'media box away from 0 0': ('/MediaBox [-200 100 395 942]', (-200, 100, 395, 942), 1),
        'crop box': ('/MediaBox [0 0 900 1200] /CropBox [100 50 695 892]', (100, 50, 695, 892), 1),
        'turned by 90': ('/MediaBox [0 0 842 595] /Rotate 90', (0, 0, 842, 595), 1),
        'turned by 180': ('/MediaBox [0 0 595 842] /Rotate 180', (0, 0, 595, 842), 1),
        'turned by 270, crop box': ('/MediaBox [0 0 900 700] /CropBox [20 30 862 625] /Rotate 270',
                                    (20, 30, 862, 625), 1),
        'user unit': ('/MediaBox [0 0 297.5 421] /UserUnit 2', (0, 0, 297.5, 421), 2),
        'user unit, crop box, turned': ('/MediaBox [0 0 500 500] /CropBox [40 30 461 327.5] /UserUnit 2 /Rotate 90',
                                        (40, 30, 461, 327.5), 2),
    }

    def test_OfItsSize_APageLiesWhereItsMakerPutIt(self):
        for name, (entries, box, unit) in self.BOXES.items():
            with self.subTest(name):
                pdf = pdfwriter.PDF()
                frame(pdf, entries, box, unit)
                pdf.write(self.path('page.pdf'))
                self.expect_frame((10, 10, 200, 287))

    def test_InEveryScale_APageHasTheSizeAskedFor(self):
        # The printable area lies from 5, 7 to 203.9, 289 mm.
        fit = (578 - 14.17) / 595
        scales = {('--scale', '50'): (57.5, 79.25, 152.5, 217.75),
                  ('--scale', '50', '--position', 'top-left'): (10, 12, 105, 150.5),
                  ('--scale', 'fit'): (5 + 10 * fit, 289 - 287 * fit, 5 + 200 * fit, 289 - 10 * fit)}
        for name in 'crop box', 'turned by 270, crop box', 'user unit, crop box, turned':
            entries, box, unit = self.BOXES[name]
            pdf = pdfwriter.PDF()
            frame(pdf, entries, box, unit)
            pdf.write(self.path('page.pdf'))
            for options, wanted in scales.items():
                with self.subTest(name, options=options):
                    self.expect_frame(wanted, *options)

    def test_LyingTheOtherWay_APageIsTurned(self):
        for name, (entries, box, unit) in {
                'media box': ('/MediaBox [0 0 842 595]', (0, 0, 842, 595), 1),
                'turned, user unit': ('/MediaBox [0 0 297.5 421] /UserUnit 2 /Rotate 90', (0, 0, 297.5, 421), 2)}.items():
            with self.subTest(name):
                pdf = pdfwriter.PDF()
                frame(pdf, entries, box, unit)
                pdf.write(self.path('page.pdf'))
                self.expect_frame((10, 10, 200, 287))


class Auto(SheetTest):
    """--media auto."""

    def report(self, boxes, *options, custom='', status=0):
        pdf = pdfwriter.PDF()
        for box in boxes:
            pdf.page(f'/MediaBox [0 0 {box[0]} {box[1]}]', '0 g 10 10 50 50 re f')
        pdf.write(self.path('page.pdf'))
        result = self.zelprint('--ppd', self.printer(custom), '--media', 'auto', '--resolution', '100', '--dry-run', '--json',
                               *options, self.path('page.pdf'))
        self.assertEqual(result.returncode, status, result.stderr)
        return json.loads(result.stdout)

    def test_IsThePageOfTheDocumentsSize(self):
        for boxes in [(420, 595)], [(595, 420)], [(420, 595), (595, 420)], [(419.53, 595.28)]:
            report = self.report(boxes)
            self.assertEqual(report['media']['name'], 'A5', boxes)
            self.assertEqual({place['scale_percent'] for place in report['placements']}, {100})
        self.assertEqual(self.report([(595, 842)])['media']['name'], 'A4')
        self.assertEqual(self.report([(400, 560)])['media']['name'], 'A5')
        self.assertEqual(self.report([(900, 1200)])['media']['name'], 'A4')

    def test_IsTheDocumentsOwnSize_WhereThePrinterTakesAny(self):
        def media(*arguments, **more):
            report = self.report(*arguments, **more)['media']
            return report['name'], report['width_pt'], report['height_pt']
        self.assertEqual(media([(500, 700)], custom=CUSTOM), (None, 500, 700))
        self.assertEqual(media([(1200, 700)], custom=CUSTOM), (None, 700, 1200))
        self.assertEqual(media([(595, 842)], custom=CUSTOM)[0], 'A4')
        self.assertEqual(media([(2000, 3000)], custom=CUSTOM)[0], 'A4')
        self.assertEqual(media([(595, 842)], '--eps'), (None, 595, 842))

    def test_OfPagesOfSeveralSizes_IsRefusedUnlessOneIsChosen(self):
        sizes = [(420, 595), (595, 842), (595, 420)]
        message = self.report(sizes, status=2)['error']['message']
        self.assertIn('page 1 is 148.2 x 209.9 mm, page 2 is 209.9 x 297.0 mm', message)
        self.assertIn('name a page with --media', message)
        self.assertEqual(self.report(sizes, '-P', '2')['media']['name'], 'A4')
        self.assertEqual(self.report(sizes, '-P', '1,3')['media']['name'], 'A5')
        self.assertIn('none of the 3 pages', self.report(sizes, '-P', '7', status=2)['error']['message'])

    def test_OfAPictureWithoutASize_IsRefused(self):
        picture = self.save('picture.ppm', b'P6\n2 2\n255\n' + bytes(12))
        result = self.zelprint('--ppd', self.printer(), '--media', 'auto', '--dry-run', picture)
        self.assertEqual(result.returncode, 2, result.stderr)
        self.assertIn('picture.ppm: page 1 has no size of its own', result.stderr)

    def test_PrintsThere(self):
        pdf = pdfwriter.PDF()
        frame(pdf, '/MediaBox [0 0 595 420]', (0, 0, 595, 420))
        pdf.write(self.path('page.pdf'))
        self.expect_frame((10, 10, 420 / MM - 10, 595 / MM - 10), '--media', 'auto')


if __name__ == '__main__':
    unittest.main()

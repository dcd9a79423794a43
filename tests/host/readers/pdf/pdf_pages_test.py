"""Which pages of a PDF file are printed, and where they lie."""
import unittest

import pdfwriter
from printing import PrintingTest

CYAN, BLACK, PAPER = (255, 0, 0, 0), (0, 0, 0, 255), (0, 0, 0, 0)


def bounds(plate, wanted):
    """Left, top, right, bottom of the pixels for which wanted(pixel)."""
    spots = [(x, y) for y, row in enumerate(plate) for x, pixel in enumerate(row) if wanted(pixel)]
    xs, ys = [x for x, _ in spots], [y for _, y in spots]
    return min(xs), min(ys), max(xs) + 1, max(ys) + 1


def is_ink(pixel):
    return pixel != PAPER


class Geometry(PrintingTest):
    """On an EPS page of 300 x 400 points at 72 dpi, a pixel a point."""
    SHEET = (300, 400)
    # entries; the box as it is seen; width and height on the page; where its lower left corner goes
    CASES = {
        'media box': ('/MediaBox [0 0 200 100]', (0, 0, 200, 100), (200, 100), 'lower left'),
        'media box away from 0 0': ('/MediaBox [-30 50 170 150]', (-30, 50, 170, 150), (200, 100), 'lower left'),
        'media box written upside down': ('/MediaBox [200 100 0 0]', (0, 0, 200, 100), (200, 100), 'lower left'),
        'crop box': ('/MediaBox [0 0 300 400] /CropBox [50 60 250 160]', (50, 60, 250, 160), (200, 100), 'lower left'),
        'crop box beyond the media box': ('/MediaBox [0 0 200 100] /CropBox [-50 -50 900 900]', (0, 0, 200, 100),
                                          (200, 100), 'lower left'),
        'turned by 90': ('/MediaBox [0 0 200 100] /Rotate 90', (0, 0, 200, 100), (100, 200), 'upper left'),
        'turned by 180': ('/MediaBox [0 0 200 100] /Rotate 180', (0, 0, 200, 100), (200, 100), 'upper right'),
        'turned by 270': ('/MediaBox [0 0 200 100] /Rotate 270', (0, 0, 200, 100), (100, 200), 'lower right'),
        'turned by -90': ('/MediaBox [0 0 200 100] /Rotate -90', (0, 0, 200, 100), (100, 200), 'lower right'),
        'crop box, turned': ('/MediaBox [0 0 300 400] /CropBox [50 60 250 160] /Rotate 90', (50, 60, 250, 160),
                             (100, 200), 'upper left'),
        'crop box beyond the media box, turned': ('/MediaBox [10 20 210 120] /CropBox [-50 -50 500 900] /Rotate 90',
                                                  (10, 20, 210, 120), (100, 200), 'upper left'),
        'user unit': ('/MediaBox [0 0 100 50] /UserUnit 2', (0, 0, 100, 50), (200, 100), 'lower left'),
        'user unit, away from 0 0': ('/MediaBox [40 30 140 80] /UserUnit 2', (40, 30, 140, 80), (200, 100),
                                     'lower left'),
        'user unit, turned': ('/MediaBox [0 0 100 50] /UserUnit 2 /Rotate 90', (0, 0, 100, 50), (100, 200),
                              'upper left'),
        'user unit, crop box, turned': ('/MediaBox [0 0 300 400] /CropBox [40 30 140 80] /UserUnit 2 /Rotate 270',
                                        (40, 30, 140, 80), (100, 200), 'lower right'),
        'larger than the sheet': ('/MediaBox [0 0 600 800]', (0, 0, 600, 800), (300, 400), 'lower left'),
        'wider than the sheet': ('/MediaBox [0 0 600 400]', (0, 0, 600, 400), (300, 200), 'lower left'),
    }

    def test_OfBoxesRotationsAndUnits_IsKept(self):
        for name, (entries, box, size, corner) in self.CASES.items():
            with self.subTest(name):
                pdf = pdfwriter.PDF()
                pdfwriter.framed_page(pdf, entries, box)
                pdf.write(self.path('page.pdf'))
                [plate] = self.plates(self.print_eps(self.path('page.pdf'), self.SHEET, '--no-antialias'))
                left, top = (300 - size[0]) // 2, (400 - size[1]) // 2
                right, bottom = left + size[0], top + size[1]
                self.assertEqual(bounds(plate, is_ink), (left, top, right, bottom))
                self.assertEqual({plate[y][x] for y in (top, bottom - 1) for x in (left, right - 1)}, {CYAN, BLACK})
                x = left if 'left' in corner else right - 1
                y = top if 'upper' in corner else bottom - 1
                self.assertEqual(plate[y][x], BLACK)

    def test_OfATurnedEPSPage_IsTheSameOnItsSide(self):
        pdf = pdfwriter.PDF()
        pdfwriter.framed_page(pdf, '/MediaBox [0 0 200 100]', (0, 0, 200, 100))
        pdf.write(self.path('page.pdf'))
        out = self.path('out.eps')
        result = self.zelprint('--eps', '--rotate', '--media', '300x400pt', '--resolution', '72dpi', '--no-antialias',
                               '-o', out, self.path('page.pdf'))
        self.assertEqual(result.returncode, 0, result.stderr)
        [plate] = self.plates(out)
        left, top, right, bottom = bounds(plate, is_ink)
        self.assertEqual((right - left, bottom - top), (100, 200))
        self.assertEqual(plate[bottom - 1][right - 1], BLACK)

    def test_OfPagesOfSeveralSizes_IsEachPagesOwn(self):
        pdf = pdfwriter.PDF()
        sizes = [(100, 50), (50, 100), (200, 10), (300, 400)]
        for width, height in sizes:
            pdfwriter.framed_page(pdf, f'/MediaBox [0 0 {width} {height}]', (0, 0, width, height))
        pdf.write(self.path('mixed.pdf'))
        folder = self.folder
        result = self.zelprint('--eps', '--media', '300x400pt', '--resolution', '72dpi', '--no-antialias',
                               '--hot-folder', folder, self.path('mixed.pdf'))
        self.assertEqual(result.returncode, 0, result.stderr)
        for page, (width, height) in enumerate(sizes, 1):
            [plate] = self.plates(self.path('mixed.eps' if page == 1 else f'mixed_p{page:02}.eps'))
            left, top, right, bottom = bounds(plate, is_ink)
            self.assertEqual((right - left, bottom - top), (width, height))

    def test_OfSenselessBoxes_IsThatOfAUsualPage(self):
        for entries in '', '/MediaBox [0 0 0 0]', '/MediaBox [0 0 1e30 1e30]':
            with self.subTest(entries):
                pdf = pdfwriter.PDF()
                pdfwriter.framed_page(pdf, entries, (0, 0, 612, 792))
                pdf.write(self.path('page.pdf'))
                [plate] = self.plates(self.print_eps(self.path('page.pdf'), (612, 792), '--no-antialias'))
                self.assertEqual(bounds(plate, is_ink), (0, 0, 612, 792))


class Pages(PrintingTest):
    def numbers(self, *options, pages=12):
        """What the bars of the pages printed tell."""
        pdfwriter.text_pages(pages).write(self.path('pages.pdf'))
        out = self.path('pages.ps')
        result = self.zelprint('--ps', '--resolution', '72dpi', '--no-antialias', '-o', out, *options,
                               self.path('pages.pdf'))
        self.assertEqual(result.returncode, 0, result.stderr)
        numbers = []
        for plate in self.plates(out):
            row = next(row for row in reversed(plate) if any(pixel != PAPER for pixel in row))
            numbers.append(sum(pixel == BLACK for pixel in row))
        return numbers

    def test_ComeInTheirOrder(self):
        self.assertEqual(self.numbers(), list(range(1, 13)))
        self.assertEqual(self.numbers('-P', '2-3,7,12'), [2, 3, 7, 12])
        self.assertEqual(self.numbers('-P', '5', '-n', '3'), [5, 5, 5])
        self.assertEqual(self.numbers('-P', '1-2', '-n', '2'), [1, 2, 1, 2])

    def test_MayBeThousands(self):
        printer = self.save('card.ppd', b"""*PPD-Adobe: "4.3"
*NickName: "Card printer"
*LanguageLevel: "2"
*ColorDevice: True
*DefaultPageSize: Card
*PageSize Card/Card: "<</PageSize[100 50]>>setpagedevice"
*DefaultImageableArea: Card
*ImageableArea Card/Card: "0 0 100 50"
*DefaultPaperDimension: Card
*PaperDimension Card/Card: "100 50"
*DefaultResolution: 72dpi
*Resolution 72dpi/72 dpi: "<</HWResolution[72 72]>>setpagedevice"
""")
        pdfwriter.text_pages(3000).write(self.path('many.pdf'))
        out = self.path('many.ps')
        result = self.zelprint('--ppd', printer, '-o', out, self.path('many.pdf'))
        self.assertEqual(result.returncode, 0, result.stderr)
        with open(out, 'rb') as file:
            self.assertEqual(sum(line.startswith(b'%%Page: ') for line in file), 3000)

    def test_HaveEastAsianTextInFontsThatAreNotEmbedded(self):
        pdfwriter.east_asian_text().write(self.path('east.pdf'))
        [plate] = self.plates(self.print_eps(self.path('east.pdf'), (130, 200), '--no-antialias', dpi=144), dpi=144)
        glyphs = set()
        for row in range(4):
            for column in range(3):
                left, top = 2 * (5 + 40 * column), 2 * (200 - 50 * row - 45)
                cell = [plate[y][x] == BLACK for y in range(top, top + 80) for x in range(left, left + 80)]
                # A blank has no ink, the frame of a missing glyph little, and it would be the same everywhere.
                self.assertTrue(.07 < sum(cell) / len(cell) < .6, (row, column, sum(cell) / len(cell)))
                glyphs.add(tuple(cell))
        self.assertEqual(len(glyphs), 11)  # the last one of both Chinese words is the same

    def test_HaveWhatIsForPrint(self):
        pdf = pdfwriter.PDF()
        look = pdf.stream('/Type /XObject /Subtype /Form /BBox [0 0 10 10]', '0 0 0 1 k 0 0 10 10 re f')

        def note(x, flags, kind='Square'):
            return pdf.add(f'<< /Subtype /{kind} /Rect [{x} 10 {x + 10} 20] /F {flags} /AP << /N {look} 0 R '
                           '>> /FT /Tx /T (field) /V (x) /Type /Annot >>')
        notes = [note(10, 4), note(30, 0), note(50, 6), note(70, 4, 'Widget')]
        hidden = pdf.add('<< /Type /OCG /Name (off) >>')
        pdf.page(f'/MediaBox [0 0 120 30] /Annots [{" ".join(f"{n} 0 R" for n in notes)}]',
                 '/OC /Layer BDC 0 0 0 1 k 90 10 10 10 re f EMC', f'/Properties << /Layer {hidden} 0 R >>')
        form = pdf.add(f'<< /Fields [{notes[3]} 0 R] >>')
        data = pdf.bytes().replace(b'/Type /Catalog', b'/Type /Catalog /AcroForm %d 0 R /OCProperties << /OCGs [%d 0 R] /D << /OFF [%d 0 R]'
                                   b' >> >>' % (form, hidden, hidden))
        # The table of objects no longer fits: zelprint says so, and prints.
        path = self.save('notes.pdf', data)
        [plate] = self.plates(self.print_eps(path, (120, 30), '--no-antialias'))
        seen = {x: plate[15][x + 5] == BLACK for x in (10, 30, 50, 70, 90)}
        self.assertEqual(seen, {10: True, 30: False, 50: False, 70: True, 90: False})


if __name__ == '__main__':
    unittest.main()

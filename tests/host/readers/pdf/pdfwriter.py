"""Small PDF files whose right print is known."""
import zlib


class PDF:
    """Collects objects and pages; write() makes a file of them, with a cross-reference table."""

    def __init__(self):
        self.objects, self.pages = [], []

    def add(self, body):
        self.objects.append(body.encode('latin1') if isinstance(body, str) else body)
        return len(self.objects)

    def stream(self, head, data):
        data = zlib.compress(data.encode('latin1') if isinstance(data, str) else data)
        return self.add(f'<< {head} /Filter /FlateDecode /Length {len(data)} >>\nstream\n'.encode()
                        + data + b'\nendstream')

    def page(self, entries, content, resources=''):
        """A page with its boxes and other entries; the content is text or the number of a stream."""
        if isinstance(content, str):
            content = self.stream('', content)
        self.pages.append(f'{entries} /Contents {content} 0 R /Resources << {resources} >>')

    def bytes(self, trailer=''):
        objects = list(self.objects)
        parent = len(objects) + len(self.pages) + 1
        kids = []
        for page in self.pages:
            objects.append(f'<< /Type /Page /Parent {parent} 0 R {page} >>'.encode('latin1'))
            kids.append(len(objects))
        objects.append(f'<< /Type /Pages /Count {len(kids)} /Kids [{" ".join(f"{k} 0 R" for k in kids)}] >>'
                       .encode())
        objects.append(f'<< /Type /Catalog /Pages {parent} 0 R >>'.encode())
        out, offsets = bytearray(b'%PDF-1.6\n'), []
        for number, body in enumerate(objects, 1):
            offsets.append(len(out))
            out += b'%d 0 obj\n' % number + body + b'\nendobj\n'
        start = len(out)
        out += b'xref\n0 %d\n0000000000 65535 f \n' % (len(offsets) + 1)
        out += b''.join(b'%010d 00000 n \n' % offset for offset in offsets)
        out += (f'trailer\n<< /Size {len(offsets) + 1} /Root {len(objects)} 0 R {trailer} >>\n'
                f'startxref\n{start}\n%%EOF\n').encode()
        return bytes(out)

    def write(self, path):
        with open(path, 'wb') as file:
            file.write(self.bytes())


def rgb_colours():
    """18 x 18 x 18 colours in 81 x 72 pixels."""
    steps = range(0, 256, 15)
    return bytes(v for r in steps for g in steps for b in steps for v in (r, g, b))


def rgb_image(group=None):
    """A page of these colours; one whose transparency group is RGB, or the group of a form in a form on it,
    with `group` 'page' or 'form'."""
    pdf = PDF()
    image = pdf.stream('/Type /XObject /Subtype /Image /Width 81 /Height 72 /BitsPerComponent 8 '
                       '/ColorSpace /DeviceRGB', rgb_colours())
    in_rgb = '/Group << /S /Transparency /CS /DeviceRGB >>'
    # A group counts only on a page with transparency.
    content = ('q /Clear gs 0 0 1 1 re f Q ' if group else '') + 'q 81 0 0 72 0 0 cm /I Do Q'
    resources = f'/XObject << /I {image} 0 R >> /ExtGState << /Clear << /ca 0 >> >>'
    for entries in [in_rgb, ''] if group == 'form' else []:
        form = pdf.stream(f'/Type /XObject /Subtype /Form /BBox [0 0 81 72] {entries} '
                          f'/Resources << {resources} >>', content)
        content, resources = '/F Do', f'/XObject << /F {form} 0 R >>'
    pdf.page('/MediaBox [0 0 81 72] ' + (in_rgb if group == 'page' else ''), content, resources)
    return pdf


def rgb_fills():
    """The same colours as filled squares of a point."""
    pdf = PDF()
    data = rgb_colours()
    squares = []
    for i in range(81 * 72):
        r, g, b = (value / 255 for value in data[3 * i:3 * i + 3])
        squares.append(f'{r:.5f} {g:.5f} {b:.5f} rg {i % 81} {71 - i // 81} 1 1 re f')
    pdf.page('/MediaBox [0 0 81 72]', '\n'.join(squares))
    return pdf


SQUARE = '0 0 20 20 re f'


def patches(icc_folder):
    """Squares of 20 points in a row, and what of C, M, Y, K they have to have."""
    pdf = PDF()
    with open(f'{icc_folder}/ps_cmyk.icc', 'rb') as file:  # not the profile that is printed with
        press = pdf.stream('/N 4', file.read())
    with open(f'{icc_folder}/ps_gray.icc', 'rb') as file:
        gray = pdf.stream('/N 1', file.read())
    tint = '<< /FunctionType 2 /Domain [0 1] /C0 [0 0 0 0] /C1 [0 .5 1 0] /N 1 >>'
    image = pdf.stream('/Type /XObject /Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 '
                       '/ColorSpace /DeviceCMYK', bytes((102, 51, 153, 26)))
    form = pdf.stream('/Type /XObject /Subtype /Form /BBox [0 0 20 20] /Group << /S /Transparency >>',
                      f'0 0 0 1 k {SQUARE}')
    cells = [
        ('DeviceCMYK black', f'0 0 0 1 k {SQUARE}', (0, 0, 0, 255)),
        ('DeviceCMYK', f'.4 .2 .6 .1 k {SQUARE}', (102, 51, 153, 25)),
        ('DeviceGray black', f'0 g {SQUARE}', (0, 0, 0, 255)),
        ('DeviceGray', f'.5 g {SQUARE}', (0, 0, 0, 127)),
        ('a spot colour', f'/Spot cs 1 sc {SQUARE}', (0, 127, 255, 0)),
        ('ICC-based CMYK black', f'/Press cs 0 0 0 1 sc {SQUARE}', (0, 0, 0, 255)),
        ('ICC-based CMYK', f'/Press cs .4 .2 .6 .1 sc {SQUARE}', (102, 51, 153, 25)),
        ('ICC-based gray', f'/GrayICC cs 0 sc {SQUARE}', (0, 0, 0, 255)),
        ('a CMYK image', '20 0 0 20 0 0 cm /I Do', (102, 51, 153, 26)),
        ('black over cyan, overprinting', f'1 0 0 0 k {SQUARE} /Over gs 0 0 0 1 k {SQUARE}', (255, 0, 0, 255)),
        ('a spot over cyan, overprinting', f'1 0 0 0 k {SQUARE} /Over gs /Spot cs 1 sc {SQUARE}',
         (255, 127, 255, 0)),
        ('black in a group', '/F Do', (0, 0, 0, 255)),
        ('half of a black over cyan', f'1 0 0 0 k {SQUARE} /Half gs 0 0 0 1 k {SQUARE}', (127, 0, 0, 127)),
        ('magenta multiplied with cyan', f'1 0 0 0 k {SQUARE} /Multiply gs 0 1 0 0 k {SQUARE}', (255, 255, 0, 0)),
        ('paper', '', (0, 0, 0, 0)),
    ]
    content = '\n'.join(f'q 1 0 0 1 {20 * i} 0 cm {cell[1]} Q' for i, cell in enumerate(cells))
    pdf.page(f'/MediaBox [0 0 {20 * len(cells)} 20]', content,
             f'/XObject << /I {image} 0 R /F {form} 0 R >> /ExtGState << /Over << /OP true /op true /OPM 1 >>'
             f' /Half << /ca .5 >> /Multiply << /BM /Multiply >> >>'
             f' /ColorSpace << /Spot [/Separation /Orange /DeviceCMYK {tint}]'
             f' /Press [/ICCBased {press} 0 R] /GrayICC [/ICCBased {gray} 0 R] >>')
    return pdf, cells


def framed_page(pdf, entries, box):
    """A page that is cyan, with a black corner of 20 points at the lower left of `box`, and magenta
    all around, which is not to be seen."""
    left, bottom, right, top = box
    pdf.page(entries, f'0 1 0 0 k -5000 -5000 10000 10000 re f 1 0 0 0 k {left} {bottom} {right - left} '
                      f'{top - bottom} re f 0 0 0 1 k {left} {bottom} 20 20 re f')


def text_pages(count):
    """Pages that tell their number by a bar of so many points."""
    pdf = PDF()
    font = pdf.add('<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>')
    for i in range(count):
        pdf.page('/MediaBox [0 0 100 50]', f'0 0 0 1 k 0 0 {i + 1} 20 re f BT /F 12 Tf 10 30 Td (Page {i + 1}) Tj ET',
                 f'/Font << /F {font} 0 R >>')
    return pdf


def east_asian_text():
    """Three characters of 40 points in each of four scripts, in fonts that are not embedded: a row of 50 points a
    script, Japanese at the bottom."""
    pdf = PDF()
    fonts, content = [], []
    for row, (collection, name, cmap, text) in enumerate((
            ('Japan1', 'Ryumin-Light', 'UniJIS-UTF16-H', '日本語'), ('GB1', 'STSong-Light', 'UniGB-UTF16-H', '简体字'),
            ('CNS1', 'MSung-Light', 'UniCNS-UTF16-H', '繁體字'), ('Korea1', 'HYSMyeongJo-Medium', 'UniKS-UTF16-H', '한국어'))):
        descriptor = pdf.add(f'<< /Type /FontDescriptor /FontName /{name} /Flags 4 /FontBBox [0 -120 1000 880] '
                             '/ItalicAngle 0 /Ascent 880 /Descent -120 /CapHeight 880 /StemV 80 >>')
        cid = pdf.add(f'<< /Type /Font /Subtype /CIDFontType0 /BaseFont /{name} /CIDSystemInfo << /Registry (Adobe) '
                      f'/Ordering ({collection}) /Supplement 0 >> /FontDescriptor {descriptor} 0 R /DW 1000 >>')
        font = pdf.add(f'<< /Type /Font /Subtype /Type0 /BaseFont /{name}-{cmap} /Encoding /{cmap} '
                       f'/DescendantFonts [{cid} 0 R] >>')
        fonts.append(f'/F{row} {font} 0 R')
        content.append(f'BT /F{row} 40 Tf 5 {50 * row + 10} Td <{text.encode("utf-16-be").hex()}> Tj ET')
    pdf.page('/MediaBox [0 0 130 200]', '0 0 0 1 k ' + ' '.join(content), f'/Font << {" ".join(fonts)} >>')
    return pdf


def full_text(count):
    """Pages of A4 full of text in a font that is not embedded."""
    pdf = PDF()
    font = pdf.add('<< /Type /Font /Subtype /Type1 /BaseFont /Times-Roman >>')
    words = 'the quick brown fox jumps over the lazy dog and prints what it has seen on paper '.split()
    for page in range(count):
        lines = [' '.join(words[(page + line + i) % len(words)] for i in range(15)) for line in range(55)]
        pdf.page('/MediaBox [0 0 595 842]', '0 g BT /F 11 Tf 13 TL 60 780 Td ' +
                 ' '.join(f'({line}) Tj T*' for line in lines) + ' ET', f'/Font << /F {font} 0 R >>')
    return pdf

"""The jobs whose faults are tried: small, so that thousands of runs take minutes."""
import os
import struct
import sys
import zlib

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '../host/readers/pdf'))
import pdfwriter  # noqa: E402

PPD = b'''*PPD-Adobe: "4.3"
*LanguageLevel: "2"
*ColorDevice: True
*NickName: "Faults"
*DefaultResolution: 72dpi
*Resolution 72dpi: "<</HWResolution[72 72]>>setpagedevice"
*Resolution 144dpi: "<</HWResolution[144 144]>>setpagedevice"
*DefaultPageSize: Small
*PageSize Small/A small page: "<</PageSize[120 160]>>setpagedevice"
*PageSize Large: "<</PageSize[240 320]>>setpagedevice"
*PageRegion Small: "region"
*ImageableArea Small: "0 0 120 160"
*ImageableArea Large: "4 4 236 316"
*PaperDimension Small: "120 160"
*PaperDimension Large: "240 320"
'''


def samples(width, height):
    return bytes(v for y in range(height) for x in range(width) for v in (2 * x % 256, 2 * y % 256, 80))


def tiff(width, height):
    """RGB in one strip, as printing applications write it."""
    data = samples(width, height)
    entries = [(256, 3, 1, width), (257, 3, 1, height), (258, 3, 3, 0), (259, 3, 1, 1), (262, 3, 1, 2),
               (273, 4, 1, 0), (277, 3, 1, 3), (278, 3, 1, height), (279, 4, 1, len(data))]
    end = 8 + 2 + 12 * len(entries) + 4
    values = {258: end, 273: end + 6}
    out = struct.pack('<2sHIH', b'II', 42, 8, len(entries))
    for tag, kind, count, value in entries:
        out += struct.pack('<HHII', tag, kind, count, values.get(tag, value))
    return out + struct.pack('<IHHH', 0, 8, 8, 8) + data


def png(width, height):
    data = samples(width, height)
    rows = b''.join(b'\0' + data[3 * width * y:3 * width * (y + 1)] for y in range(height))

    def chunk(kind, body):
        return struct.pack('>I', len(body)) + kind + body + struct.pack('>I', zlib.crc32(kind + body))
    head = struct.pack('>IIBBBBB', width, height, 8, 2, 0, 0, 0)
    return b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', head) + chunk(b'IDAT', zlib.compress(rows)) + chunk(b'IEND', b'')


SOURCES = {'small.ppd': PPD, 'page.tif': tiff(120, 160), 'page.png': png(60, 40),
           'two.pdf': pdfwriter.rgb_image().bytes()}
OLD = b'%!PS-Adobe-3.0 EPSF-3.0\n% what was there before\n%%EOF\n'
EPS = ['--eps', '--built-in-printer', '--colour-space', 'rgb', '--media', '60x40pt', '--resolution', '72']
PRINTER = ['--ppd', 'small.ppd', '--hot-folder', 'hot', '-t', 'page']


class Job:
    """`makes`: how many files a success makes or changes, whole or not at all. `ready`: files that are
    there before. `before`: command lines of zelprint that make ready what it takes. `lpr`: what takes
    the place of the print command. `instead`: where a document is kept that the queue does not take.
    `apart`: a file that is written, whole or not at all, before the document is begun."""

    def __init__(self, name, arguments, makes, status=0, ready=None, before=(), lpr='lpr', instead=None, apart=None):
        self.name, self.arguments, self.makes, self.status = name, arguments, makes, status
        self.ready, self.before, self.lpr, self.instead, self.apart = ready or {}, before, lpr, instead, apart


MAKE_SEPARATION = ['make-separation', '--to', '/usr/share/color/icc/ghostscript/default_cmyk.icc', '--grid', '5',
                   'press']
QUEUED = [*PRINTER, '--queue', '--colour-space', 'gray', 'page.tif']
JOBS = [
    Job('ps', [*PRINTER, '--colour-space', 'cmyk', 'page.tif'], 1),
    Job('eps', [*EPS, '--hot-folder', 'hot', '-n', '3', 'page.png'], 3),
    Job('replace', [*EPS, '-o', 'hot/old.eps', 'page.tif'], 1, ready={'hot/old.eps': OLD}),
    Job('queue', QUEUED, 1, instead=('queue/page.ps', 'hot/page.ps')),
    Job('no-queue', QUEUED, 1, status=5, lpr='no-lpr'),
    Job('ppd', ['printer-info', 'small.ppd', '--json'], 0),
    Job('separation', [*PRINTER, '--separation', 'press', '--json', 'page.tif'], 1, before=[MAKE_SEPARATION]),
    Job('pdf', [*PRINTER, '--colour-space', 'cmyk', 'two.pdf'], 1),
    Job('settings', ['--settings', 'in.settings', '--save-settings', 'out.settings', '--hot-folder', 'hot', '-t',
                     'page', 'page.tif'], 2, apart='out.settings',
        before=[[*PRINTER, '--dry-run', '--save-settings', 'in.settings', 'page.tif']]),
    Job('make-separation', MAKE_SEPARATION, 1),
    Job('defaults', ['defaults', '--ppd', 'small.ppd', '--colour-space', 'rgb'], 0),
]

#!/usr/bin/env python3
"""memory-by-kind.py ZELPRINT [KIND...]: the most memory (resident, in MB) that zelprint has while it prints an
A4 and an A2 page at 600 dpi as RGB, by the kind of file and by how the picture lies: pixel by pixel, or resampled from
2/3 of the page's resolution. Files are made with vips; kinds that this machine's vips cannot write are left out.
For PDF files the most that zelprint or the renderer has."""
import os
import subprocess
import sys
import tempfile

KINDS = {
    'TIFF, strips': 'p.tif',
    'TIFF, tiles': 'p.tif[tile]',
    'TIFF, LZW': 'p.tif[compression=lzw]',
    'PPM': 'p.ppm',
    'PNG': 'p.png[compression=1]',
    'PNG, interlaced': 'p.png[compression=1,interlace]',
    'JPEG': 'p.jpg',
    'JPEG, progressive': 'p.jpg[interlace]',
    'JPEG in CMYK': 'cmyk.jpg',
    'WebP': 'p.webp',
    'GIF': 'p.gif',
    'JPEG 2000': 'p.jp2',
    'HEIF': 'p.heic',
    'AVIF': 'p.avif[effort=0]',
    'SVG': 'p.svg',
    'PDF': 'p.pdf',
}
PAGES = {'A4': (4960, 7016), 'A2': (9920, 14032)}
SVG = '<svg xmlns="http://www.w3.org/2000/svg" width="{0}" height="{1}"><circle cx="300" cy="300" r="250" fill="#369"/></svg>'


def vips(*arguments):
    return subprocess.run(['vips', *arguments], capture_output=True, check=False).returncode == 0


def make(folder, target, width, height):
    """A picture with something in every part of it; None where vips cannot write the kind."""
    path, options = os.path.join(folder, target.split('[')[0]), '[' + target.split('[')[1] if '[' in target else ''
    if target.endswith('.svg'):
        with open(path, 'w', encoding='ascii') as file:
            file.write(SVG.format(width * 96 / 600, height * 96 / 600))
        return path
    source = os.path.join(folder, 'source.v')
    if not os.path.exists(source):
        grey, part = os.path.join(folder, 'grey.v'), os.path.join(folder, 'part.v')
        vips('eye', grey, str(width), str(height), '--uchar')
        vips('bandjoin', f'{grey} {grey} {grey}', part)
        vips('copy', part, source, '--interpretation', 'srgb')
        os.unlink(grey), os.unlink(part)
    if target == 'p.pdf':
        return path if make(folder, 'in.jpg', width, height) and subprocess.run(
            ['gs', '-q', '-sDEVICE=pdfwrite', '-o', path, f'-dDEVICEWIDTHPOINTS={width * 72 // 600}',
             f'-dDEVICEHEIGHTPOINTS={height * 72 // 600}', '-c',
             f'{width * 72 // 600} {height * 72 // 600} scale /DeviceRGB setcolorspace '
             f'<< /ImageType 1 /Width {width} /Height {height} /BitsPerComponent 8 /Decode [0 1 0 1 0 1] '
             f'/ImageMatrix [{width} 0 0 -{height} 0 {height}] /DataSource ({folder}/in.jpg) (r) file /DCTDecode filter >> '
             'image showpage'], check=False).returncode == 0 else None
    if target == 'cmyk.jpg':
        return path if vips('icc_export', source, path, '--output-profile', 'cmyk') else None
    return path if vips('copy', source, path + options) else None


def peak(zelprint, folder, path, scale):
    """MB, or why not."""
    process = subprocess.Popen([zelprint, '--eps', '--no-sync', '--allow-large', '--built-in-printer', '--colour-space', 'rgb', '--resolution', '600',
                                '--media', scale, '--scale', 'fit', '--no-auto-rotate', '-o', os.path.join(folder, 'out.eps'), '--quiet', path],
                               stderr=subprocess.PIPE)
    said = process.stderr.read().decode(errors='replace').strip()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = 0
    return f'{usage.ru_maxrss / 1024:.0f}' if status == 0 else said[:60]


def main():
    zelprint, kinds = os.path.abspath(sys.argv[1]), sys.argv[2:] or KINDS
    print('| kind | ' + ' | '.join(f'{page} | {page}, resampled' for page in PAGES) + ' |')
    print('|---' * (1 + 2 * len(PAGES)) + '|')
    rows = {kind: [] for kind in kinds}
    for width, height in PAGES.values():
        media = f'{width * 72 / 600}x{height * 72 / 600}pt'
        for divisor in (1, 1.5):
            with tempfile.TemporaryDirectory() as folder:
                for kind in kinds:
                    path = make(folder, KINDS[kind], int(width / divisor), int(height / divisor))
                    rows[kind].append(peak(zelprint, folder, path, media) if path else 'not made')
                    print(f'{kind}: {rows[kind][-1]}', file=sys.stderr)
    for kind, row in rows.items():
        print(f'| {kind} | ' + ' | '.join(row) + ' |')


if __name__ == '__main__':
    main()

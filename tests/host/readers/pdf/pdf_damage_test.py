"""Damaged, encrypted and hostile PDF files, and names that are not what they look like."""
import os
import shutil
import signal
import subprocess
import time
import unittest
import zlib

import pdfwriter
import printing
from printing import PrintingTest


def endless():
    """A page of forms that call each other 2^28 times."""
    pdf = pdfwriter.PDF()
    form = pdf.stream('/Type /XObject /Subtype /Form /BBox [0 0 9 9]', '0 0 1 1 re f')
    for _ in range(28):
        form = pdf.stream(f'/Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources << /XObject << /F {form} 0 R >> >>',
                          '/F Do /F Do')
    pdf.page('/MediaBox [0 0 100 100]', '/F Do', f'/XObject << /F {form} 0 R >>')
    return pdf.bytes()


def with_content(raw, entries='/Filter /FlateDecode'):
    """Three pages, of which the second has this stream."""
    pdf = pdfwriter.text_pages(1)
    content = pdf.add(f'<< {entries} /Length {len(raw)} >>\nstream\n'.encode() + raw + b'\nendstream')
    pdf.page('/MediaBox [0 0 100 50]', content)
    pdf.page('/MediaBox [0 0 100 50]', '')
    return pdf.bytes()


SOUND = zlib.compress(b'\n'.join(b'0 0 %d %d re f' % (i, i) for i in range(2000)))


class Damage(PrintingTest):
    def test_OfAPage_IsToldWithItsNumber(self):
        broken = bytearray(SOUND)
        broken[len(broken) // 2:len(broken) // 2 + 40] = b'\xff' * 40
        cases = {
            'a stream that is no compressed data': with_content(b'x' * 60),
            'a stream that is broken in its middle': with_content(bytes(broken)),
            'a stream that ends early': with_content(SOUND[:len(SOUND) // 2]),
            'an unknown filter': with_content(SOUND, '/Filter /NoSuchDecode'),
            'a picture that is not there': with_content(zlib.compress(b'/Nowhere Do')),
            'a box of three numbers': with_content(zlib.compress(b'')).replace(
                b'/MediaBox [0 0 100 50] /Contents 3', b'/MediaBox [0 0 100   ] /Contents 3'),
        }
        for name, data in cases.items():
            with self.subTest(name):
                path = self.save('damaged.pdf', data)
                self.assertRegex(self.refused('--resolution', '72dpi', path), r'damaged\.pdf: page 2 cannot be drawn whole \(.+\)')

    def test_OfAFile_IsTold(self):
        whole = pdfwriter.text_pages(3).bytes()
        for name, data in {'nothing behind the head': b'%PDF-1.4\n', 'no objects': b'%PDF-1.4\n' + b'garbage\n' * 500,
                           'the first half': whole[:len(whole) // 2]}.items():
            with self.subTest(name):
                path = self.save('damaged.pdf', data)
                self.assertRegex(self.refused(path), r'damaged\.pdf: .*(cannot be read|no pages)')

    def test_WithoutLoss_IsAWarning(self):
        whole = pdfwriter.text_pages(2).bytes()
        cases = {'no table of objects': whole[:whole.index(b'xref\n0')] + whole[whole.index(b'trailer'):],
                 'bytes before the head': b'junk\n' * 20 + whole,
                 'bytes behind the end': whole + b'\0' * 3000,
                 'too few pages told': whole.replace(b'/Count 2 ', b'/Count 1 '),
                 'too many pages told': whole.replace(b'/Count 2 ', b'/Count 2000000000 ')}
        for name, data in cases.items():
            with self.subTest(name):
                result = self.zelprint('--resolution', '72dpi', '-o', self.path('out.ps'), self.save('mended.pdf', data))
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(len(self.plates(self.path('out.ps'))), 2)

    def test_ByAnEndlessPage_EndsAtTheLimit(self):
        path = self.save('endless.pdf', endless())
        self.assertIn('page 1 cannot be drawn whole (it takes longer than 1 seconds',
                      self.refused('--page-time', '1', '--resolution', '72dpi', path))

    def test_ByAnEndlessPage_CanBeCancelled(self):
        path = self.save('endless.pdf', endless())
        os.mkdir(self.path('hot'))
        job = subprocess.Popen([printing.ZELPRINT, '--hot-folder', self.path('hot'), path], stderr=subprocess.PIPE,
                               text=True)
        deadline = time.monotonic() + 60
        while not self.renderers(job.pid) and time.monotonic() < deadline:
            time.sleep(.05)
        time.sleep(1)
        renderers = self.renderers(job.pid)
        self.assertTrue(renderers)
        job.send_signal(signal.SIGINT)
        _, said = job.communicate(timeout=60)
        self.assertEqual(job.returncode, 130, said)
        self.assertEqual(os.listdir(self.path('hot')), [])
        for renderer in renderers:
            self.assertFalse(os.path.exists(f'/proc/{renderer}'))

    def test_ByAnEndlessPage_EndsTheRendererWithAKilledJob(self):
        path = self.save('endless.pdf', endless())
        job = subprocess.Popen([printing.ZELPRINT, '-o', self.path('out.ps'), path], stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            renderers = self.renderers(job.pid)
            if renderers and b'pamcmyk32' in self.command_line(renderers[0]):
                break
            time.sleep(.05)
        time.sleep(1)  # it draws
        renderers = self.renderers(job.pid)
        self.assertEqual(len(renderers), 1)
        job.kill()
        job.wait()
        while b'pamcmyk32' in self.command_line(renderers[0]) and time.monotonic() < deadline:
            time.sleep(.05)
        if b'pamcmyk32' in self.command_line(renderers[0]):
            os.kill(int(renderers[0]), signal.SIGKILL)
            self.fail('the renderer goes on')

    @staticmethod
    def command_line(process):
        """Empty when it has ended."""
        try:
            with open(f'/proc/{process}/cmdline', 'rb') as file:
                return file.read()
        except OSError:
            return b''

    @staticmethod
    def renderers(parent):
        with open(f'/proc/{parent}/task/{parent}/children', encoding='ascii') as file:
            return file.read().split()

    def test_OfMemory_IsBounded(self):
        pdf = pdfwriter.PDF()
        # 30000 x 30000 x 3 bytes from 3 MB, drawn in bands.
        data = zlib.compress(zlib.compress(b'\0' * 30000 * 3) * 1)
        image = pdf.add(b'<< /Type /XObject /Subtype /Image /Width 30000 /Height 30000 /BitsPerComponent 8 /ColorSpace '
                        b'/DeviceRGB /Filter [/FlateDecode /FlateDecode] /Length %d >>\nstream\n' % len(data) + data
                        + b'\nendstream')
        pdf.page('/MediaBox [0 0 100 100]', '100 0 0 100 0 0 cm /I Do', f'/XObject << /I {image} 0 R >>')
        path = self.save('huge.pdf', pdf.bytes())
        result = self.zelprint('--resolution', '72dpi', '-o', self.path('out.ps'), path)
        self.assertIn(result.returncode, (0, 1), result.stderr)  # an image with too few data is drawn as far as it goes


class Renderer(PrintingTest):
    def refused_when_it(self, ends, *options):
        """What zelprint says when the renderer writes all samples of the page, and ENDS without a word of its being whole."""
        program = self.save('gs', b"""#!/bin/sh
case "$*" in *-sDEVICE=pgmraw*) ;; *) exec %s "$@" ;; esac
for word; do case $word in -g[0-9]*) size=${word#-g} ;; esac; done
width=${size%%x*} height=${size#*x}
printf 'P5\n%%s %%s\n255\n' "$width" "$height"
head -c $((width * height)) /dev/zero
%s
""" % (shutil.which('gs').encode(), ends))
        os.chmod(program, 0o755)
        path = self.save('page.pdf', pdfwriter.text_pages(1).bytes())
        environment = dict(os.environ, PATH=self.folder + ':' + os.environ['PATH'])
        return self.refused('--resolution', '72dpi', '--colour-space', 'gray', *options, path, env=environment)

    def test_ThatEndsAfterTheLastRow_HasNotDrawnThePage(self):
        said = self.refused_when_it(b"echo 'out of memory' >&2")
        self.assertIn('page.pdf: page 1 cannot be drawn whole (out of memory)', said)

    def test_ThatNeverEndsAfterTheLastRow_IsEndedInTime(self):
        said = self.refused_when_it(b'exec sleep 1000', '--page-time', '1')
        self.assertIn('page 1 cannot be drawn whole (it takes longer than 1 seconds, the limit of --page-time)', said)


class Encryption(PrintingTest):
    def encrypted(self, password, *options):
        pdfwriter.text_pages(2).write(self.path('plain.pdf'))
        subprocess.run(['gs', '-q', '-dBATCH', '-dNOPAUSE', '-sDEVICE=pdfwrite', f'-sOutputFile={self.path("locked.pdf")}',
                        '-sOwnerPassword=owner', f'-sUserPassword={password}', *options, self.path('plain.pdf')], check=True)
        return self.path('locked.pdf')

    def test_NeedsAPasswordFile(self):
        path = self.encrypted('it (is) sec%ret')
        self.assertIn('encrypted; write its password into a file and name that with --password-file', self.refused(path))
        wrong = self.save('wrong', b'guess\n')
        self.assertIn('the password does not open it', self.refused('--password-file', wrong, path))
        for content in b'it (is) sec%ret', b'it (is) sec%ret\n', b'it (is) sec%ret\r\nmore\n', b'owner\n':
            right = self.save('right', content)
            result = self.zelprint('--resolution', '72dpi', '-o', self.path('out.ps'), '--password-file', right, path)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(len(self.plates(self.path('out.ps'))), 2)

    def test_WithoutAUserPassword_PrintsAtOnce(self):
        result = self.zelprint('--resolution', '72dpi', '-o', self.path('out.ps'), self.encrypted(''))
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_RefusesPasswordFilesWithoutAPassword(self):
        path = self.encrypted('secret')
        for name, content in (('empty', b''), ('blank', b'\nsecret\n'), ('long', b'x' * 5000)):
            self.assertIn(name, self.refused('--password-file', self.save(name, content), path))
        self.assertIn('missing', self.refused('--password-file', self.path('missing'), path))


class Names(PrintingTest):
    def test_AreTakenAsTheyAre(self):
        data = pdfwriter.text_pages(1).bytes()
        for name in ('%pipe%touch pwned', '-dNOSAFER.pdf', '@options', '(a) b\\', '%stdin', "don't", 'Übergröße €.pdf'):
            with self.subTest(name):
                self.save(name, data)
                result = self.zelprint('--resolution', '72dpi', '-o', 'out.ps', '--', name, cwd=self.folder)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertFalse(os.path.exists(self.path('pwned')))

    def test_OfTheEnvironment_DoNotReachTheRenderer(self):
        path = self.save('a.pdf', pdfwriter.text_pages(1).bytes())
        environment = dict(os.environ, GS_OPTIONS='-dNOSUCHTHING -sDEVICE=nosuchdevice', GS_LIB='/nonexistent',
                           GS_FONTPATH='/nonexistent', GS_DEVICE='nosuchdevice')
        result = self.zelprint('--resolution', '72dpi', '-o', self.path('out.ps'), path, env=environment)
        self.assertEqual(result.returncode, 0, result.stderr)


class Strangers(PrintingTest):
    def test_ThatArePrograms_AreRefused(self):
        for content in b'%!PS-Adobe-3.0\nshowpage\n', b'\xc5\xd0\xd3\xc6' + b'\0' * 60:
            self.assertIn('PostScript and EPS are programs', self.refused(self.save('page.ps', content)))

    def test_WithoutARenderer_AreToldAbout(self):
        path = self.save('a.pdf', pdfwriter.text_pages(1).bytes())
        result = self.zelprint('-o', self.path('out.ps'), path, env=dict(os.environ, PATH='/nonexistent'))
        self.assertEqual(result.returncode, 4)
        self.assertIn('install the package ghostscript', result.stderr)


if __name__ == '__main__':
    unittest.main()

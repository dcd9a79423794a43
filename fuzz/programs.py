#!/usr/bin/env python3
"""programs.py ZELPRINT ROOT FINDINGS RUNS WORKERS: runs zelprint with damaged files of every kind and looks at what
becomes of it. It ends by itself after a minute of work at most, with an exit status that is documented; sanitizers
say nothing; whoever fails says why in one line without control characters, and leaves nothing; whoever does not
leaves whole documents. What breaks a rule is kept in FINDINGS, with the command and what it said.
"""
import json
import os
import pathlib
import random
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib

# Of the processor; and of a clock, where many others want it.
SECONDS = 60
WAITED_SECONDS = 900
# Settings that are as good as any others can ask for hundreds of copies of large pages, which are only planned.
MOST_BYTES = 2_000_000_000
STATUSES = {0, 1, 2, 3, 4, 5}
PROFILE = "/usr/share/color/icc/ghostscript/default_cmyk.icc"
LIGHT_PROFILE = "/usr/share/color/icc/ghostscript/srgb.icc"
SEPARATION = "Fuzz"
PPD = b"""*PPD-Adobe: "4.3"
*LanguageLevel: "2"
*ColorDevice: True
*LanguageEncoding: ISOLatin1
*DefaultPageSize: Small
*PageSize Small/Small page: "<</PageSize[60 60]>>setpagedevice"
*PageSize Other: "<</PageSize[90 60]>>setpagedevice"
*ImageableArea Small: "0 0 60 60"
*ImageableArea Other: "5 5 85 55"
*PaperDimension Small: "60 60"
*PaperDimension Other: "90 60"
*CustomPageSize True: "pop pop pop 2 array astore pop"
*ParamCustomPageSize Width: 1 points 10 500
*ParamCustomPageSize Height: 2 points 10 500
*ParamCustomPageSize WidthOffset: 3 points 0 0
*ParamCustomPageSize HeightOffset: 4 points 0 0
*ParamCustomPageSize Orientation: 5 int 0 3
*MaxMediaWidth: "500"
*MaxMediaHeight: "500"
*DefaultResolution: 72dpi
*Resolution 72dpi: "<</HWResolution[72 72]>>setpagedevice"
*Resolution 144x72dpi: "<</HWResolution[144 72]>>setpagedevice"
"""
ENVIRONMENT = {"ASAN_OPTIONS": "exitcode=99", "LSAN_OPTIONS": "exitcode=99", "UBSAN_OPTIONS": "exitcode=99"}


def png(width, height):
    """An image with a resolution."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = b"".join(b"\0" + bytes((x * 9 + y * 5 + c * 77) % 256 for x in range(width) for c in range(3))
                    for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"pHYs", struct.pack(">2IB", 2835, 2835, 1)) + chunk(b"IDAT", zlib.compress(rows)) +
            chunk(b"IEND", b""))


def pdf(pages):
    """A file whose objects are told apart by its cross-reference table, with text, a path and an image."""
    content = b"0 0.8 0.2 0 k 5 5 40 20 re f BT /F 12 Tf 8 30 Td (ZEL) Tj ET q 20 0 0 20 30 30 cm /I Do Q"
    image = b"<< /Type /XObject /Subtype /Image /Width 2 /Height 2 /BitsPerComponent 8 /ColorSpace /DeviceRGB /Length 12 >>\nstream\n" + bytes(range(0, 240, 20)) + b"\nendstream"
    kids = b" ".join(b"%d 0 R" % (6 + i) for i in range(pages))
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Kids [%s] /Count %d >>" % (kids, pages),
               b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>", image,
               b"<< /Length %d >>\nstream\n%s\nendstream" % (len(content), content)]
    objects += [b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 60 60] /Contents 5 0 R /Resources << /Font << /F 3 0 R >> /XObject << /I 4 0 R >> >> >>"] * pages
    out, places = b"%PDF-1.4\n", []
    for number, body in enumerate(objects, 1):
        places.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    table = b"".join(b"%010d 00000 n \n" % place for place in places)
    return out + b"xref\n0 %d\n0000000000 65535 f \n%strailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (
        len(objects) + 1, table, len(objects) + 1, len(out))


class Worker:
    def __init__(self, zelprint, root, findings, number):
        self.zelprint, self.root, self.findings = zelprint, pathlib.Path(root), pathlib.Path(findings)
        self.random = random.Random(f"{number} {time.time_ns()}")
        self.number = number
        self.place = pathlib.Path(tempfile.mkdtemp())
        self.hot, self.temporary = self.place / "hot", self.place / "tmp"
        self.tally = {}
        for folder in (self.hot, self.temporary):
            folder.mkdir()
        self.picture = self.file("picture.png", png(24, 24))
        self.ppd = self.file("printer.ppd", PPD)
        self.kinds = {"picture": self.pictures(), "pdf": [pdf(1), pdf(3)],
                      "ppd": [PPD, *(PPD + seed for seed in self.seeds("ppd/corpus/ppd"))],
                      "settings": [self.saved_settings(), *self.seeds("host/corpus/settings")],
                      "icc of ink": [pathlib.Path(PROFILE).read_bytes()],
                      "icc of light": [pathlib.Path(LIGHT_PROFILE).read_bytes()],
                      "separation": self.separations()}

    def file(self, name, content):
        path = self.place / name
        path.write_bytes(content)
        return str(path)

    def seeds(self, folder):
        return [path.read_bytes() for path in sorted((self.root / "fuzz" / folder).iterdir())]

    def pictures(self):
        """The same picture in every format that the tools at hand write, and the readers' own seeds."""
        pictures = [png(24, 24), *self.seeds("host/corpus/pnm"), *self.seeds("host/corpus/plain_tiff")]
        formats = [["a.jpg"], ["a.webp"], ["a.gif"], ["a.jp2"], ["-compress", "lzw", "a.tif"],
                   ["-compress", "jpeg", "b.tif"], ["-depth", "16", "c.tif"], ["-colorspace", "cmyk", "d.tif"],
                   ["-colorspace", "cmyk", "d.jpg"], ["-colors", "4", "e.png"], ["a.svg"]]
        for arguments in formats:
            path = self.place / arguments[-1]
            subprocess.run(["convert", self.picture, *arguments[:-1], str(path)], check=False,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            if path.exists():
                pictures.append(path.read_bytes())
        return pictures

    def saved_settings(self):
        path = str(self.place / "settings")
        done = self.run(self.printing("--ppd", self.ppd, "--save-settings", path, self.picture))
        if done.returncode != 0:
            sys.exit(f"programs.py: the undamaged picture is not printed: {done.stderr.decode(errors='replace')}")
        self.clean()
        return pathlib.Path(path).read_bytes()

    def separations(self):
        """The folder where the driver looks for them is found by having one made."""
        self.run([self.zelprint, "make-separation", SEPARATION, "--to", PROFILE, "--grid", "3"])
        self.separation = next(pathlib.Path(os.environ["HOME"]).rglob(SEPARATION + "*"), None)
        return [self.separation.read_bytes(), *self.seeds("colour/corpus/separation_profile")] if self.separation else []

    def printing(self, *arguments):
        colours = self.random.choice(["cmyk", "rgb", "gray"])
        form = self.random.choice(["--ps", "--eps"])
        return [self.zelprint, "--hot-folder", str(self.hot), "--no-queue", form, "--colour-space", colours, *arguments]

    def command(self, kind, content):
        """The job for damaged content of that kind."""
        page = self.random.choice([[], ["--media", "50x60pt"], ["--media", "Other", "--resolution", "144x72dpi"]])
        printer = ["--ppd", self.ppd, *page]
        name = self.random.choice(["damaged", "schäden"])
        path = self.file(name + {"ppd": ".ppd", "pdf": ".pdf"}.get(kind, ""), content)
        if kind == "ppd":
            return self.random.choice([
                self.printing("--ppd", path, *page, self.picture),
                [self.zelprint, "printer-info", *self.random.choice([[], ["--json"]]), path]])
        if kind == "settings":
            job = [self.zelprint, "--hot-folder", str(self.hot), "--no-queue", "--settings", path, self.picture]
            plan = [*job, "--dry-run", "--json"]
            return plan if self.expected_bytes(plan) > MOST_BYTES else job
        if kind.startswith("icc"):
            profiles = ["--to", path] if kind == "icc of ink" else ["--from", path, "--to", PROFILE]
            return [self.zelprint, "make-separation", "Damaged", *profiles, "--grid", "2", "--force"]
        if kind == "separation":
            self.separation.write_bytes(content)
            return [*self.printing(*printer), "--colour-space", "cmyk", "--separation", SEPARATION, self.picture]
        return self.printing(*printer, path)

    def expected_bytes(self, plan):
        done = self.run(plan)
        return json.loads(done.stdout)["expected_bytes"] if done.returncode == 0 else 0

    def damaged(self, content):
        data = bytearray(content)
        for _ in range(self.random.choice([1, 1, 2, 4, 16])):
            if not data:
                break
            at = self.random.randrange(len(data))
            length = min(len(data) - at, self.random.choice([1, 2, 4, 16, 64, 1000]))
            kind = self.random.randrange(8)
            if kind == 0:
                data[at] ^= 1 << self.random.randrange(8)
            elif kind == 1:
                data[at] = self.random.choice([0, 1, 0x7F, 0x80, 0xFF, 0x20, 0x0A, self.random.randrange(256)])
            elif kind == 2:
                del data[at:at + length]
            elif kind == 3:
                data[at:at] = data[at:at + length] * self.random.choice([1, 2, 8])
            elif kind == 4:
                data[at:at + length] = self.random.randbytes(length)
            elif kind == 5:
                del data[at:]
            elif kind == 6:
                data[at:at + 4] = struct.pack(self.random.choice("<>") + "I", self.random.choice(
                    [0, 1, 2, 0x7FFF, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF]))
            else:
                data[at:at + length] = self.random.choice(
                    [b"-1", b"0", b"99999999999", b"1e308", b"nan", b"\"", b"*End", b"<", b">>", b"(", b"\r"])
        return bytes(data)

    def run(self, command):
        environment = dict(os.environ, TMPDIR=str(self.temporary))
        for name, more in ENVIRONMENT.items():
            environment[name] = os.environ.get(name, "") + ":" + more
        return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=WAITED_SECONDS,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS)),
                              env=environment, check=False)

    def clean(self):
        for path in self.hot.iterdir():
            path.unlink()

    def broken_rule(self, done):
        """Which rule, or None."""
        said = done.stderr
        if done.returncode not in STATUSES:
            return f"exit status {done.returncode}"
        if b"Sanitizer" in said or b"runtime error" in said:
            return "a sanitizer's report"
        if any(byte < 0x20 and byte not in b"\n" for byte in said):
            return "control characters in its messages"
        if done.returncode != 0 and sum(line.startswith(b"zelprint: ") for line in said.splitlines()) < 1:
            return "no message"
        documents = list(self.hot.iterdir())
        if done.returncode != 0 and documents:
            return "something is left in the hot folder"
        for path in documents:
            if path.name.startswith(".") or not path.read_bytes().rstrip().endswith(b"%%EOF"):
                return "half a document"
        if list(self.temporary.iterdir()):
            return "temporary files are left"
        return None

    def keep(self, kind, rule, command, content, said):
        folder = self.findings / f"{kind}-{self.number}-{time.time_ns()}"
        folder.mkdir(parents=True)
        (folder / "input").write_bytes(content)
        (folder / "what").write_bytes(f"{rule}\n{' '.join(command)}\n".encode() + said)

    def one_run(self):
        kind = self.random.choice([kind for kind, seeds in self.kinds.items() if seeds])
        content = self.damaged(self.random.choice(self.kinds[kind]))
        command = self.command(kind, content)
        tally = self.tally.setdefault(kind, {"runs": 0, "printed": 0, "findings": 0})
        tally["runs"] += 1
        try:
            done = self.run(command)
            rule, said = self.broken_rule(done), done.stderr
            tally["printed"] += done.returncode == 0
        except subprocess.TimeoutExpired as slow:
            rule, said = f"more than {WAITED_SECONDS} s", slow.stderr or b""
        if rule:
            tally["findings"] += 1
            self.keep(kind, rule, command, content, said)
        for folder in (self.hot, self.temporary):
            shutil.rmtree(folder)
            folder.mkdir()

    def work(self, runs):
        for _ in range(runs):
            self.one_run()
        shutil.rmtree(self.place)
        print(json.dumps(self.tally))


def main():
    if sys.argv[1] == "--worker":
        zelprint, root, findings, runs, number = sys.argv[2:]
        Worker(zelprint, root, findings, number).work(int(runs))
        return
    zelprint, root, findings, runs, workers = sys.argv[1:]
    workers = int(workers)
    start = time.monotonic()
    # Each in an isolated environment: a damaged separation is everybody's who has the same preferences.
    children = [subprocess.Popen([root + "/tests/run-isolated.sh", "python3", "-B", __file__, "--worker", zelprint,
                                  root, findings, str((int(runs) + i) // workers), str(i)],
                                 stdout=subprocess.PIPE) for i in range(workers)]
    tallies = {}
    for child in children:
        for kind, counts in json.loads(child.communicate()[0] or b"{}").items():
            for name, count in counts.items():
                tallies.setdefault(kind, {}).setdefault(name, 0)
                tallies[kind][name] += count
    print(f"{'damaged':12s} {'runs':>8s} {'printed':>8s} {'findings':>9s}")
    for kind, counts in tallies.items():
        print(f"{kind:12s} {counts['runs']:8d} {counts['printed']:8d} {counts['findings']:9d}")
    found = sum(counts["findings"] for counts in tallies.values())
    print(f"{sum(counts['runs'] for counts in tallies.values())} runs in {time.monotonic() - start:.0f} s")
    if found or any(child.returncode for child in children):
        sys.exit(f"programs.py: {found} inputs break a rule; they are in {findings}")


main()

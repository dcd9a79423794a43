#!/usr/bin/env python3
"""list_ppds.py [COUNT]: writes every PPD file of the installed printer packages to standard output, or
COUNT files of each kind: of those that have the same keywords among the ones that the driver looks for, with
values written alike, the same ends of lines, encoding and manufacturer.

Each is a line "LENGTH NAME" and LENGTH bytes. Files are taken from /usr/share/ppd, gzipped or not,
and out of the archives in /usr/lib/cups/driver, which are Python programs with the files inside.
"""
import base64
import collections
import gzip
import lzma
import os
import re
import sys
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader

FOLDER = "/usr/share/ppd"
ARCHIVES = "/usr/lib/cups/driver"


KEYWORDS = (
    b"*CustomPageSize", b"*DefaultPageSize", b"*DefaultResolution", b"*Resolution", b"*JCLResolution",
    b"*SetResolution", b"*ColorDevice", b"*LanguageLevel", b"*LanguageEncoding", b"*MaxMediaWidth",
    b"*cupsFilter", b"*FoomaticRIPCommandLine", b"*Include")


def kind(content):
    """What the reader treats alike has the same kind."""
    features = [b"\n" + keyword in content for keyword in KEYWORDS]
    features += [b"\r\n" in content, re.search(b"\r[^\n]", content) is not None]
    features += [re.search(b"\n\\*JCL[^\n]*<", content) is not None]
    values = [re.search(b"\n\\*" + name + b": *(\\S+)", content) for name in (b"LanguageEncoding", b"Manufacturer")]
    order = re.findall(b"\n\\*ParamCustomPageSize +(\\w+)[^:]*: *(\\d+)", content)
    return tuple(features), tuple(value and value[1] for value in values), tuple(order)


def emit(name, content):
    sys.stdout.buffer.write(b"%d %s\n" % (len(content), name.encode()))
    sys.stdout.buffer.write(content)


def files_in_folder():
    for folder, _, names in sorted(os.walk(FOLDER)):
        for name in sorted(names):
            path = os.path.join(folder, name)
            if not os.path.isfile(path):
                continue
            if name.lower().endswith(".ppd"):
                with open(path, "rb") as file:
                    yield path, file.read()
            elif name.lower().endswith(".ppd.gz"):
                with gzip.open(path) as file:
                    yield path, file.read()


def load_archive(path):
    """The archive's index and its files, one behind the other."""
    sys.dont_write_bytecode = True
    loader = SourceFileLoader("archive", path)
    module = module_from_spec(spec_from_loader("archive", loader))
    loader.exec_module(module)
    index = module.load()
    content = lzma.decompress(base64.b64decode(index.pop("ARCHIVE")))
    return index, content


def files_in_archives():
    for name in sorted(os.listdir(ARCHIVES) if os.path.isdir(ARCHIVES) else []):
        path = os.path.join(ARCHIVES, name)
        if not os.path.isfile(path):
            continue
        with open(path, "rb") as file:
            if b"ppds_compressed" not in file.read():
                continue
        index, content = load_archive(path)
        for ppd, (start, length, _) in index.items():
            yield name + ":" + ppd, content[start:start + length]


most = int(sys.argv[1]) if len(sys.argv) > 1 else 0
met = collections.Counter()
for source in (files_in_folder, files_in_archives):
    for ppd_name, ppd_content in source():
        if most > 0:
            ppd_kind = kind(ppd_content)
            met[ppd_kind] += 1
            if met[ppd_kind] > most:
                continue
        emit(ppd_name, ppd_content)

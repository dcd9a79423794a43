#!/usr/bin/env python3
"""Writes every PPD file of the installed printer packages to standard output.

Each is a line "LENGTH NAME" and LENGTH bytes. Files are taken from /usr/share/ppd, gzipped or not,
and out of the archives in /usr/lib/cups/driver, which are Python programs with the files inside.
"""
import base64
import gzip
import lzma
import os
import sys
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader

FOLDER = "/usr/share/ppd"
ARCHIVES = "/usr/lib/cups/driver"


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


for source in (files_in_folder, files_in_archives):
    for ppd_name, ppd_content in source():
        emit(ppd_name, ppd_content)

#!/usr/bin/env python3
"""python_host.py BUNDLE FOLDER: prints one page, a grey ramp, as a PostScript file into FOLDER.

Needs no compiler: ctypes calls the driver and the library that it shares with its hosts, which lies beside
the bundle (or where ZEL_PLATFORM says)."""
import ctypes
import os
import sys
from ctypes import c_char, c_char_p, c_double, c_int32, c_uint8, c_uint16, c_uint32, c_void_p


class PageRecord(ctypes.Structure):
    _fields_ = [("width", c_int32), ("height", c_int32), ("width_mm", c_double), ("height_mm", c_double)]


class DriverInfo(ctypes.Structure):
    _fields_ = [("result", c_int32), ("width", c_int32), ("height", c_int32), ("width_mm", c_double),
                ("height_mm", c_double), ("first", c_uint16), ("last", c_uint16), ("copies", c_uint16)]


class RecordSettings(ctypes.Structure):
    _fields_ = [("size", c_uint32), ("colour_space", c_uint32), ("page_width", c_double), ("page_height", c_double),
                ("x_dpi", c_double), ("y_dpi", c_double), ("copies", c_int32), ("first", c_int32), ("last", c_int32),
                ("custom", c_uint8), ("mirror_h", c_uint8), ("mirror_v", c_uint8), ("rotated", c_uint8),
                ("eps", c_uint8), ("reserved", c_uint8 * 3), ("page_name", c_char * 42),
                ("resolution_name", c_char * 42), ("separation", c_char * 256)]


class Rect(ctypes.Structure):
    _fields_ = [("top", c_int32), ("left", c_int32), ("bottom", c_int32), ("right", c_int32)]


class Band(ctypes.Structure):
    _fields_ = [("base", c_char_p), ("bounds", Rect), ("row_bytes", c_int32), ("format", c_uint16)]


UTF8, XRGB32, RECORD_BYTES = 0x08000100, 32, 416


def stop(message):
    sys.exit("python_host: " + message)


def function(library, name, *arguments, result=c_int32):
    found = getattr(library, name)
    found.argtypes, found.restype = arguments, result
    return found


def load(bundle):
    """The driver's code and the library that it shares with its hosts, which has to be there first."""
    beside = os.path.join(os.path.dirname(os.path.abspath(bundle)), "libZELPlatform.so.1")
    platform = ctypes.CDLL(os.environ.get("ZEL_PLATFORM", beside), mode=ctypes.RTLD_GLOBAL)
    return platform, ctypes.CDLL(os.path.join(bundle, "ZELPostscript"))


def main(bundle, folder):
    try:
        cf, driver = load(bundle)
    except OSError as error:
        stop(str(error))
    pointer = c_void_p
    string = function(cf, "CFStringCreateWithCString", pointer, c_char_p, c_int32, result=pointer)
    file_url = function(cf, "CFURLCreateWithFileSystemPath", pointer, pointer, c_int32, c_uint8, result=pointer)
    open_bundle = function(cf, "CFBundleCreate", pointer, pointer, result=pointer)
    bookmark = function(cf, "CFURLCreateBookmarkData", *[pointer] * 2, ctypes.c_ulong, *[pointer] * 3, result=pointer)
    dictionary = function(cf, "CFDictionaryCreateMutable", pointer, ctypes.c_long, pointer, pointer, result=pointer)
    set_value = function(cf, "CFDictionarySetValue", pointer, pointer, pointer, result=None)
    new_handle = function(cf, "NewHandleClear", ctypes.c_long, result=pointer)

    def text(value):
        return string(None, os.fsencode(value), UTF8)

    def url(path):
        return file_url(None, text(path), 0, 1)

    context = pointer()
    code = open_bundle(None, url(bundle))
    if not code or function(driver, "ZELPrOpen", pointer, pointer)(code, ctypes.byref(context)) != 0:
        stop("the driver does not open")
    record = new_handle(RECORD_BYTES)  # zeros are a bad record: it becomes a good one
    page = PageRecord(800, 1000, 203.2, 254)  # 8 by 10 inches at 100 dpi
    function(driver, "ZELPrSuggestPage", pointer, pointer, pointer, c_uint16, result=None)(
        context, None, ctypes.byref(page), 32)
    function(driver, "ZELPrValidate", pointer, pointer, result=c_uint8)(context, record)
    choices = RecordSettings(size=ctypes.sizeof(RecordSettings))
    function(driver, "ZELPrGetRecordSettings", pointer, pointer)(record, ctypes.byref(choices))
    choices.x_dpi = choices.y_dpi = 100  # whatever the printer's: enough for a ramp
    function(driver, "ZELPrSetRecordSettings", *[pointer] * 3)(None, record, ctypes.byref(choices))

    place = bookmark(None, url(folder), 1024, None, None, None)
    if not place:
        stop("the folder does not exist")
    settings = dictionary(None, 0, ctypes.addressof(c_uint8.in_dll(cf, "kCFTypeDictionaryKeyCallBacks")),
                          ctypes.addressof(c_uint8.in_dll(cf, "kCFTypeDictionaryValueCallBacks")))
    set_value(settings, text("outputFolder"), place)
    function(driver, "ZELPrSetJobSettings", pointer, pointer, pointer, result=c_uint8)(context, record, settings)
    function(driver, "ZELPrSetJobName", pointer, pointer, pointer)(context, None, text("Ramp"))

    info = DriverInfo()  # the printer has the last word on the page
    function(driver, "ZELPrGetInfo", pointer, pointer, pointer)(context, record, ctypes.byref(info))
    function(driver, "ZELPrOpenDoc", pointer)(context)
    function(driver, "ZELPrOpenPage", pointer, pointer, pointer)(context, None, None)
    row = bytes(x * 255 // info.width for x in range(info.width) for _ in range(4))  # x, R, G, B
    print_bitmap = function(driver, "ZELPrPrintBitmap", *[pointer] * 4)
    for top in range(info.height):
        rows = Rect(top, 0, top + 1, info.width)
        band = Band(row, rows, len(row), XRGB32)
        print_bitmap(context, ctypes.byref(band), ctypes.byref(rows), ctypes.byref(rows))
    function(driver, "ZELPrClosePage", pointer)(context)
    function(driver, "ZELPrCloseDoc", pointer)(context)
    # The first failure on the way is latched, and comes out here.
    code = function(driver, "ZELPrClose", pointer)(context)
    if code != 0:
        stop(f"the driver says {code}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        stop("usage: python_host.py BUNDLE FOLDER")
    main(sys.argv[1], sys.argv[2])

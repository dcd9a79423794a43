#!/bin/sh
# soak-documents.sh SOAK_DOCUMENTS ZELPRINT COUNT: one host in one process, with a separation of its own and three
# printers with small pages, one of which is refused (inside run-isolated.sh).
set -eu
cd "$HOME"
mkdir hot
"$2" make-separation --to /usr/share/color/icc/ghostscript/default_cmyk.icc --grid 5 press >/dev/null
printer() { # COLOUR
    cat <<PPD
*PPD-Adobe: "4.3"
*LanguageLevel: "2"
*ColorDevice: $1
*DefaultResolution: 72dpi
*Resolution 72dpi: "<</HWResolution[72 72]>>setpagedevice"
*Resolution 144x72dpi: "<</HWResolution[144 72]>>setpagedevice"
*DefaultPageSize: Small
*PageSize Small/A small page: "<</PageSize[40 50]>>setpagedevice"
*PageSize Wide: "<</PageSize[80 40]>>setpagedevice"
*ImageableArea Small: "0 0 40 50"
*ImageableArea Wide: "2 2 78 38"
PPD
}
printer True >colour.ppd
printer False >gray.ppd
echo 'no PPD file' >none.ppd
exec "$1" "$3" hot colour.ppd gray.ppd none.ppd

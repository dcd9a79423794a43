#!/bin/bash
# Includes point down the data flow only: every file has a level, and may include files of its own level
# or below. Besides, printer description and dialogs never reach into the output path, and a host sees
# the host interface alone.
set -eu

level() {
    case $1 in
        host/readers/images/*) echo 95 ;; # a library that the host loads at run time
        host/*) echo 90 ;;
        dialogs/Alert* | dialogs/DialogSupport.* | dialogs/Toolkit* | dialogs/gnustep/* | dialogs/PagePicture.*) echo 15 ;;
        dialogs/*) echo 75 ;;
        Common/Src/PageOutput* | Common/Src/BandScaler*) echo 70 ;;
        Common/Src/postscript/PostscriptText* | Common/Src/postscript/PostscriptDocument* | Common/Src/postscript/PackRGB* | Common/Src/ScanLines*) echo 55 ;;
        Common/Src/postscript/*) echo 60 ;;
        colour/*) echo 50 ;;
        Common/Src/stream/*) echo 40 ;;
        ppd/*) echo 25 ;;
        support/*) echo 10 ;;
        Common/Src/*) echo 80 ;;
        include/* | platform/*) echo 0 ;;
        *) echo "no level for $1" >&2; exit 1 ;;
    esac
}

outputPath='^Common/Src/(PageOutput|BandScaler|ScanLines|stream/|postscript/(OutputFiles|PostscriptText|PostscriptWriter|PrintQueue|RowConversion|PackRGB))'
failed=0
complain() { echo "$1" >&2; failed=1; }

while IFS=: read -r file included; do
    case $included in
        */*) ;;
        *) if [ -e "include/$included" ]; then included=include/$included; else included=$(dirname "$file")/$included; fi ;;
    esac
    [ "$(level "$file")" -ge "$(level "$included")" ] || complain "$file includes $included, which is above it"
    case $file in
        ppd/* | dialogs/*) if [[ $included =~ $outputPath ]]; then complain "$file reaches into the output path: $included"; fi ;;
        host/*) case $included in host/* | include/*) ;; *) complain "$file sees more than the host interface: $included" ;; esac ;;
        include/*) case $included in include/*) ;; *) complain "$file is for hosts and includes $included" ;; esac ;;
    esac
done < <(grep -rEo --include='*.h' --include='*.cpp' --include='*.mm' '^#(include|import) "[^"]+"' \
    include support Common colour ppd dialogs host | sed -E 's/:#(include|import) "([^"]+)"/:\2/')
exit $failed

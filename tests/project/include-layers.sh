#!/bin/bash
# Includes point down the data flow only: every file has a level, and may include files of its own level
# or below. Besides, printer description and dialogs never reach into the output path, and a host sees
# the host interface alone.
set -eu

level() {
    case $1 in
        host/images/*) echo 95 ;; # a library that the host loads at run time
        host/*) echo 90 ;;
        dialogs/Alert* | dialogs/DialogSupport.* | dialogs/Toolkit* | dialogs/Units.*) echo 15 ;;
        dialogs/*) echo 80 ;; # dialogs and driver core call each other
        Common/Src/PageOutput*) echo 70 ;;
        Common/Src/BandScaler* | Common/Src/OutputFiles* | Common/Src/PostscriptWriter* | Common/Src/PrintQueue* | \
            Common/Src/RowConversion*) echo 60 ;;
        Common/Src/PostscriptText* | Common/Src/ScanLines* | Common/Src/PackRGB*) echo 55 ;;
        colour/*) echo 50 ;;
        Common/Src/StreamEncoders*) echo 40 ;;
        Common/Src/ASCII85*) echo 35 ;;
        Common/Src/Writebuffer*) echo 30 ;;
        ppd/*) echo 25 ;;
        Common/Src/Queue* | Common/Src/Mutex* | Common/Src/PostscriptDocument* | Common/Src/CFRef* | Common/Src/CFText* | \
            Common/Src/BigEndian*) echo 10 ;;
        Common/Src/*) echo 80 ;;
        include/* | platform/*) echo 0 ;;
        *) echo "no level for $1" >&2; exit 1 ;;
    esac
}

outputPath='^(Common/Src/(PageOutput|BandScaler|OutputFiles|PostscriptText|PostscriptWriter|PrintQueue|RowConversion|PackRGB|ScanLines|StreamEncoders|ASCII85|Writebuffer|Queue))'
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
    include Common colour ppd dialogs host | sed -E 's/:#(include|import) "([^"]+)"/:\2/')
exit $failed

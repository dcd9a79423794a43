#!/bin/sh
# Every shell script parses.
set -eu
find . -path './build*' -prune -o \( -name '*.sh' -o -path ./.ci/run \) -print | while read -r script; do
    case $(head -n 1 "$script") in
        '#!/bin/sh') sh -n "$script" ;;
        '#!/bin/bash' | '#!/usr/bin/env bash') bash -n "$script" ;;
        *) echo "$script: no interpreter line" >&2; exit 1 ;;
    esac
done

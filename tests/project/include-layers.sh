#!/bin/bash
# Includes point down the data flow only: a file may include its own layer and the ones after it. The
# table names, for every folder or file, what of the project it may include besides <system headers>,
# the host interface (include/) and the platform.
set -eu

# pattern of the including file | pattern of what it may include
rules() {
    cat <<'TABLE'
include/*|
Common/Src/(Queue|PlatformChecks|BigEndian|CFRef|PostscriptDocument|CpuFeatures)*|Common/Src/(Queue|BigEndian|CFRef|PostscriptDocument|CpuFeatures)*
Common/Src/Writebuffer*|Common/Src/(Writebuffer|Queue)*
Common/Src/ASCII85*|Common/Src/(ASCII85|CpuFeatures)*
Common/Src/StreamEncoders*|Common/Src/(StreamEncoders|ASCII85|Writebuffer)*
TABLE
}

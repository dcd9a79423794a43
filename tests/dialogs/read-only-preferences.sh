#!/bin/sh
# Runs a program with a preferences folder in which not even root can write.
sed -i 's#^GNUSTEP_USER_DEFAULTS_DIR=.*#GNUSTEP_USER_DEFAULTS_DIR=/proc/self/nowhere#' "$GNUSTEP_CONFIG_FILE" || exit 1
exec "$@"

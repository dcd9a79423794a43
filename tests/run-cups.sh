#!/bin/sh
# run-cups.sh COMMAND...: runs a command in the isolated environment with a print server of its own:
# a CUPS scheduler on a free port of the loopback interface whose default queue takes raw data and writes
# every job into a file. The command finds
#   CUPS_SERVER     the scheduler, for lpr and lpstat
#   ZEL_QUEUE       the folder with the jobs' data: 1, 2, ... in their order
#   ZEL_CUPS_PID    the scheduler's process
# Needs no system service, no rights and no configuration of the machine.
here=$(cd "$(dirname "$0")" && pwd)
if [ -z "${ZEL_CUPS_INSIDE:-}" ]; then
    ZEL_CUPS_INSIDE=1 exec "$here/run-isolated.sh" "$here/run-cups.sh" "$@"
fi

cupsd=$(PATH="$PATH:/usr/sbin:/sbin" command -v cupsd) || { echo "cupsd is not installed" >&2; exit 1; }
. "$here/cups-scheduler.sh"
dir=$HOME/cups
scheduler_folder "$dir"
mkdir "$dir/queue"

# The backend that stands for the printer. CUPS runs it as root only when nobody else may read it.
cat >"$dir/bin/backend/zelfile" <<'BACKEND'
#!/bin/sh
# JOB USER TITLE COPIES OPTIONS [FILE]
if [ $# -eq 0 ]; then echo 'direct zelfile "Unknown" "File"'; exit 0; fi
folder=${DEVICE_URI#zelfile:}
cat "${6:--}" >"$folder/.$1" && mv "$folder/.$1" "$folder/$1"
BACKEND
chmod 0700 "$dir/bin/backend/zelfile"

cat >"$dir/etc/printers.conf" <<CONF
<DefaultPrinter raw>
Info Raw data into files
DeviceURI zelfile:$dir/queue
State Idle
Accepting Yes
Shared No
ErrorPolicy stop-printer
</DefaultPrinter>
CONF

# A free port is found by trying: the scheduler ends when it cannot listen.
unset CUPS_SERVER
tries=0
scheduler=
until [ -n "$scheduler" ]; do
    tries=$((tries + 1))
    [ "$tries" -le 20 ] || { echo "cupsd does not start:" >&2; tail -n 20 "$dir/log/error" >&2; exit 1; }
    port=$((20000 + ($(od -An -N2 -tu2 /dev/urandom) % 40000)))
    scheduler_listens "$dir" "$port"
    "$cupsd" -f -c "$dir/etc/cupsd.conf" -s "$dir/etc/cups-files.conf" </dev/null >"$dir/log/output" 2>&1 &
    scheduler=$!
    waited=0
    until CUPS_SERVER="127.0.0.1:$port" lpstat -d 2>/dev/null | grep -q ': raw$'; do
        waited=$((waited + 1))
        if [ "$waited" -gt 1200 ] || ! kill -0 "$scheduler" 2>/dev/null; then
            kill "$scheduler" 2>/dev/null
            scheduler=
            break
        fi
        sleep 0.1
    done
done

finish() {
    trap - EXIT
    trap '' HUP INT TERM
    kill "$scheduler" 2>/dev/null
    wait "$scheduler" 2>/dev/null
}
trap finish EXIT
trap 'exit 143' HUP INT TERM
export CUPS_SERVER="127.0.0.1:$port" ZEL_QUEUE="$dir/queue" ZEL_CUPS_PID="$scheduler"
unset ZEL_CUPS_INSIDE
"$@"

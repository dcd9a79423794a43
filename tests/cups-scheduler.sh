#!/bin/sh
# cups-scheduler.sh: sourced by the tests that have print servers of their own. What is the same for all of them:
# the folder of a CUPS scheduler that needs no rights and nothing of the machine but CUPS' programs.

scheduler_folder() { # FOLDER
    mkdir -p "$1/etc" "$1/bin/backend" "$1/spool/tmp" "$1/cache" "$1/state" "$1/log"
    for part in cgi-bin daemon driver filter monitor notifier; do ln -s "/usr/lib/cups/$part" "$1/bin/$part"; done
    cat >"$1/etc/cups-files.conf" <<CONF
ServerRoot $1/etc
ServerBin $1/bin
RequestRoot $1/spool
TempDir $1/spool/tmp
CacheDir $1/cache
StateDir $1/state
AccessLog $1/log/access
ErrorLog $1/log/error
PageLog $1/log/page
CONF
}

scheduler_listens() { # FOLDER PORT: on the loopback interface, to everybody
    cat >"$1/etc/cupsd.conf" <<CONF
Listen 127.0.0.1:$2
LogLevel debug
Browsing Off
WebInterface No
DefaultAuthType None
IdleExitTimeout 0
DirtyCleanInterval 0
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateValues none
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
CONF
}

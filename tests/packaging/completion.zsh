#!/usr/bin/zsh -f
# completion.zsh SCRIPT PROGRAM PPD: what the completion of zsh offers for unfinished command lines, typed into a
# zsh of its own.
zmodload zsh/zpty zsh/zselect || exit 1
hits=$HOME/hits program=$2 failed=0
mkdir $HOME/functions $HOME/here
cp $1 $HOME/functions/_zelprint
cp $3 "$HOME/here/my printer.ppd"
mkdir "$HOME/here/hot folder"

# Whatever is offered is written down; Ctrl-X writes the end of it and empties the line.
cat >$HOME/setup <<'SETUP'
PROMPT=
setopt no_beep
fpath=($HOME/functions $fpath)
autoload -Uz compinit && compinit -D -u
compadd() {
  if [[ ${@[1,(i)(-|--)]} != *-(O|A|D)* ]]; then
    local -a __hits
    builtin compadd -O __hits "$@"
    (( $#__hits )) && print -rl -- $__hits >>$HITS
  fi
  builtin compadd "$@"
}
end-of-hits() { print -r -- "END" >>$HITS; BUFFER= }
zle -N end-of-hits
bindkey '^I' complete-word
bindkey '^X' end-of-hits
cd $HOME/here
SETUP
export HITS=$hits TERM=dumb
zpty inner zsh -f -i
zpty -w inner "source $HOME/setup"

# offers LINE EXPECTED...: each is offered at the end of the line
offers() {
  local line=$1 expected tries=0
  shift
  : >$hits
  zpty -w -n inner "$line"$'\t\x18'
  until grep -qx END $hits; do
    if (( ++tries > 600 )); then print -u2 "no answer for: $line"; exit 1; fi
    zpty -r -t inner >/dev/null # a terminal that nobody reads fills up
    zselect -t 10
  done
  for expected; do
    grep -qxF -- $expected $hits && continue
    print -u2 -r -- "no $expected for: $line; but: ${(f)$(<$hits)}"
    failed=1
  done
}
# refuses LINE WORD: that is not offered
refuses() {
  offers $1
  if grep -qxF -- $2 $hits; then print -u2 -r -- "$2 is offered for: $1"; failed=1; fi
}

program=${(q)program}
offers "$program --he" --help
offers "$program --no-" --no-rotate --no-queue
offers "$program --pp" --ppd
offers "$program prin" printer-info
offers "$program printer-info --js" --json
refuses "$program printer-info --" --media
offers "$program printer-info my" "my\\ printer.ppd"
offers "$program --colour-space g" gray
offers "$program --colour-space=g" gray
offers "$program --intent " perceptual relative saturation absolute
offers "$program make-separation --intent rel" relative
offers "$program --scale s" shrink
refuses "$program --scale " PERCENT
offers "$program --separation " Standard
offers "$program --hot-folder ho" "hot\\ folder"
refuses "$program --hot-folder " "my\\ printer.ppd"
offers "$program --ppd my\\ printer.ppd --media " A4
offers "$program --ppd=my\\ printer.ppd --media=" A4
offers "$program --ppd my\\ printer.ppd --resolution 6" 600dpi
exit $failed

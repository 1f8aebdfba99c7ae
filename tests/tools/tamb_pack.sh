#!/bin/bash
# tamb-pack as a person at a shell meets it: what it prints where, and its exit status.
# tamb_pack.sh TAMB_PACK SOURCE_FOLDER
set -euo pipefail
pack=$1
examples=$2/docs/examples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# expect STATUS TEXT COMMAND...: the status, and a text in what it prints ("" for nothing printed at all)
expect() {
    local wanted=$1 text=$2 status=0
    shift 2
    "$@" >out 2>&1 </dev/null || status=$?
    if [ "$status" -ne "$wanted" ] || { [ -z "$text" ] && [ -s out ]; } || ! grep -qF -- "$text" out; then
        [ -z "$text" ] && [ ! -s out ] && [ "$status" -eq "$wanted" ] && return
        echo "status $status instead of $wanted, or not '$text': $*"
        cat out
        exit 1
    fi
}

expect 2 'usage: tamb-pack COMMAND' "$pack"
expect 0 'verify' "$pack" --help
for command in list verify extract build names dump; do
    expect 0 "usage: tamb-pack $command" "$pack" $command --help
    expect 2 'something is missing' "$pack" $command
    expect 2 "unknown option '--wrong'" "$pack" $command --wrong
done
for command in list verify names dump; do
    expect 1 'no-such-file: ' "$pack" $command no-such-file
done
for command in extract build; do
    expect 1 'no-such-file: ' "$pack" $command no-such-file x
done
expect 2 "no command 'paint'" "$pack" paint
expect 2 '--names takes a file' "$pack" build m p --names

expect 0 '' "$pack" build "$examples/formats.toml" good.dat
expect 0 '1 x 1, RGB' "$pack" list good.dat
printf '[[entry]]\nname = "my note"\nraw = "%s/note.txt"\n' "$examples" >named.toml
expect 0 '#define FXNAME_MY_NOTE  100' "$pack" names named.toml
expect 1 'warning: entry 72' "$pack" verify good.dat # its numbers are not those of a show
head -c 200 good.dat >short.dat
expect 1 'entry 1 has 385 bytes' "$pack" verify short.dat
expect 1 'what to do: build the package again' "$pack" verify short.dat
expect 1 'is not a package' "$pack" list "$examples/note.txt"
expect 1 'there is no entry 99' "$pack" extract good.dat 99 x
expect 2 "'two' is no entry's number" "$pack" extract good.dat two x
expect 0 '' "$pack" extract good.dat 3 dot.png
cmp dot.png "$examples/dot.png"
expect 0 '' "$pack" extract good.dat parts
expect 1 '--force' "$pack" extract good.dat parts
expect 0 '' "$pack" extract good.dat parts --force --obj
{ echo 'scramble = true' && cat "$examples/formats.toml"; } >scrambled.toml
expect 0 '' "$pack" build scrambled.toml scrambled.dat --files "$examples" --names names.h
[ "$(head -c 10 scrambled.dat | tail -c 6)" = pck01s ]
[ -f names.h ]
printf 'o \033[31m\nv 0 0 0\nf 1 1 1\n' >red.obj
printf '[[entry]]\nid = 1\nmodel = "red.obj"\n' >red.toml
expect 0 '' "$pack" build red.toml red.dat
expect 0 '\u001B[31m' "$pack" list red.dat # no command to the terminal
echo 'x = ' >wrong.toml
expect 1 'wrong.toml:1: ' "$pack" build wrong.toml p.dat

# A file that may not grow to its size: the package that was there stays.
printf 'old' >kept.dat
expect 1 'kept.dat: cannot be written: File too large' bash -c "ulimit -f 1; exec '$pack' build '$examples/formats.toml' kept.dat"
[ "$(cat kept.dat)" = old ] && [ ! -e kept.dat.new ]

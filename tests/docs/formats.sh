#!/bin/sh
# Compares the dumps in docs/formats.md with what tamb-pack dumps of the packages that docs/examples builds. A dump is
# the fenced block behind a line <!-- dump: PACKAGE [ID] -->.
# formats.sh TAMB_PACK SOURCE_FOLDER [--update]: --update puts the right dumps into the document.
set -eu
pack=$1
source=$2
document=$source/docs/formats.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$pack" build "$source/docs/examples/formats.toml" "$work/formats.dat"
"$pack" build "$source/docs/examples/tiny.toml" "$work/tiny.dat"
"$pack" build "$source/docs/examples/tiny.toml" "$work/scrambled.dat" --scramble

awk -v pack="$pack" -v work="$work" '
    /^<!-- dump: / {
        print
        sub(/^<!-- dump: /, ""); sub(/ -->$/, "")
        command = "cd " work " && \"" pack "\" dump " $0
        fence = 0
        next_is_dump = 1
        ++dumps
        next
    }
    next_is_dump && /^```/ {
        if (++fence == 1) {
            print
            while ((command | getline line) > 0)
                print line
            if (close(command) != 0)
                exit 1
        } else {
            print
            next_is_dump = 0
        }
        next
    }
    !next_is_dump { print }
    END { if (dumps < 9) { print "only " dumps " dumps are there" > "/dev/stderr"; exit 1 } }
' "$document" >"$work/formats.md"

if [ "${3-}" = --update ]; then
    cp "$work/formats.md" "$document"
elif ! diff -u "$document" "$work/formats.md"; then
    echo "docs/formats.md shows other bytes than tamb-pack makes; if these are right:"
    echo "  tests/docs/formats.sh $pack $source --update"
    exit 1
fi

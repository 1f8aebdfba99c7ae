#!/bin/bash
# What an exploit meets in the program and in its modules: read from the files themselves.
# hardening.sh READELF PROGRAM MODULE...
set -euo pipefail
readelf=$1
program=$2
shift
wrong=0
# expect FILE WHAT PATTERN READELF_OPTION...: a line of what readelf prints is like the pattern
expect() {
    local found
    found=$("$readelf" --wide "${@:4}" "$1")
    grep -Eq -- "$3" <<<"$found" || { echo "$1: $2" && wrong=1; }
}
expect "$program" 'its code is always at the same place' 'Flags: .*\bPIE\b' --dynamic
for file in "$@"; do
    expect "$file" 'it is no position independent file' 'Type: +DYN\b' --file-header
    expect "$file" 'its tables of functions stay writable' '^ +GNU_RELRO ' --program-headers
    expect "$file" 'functions are looked up late, so the table has to stay writable' 'FLAGS.*\b(BIND_)?NOW\b' --dynamic
    expect "$file" 'code can be run on the stack' '^ +GNU_STACK +([^ ]+ +){5}RW +' --program-headers
    expect "$file" 'no function looks after its stack' ' __stack_chk_fail\b' --dyn-syms
done
expect "$program" 'no call of the C library is checked' ' __[a-z]+_chk\b' --dyn-syms
# A section that can be written and run, in any of them.
for file in "$@"; do
    if "$readelf" --wide --program-headers "$file" | grep -Eq '^ +LOAD .* RWE '; then
        echo "$file: memory that can be written and run" && wrong=1
    fi
done
exit $wrong

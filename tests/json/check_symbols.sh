#!/bin/sh
# check_symbols.sh NM PROGRAM: fails when PROGRAM defines anything of a class QJson… in the global namespace.
set -eu
nm=$1
program=$2

# A stripped program still has its dynamic symbols. Leaves the demangled names: the address and type letter go.
symbols=$("$nm" -C --defined-only "$program" 2>/dev/null; "$nm" -D -C --defined-only "$program" 2>/dev/null)
names=$(printf '%s\n' "$symbols" | sed -n 's/^[0-9a-fA-F]* *[A-Za-z] //p' | sort -u)
if [ -z "$names" ]; then
    echo "$program: no symbols to look at" >&2
    exit 2
fi

found=$(printf '%s\n' "$names" |
    sed -n -E '/^((non-virtual |virtual )?(thunk to |vtable for |typeinfo for |typeinfo name for |guard variable for ))?QJson[A-Za-z]*(::|$)/p')
if [ -n "$found" ]; then
    printf '%s\n' "$found" | sed "s|^|$program: defines |" >&2
    exit 1
fi

#!/usr/bin/env bash
# check_digest.sh [--best] EXPECTED COMMAND...
#
# Runs COMMAND, which is fenn_digest or an emulator with it, on every instruction set that runs here (--best: on the best
# one only), and fails unless each prints exactly what the file EXPECTED holds.
set -euo pipefail

best_only=no
if [ "$1" = --best ]; then
    best_only=yes
    shift
fi
expected=$1
shift

targets=$("$@" --list)
[ -n "$targets" ]
[ $best_only = no ] || targets=${targets%%$'\n'*}

status=0
for target in $targets; do
    if diff "$expected" <("$@" --target "$target" || echo "exit status $?"); then
        echo "$target: same bits"
    else
        echo "$target: other bits; the lines above marked > are its own"
        status=1
    fi
done
exit $status

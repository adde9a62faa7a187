#!/bin/sh
# Runs one test function of a script in an empty folder: run_test.sh KRIGE SCRIPT FUNCTION
# Exit status: 0 passed, 1 failed, 77 skipped.
set -u

program=$1
script=$2
function=$3
# For the scripts: shellcheck disable=SC2034
examples=$(cd "$(dirname "$0")/../../../examples" && pwd)
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' INT TERM
mkdir "$scratch/work" "$scratch/log"
cd "$scratch/work" || exit 1

fail()
{
    echo "FAILED: $*"
    echo "--- exit status: ${status:-none}"
    echo "--- standard output:"; cat "$scratch/log/out" 2>/dev/null
    echo "--- standard error:"; cat "$scratch/log/err" 2>/dev/null
    echo "--- folder:"; ls -la
    exit 1
}

skip()
{
    echo "SKIPPED: $*"
    exit 77
}

# krige ARGUMENTS...: runs the program and keeps its exit status and streams.
krige()
{
    "$program" "$@" >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
}

expect_status()
{
    [ "$status" -eq "$1" ] || fail "expected exit status $1"
}

expect_stderr()
{
    grep -qF -- "$1" "$scratch/log/err" || fail "standard error lacks: $1"
}

expect_no_stderr()
{
    ! grep -qF -- "$1" "$scratch/log/err" || fail "standard error must not hold: $1"
}

expect_stdout()
{
    grep -qF -- "$1" "$scratch/log/out" || fail "standard output lacks: $1"
}

expect_empty_stdout()
{
    [ ! -s "$scratch/log/out" ] || fail "standard output is not empty"
}

# expect_file NAME <<EOF: the very bytes of standard input.
expect_file()
{
    cat >"$scratch/log/expected"
    cmp "$scratch/log/expected" "$1" || { cat "$1"; fail "$1 has other bytes"; }
}

# expect_files NAMES...: these and no others, hidden ones included.
expect_files()
{
    expected=$(for name in "$@"; do echo "$name"; done | LC_ALL=C sort)
    [ "$(ls -A | LC_ALL=C sort)" = "$expected" ] || fail "expected exactly these files: $*"
}

# samples.csv: z = x + 10 y at the corners of the unit square, and at its centre.
write_samples()
{
    printf 'x,y,z\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n0.5,0.5,5.5\n' >samples.csv
}

# predict ARGUMENTS...: from samples.csv, with its usual columns.
predict()
{
    krige predict samples.csv --inputs x,y --outputs z "$@"
}

. "$script"
"$function"
exit 0

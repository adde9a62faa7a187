#!/bin/sh
# Holds docs/reliability.md to what stands: its scripts exist, its links lead somewhere, and each of its ctest commands on
# the release preset chooses at least one test.
# usage: check_reliability.sh SOURCE_DIR BUILD_DIR
set -eu
source_dir=$1
build_dir=$2
page=$source_dir/docs/reliability.md
fail() { echo "docs/reliability.md: $*" >&2; exit 1; }

for script in $(grep -o '`script/[a-z]*' "$page" | tr -d '`'); do
    [ -x "$source_dir/$script" ] || fail "$script is not there"
done
for link in $(grep -o '](\([^)#]*\))' "$page" | sed 's/](\(.*\))/\1/'); do
    [ -e "$source_dir/docs/$link" ] || fail "links to $link, which is not there"
done

patterns=$(grep -o '`ctest --preset release -R [^ `]*' "$page" | sed "s/.* //; s/'//g")
[ -n "$patterns" ] || fail "names no ctest command"
for pattern in $patterns; do
    ctest --test-dir "$build_dir" -N -R "$pattern" | grep -q '^Total Tests: [1-9]' || fail "no test matches $pattern"
done

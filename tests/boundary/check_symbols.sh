#!/usr/bin/env bash
# check_symbols.sh NM LIBRARY ALLOWED REQUIRED
#
# Fails unless every dynamic symbol that LIBRARY defines matches, as a whole, a regular expression of the file ALLOWED,
# and every line of the file REQUIRED is among them.
set -euo pipefail
export LC_ALL=C

nm=$1 library=$2 allowed=$3 required=$4

defined=$("$nm" -DC --defined-only "$library" | sed -E 's/^[0-9a-f]* +[A-Za-z] //' | sort -u)
[ -n "$defined" ] || { echo "no symbols read from $library"; exit 1; }

status=0
if unwanted=$(grep -vxE -f "$allowed" <<<"$defined"); then
    printf 'exported, but not part of the boundary:\n%s\n' "$unwanted"
    status=1
fi
if missing=$(sort -u "$required" | comm -23 - <(echo "$defined") | grep .); then
    printf 'part of the boundary, but not exported:\n%s\n' "$missing"
    status=1
fi
[ $status -ne 0 ] || echo "$(wc -l <<<"$defined") symbols, all of the boundary and no other"
exit $status

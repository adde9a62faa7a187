#!/usr/bin/env bash
# check_older_host.sh OLDER_HEADERS HEADERS ANSWERS OLDER_HOST HOST [EMULATOR]
#
# Fails unless OLDER_HOST, compiled against OLDER_HEADERS, and HOST, compiled against HEADERS, both print ANSWERS. Says
# how the headers differ.
set -euo pipefail

older_headers=$1 headers=$2 answers=$3 older_host=$4 host=$5
shift 5

status=0
for program in "$older_host" "$host"; do
    if ! diff "$answers" <("$@" "$program" || echo "exit code $?"); then
        echo "$program answers otherwise: < as stored, > today"
        status=1
    fi
done

changed=0
while read -r header; do
    diff -U0 --label "$header then" --label "$header now" "$older_headers/$header" "$headers/$header" || changed=1
done < <(cd "$older_headers" && find . -name '*.h' | sort)
if [ $changed = 0 ]; then
    echo "The headers are the same."
elif [ $status = 0 ]; then
    echo "The headers differ, but compatibly: a host of the older ones gets the same answers."
else
    echo "The headers differ, and not compatibly."
fi
exit $status

#!/usr/bin/env bash
# check_dynamic_section.sh READELF LIBRARY SONAME RUNPATH NEEDED...
#
# Fails unless LIBRARY has exactly this SONAME and this search path ("" for none), no RPATH beside it, and needs no
# library but those named (without the ending .so.N).
set -euo pipefail
export LC_ALL=C

readelf=$1 library=$2 soname=$3 runpath=$4
shift 4

section=$("$readelf" -dW "$library")
entries() { sed -nE "s/.*\($1\).*\[(.*)\]/\1/p" <<<"$section"; }

status=0
expect() {
    if [ "$2" != "$3" ]; then
        echo "$1 of $library is '$2' instead of '$3'"
        status=1
    fi
}
expect SONAME "$(entries SONAME)" "$soname"
expect RUNPATH "$(entries RUNPATH)" "$runpath"
expect RPATH "$(entries RPATH)" ""
needed=$(entries NEEDED)
[ -n "$needed" ] || { echo "$library needs no library at all"; status=1; }
for library_name in $needed; do
    name=${library_name%%.so*}
    case " $* " in
    *" $name "*) ;;
    *)
        echo "$library needs $library_name"
        status=1
        ;;
    esac
done
exit $status

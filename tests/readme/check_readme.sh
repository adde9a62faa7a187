#!/bin/sh
# Holds README.md to what stands: its lines of C++ stand together in examples/minimal_host.cpp, its krige commands run and
# write what they say, its scripts exist, its links lead somewhere.
# usage: check_readme.sh SOURCE_DIR KRIGE
set -eu
source_dir=$1
krige=$2
readme=$source_dir/README.md
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "README.md: $*" >&2; exit 1; }

# block LANGUAGE: the contents of the fenced blocks of that language
block() { awk -v fence="\`\`\`$1" '$0 == "```" { inside = 0 } inside { print } $0 == fence { inside = 1 }' "$readme"; }

block cpp > "$folder/excerpt.cpp"
[ -s "$folder/excerpt.cpp" ] || fail "shows no C++"
# The excerpt as one run of lines of the example.
awk 'NR == FNR { excerpt = excerpt $0 "\n"; next } { program = program $0 "\n" }
     END { exit index("\n" program, "\n" excerpt) ? 0 : 1 }' "$folder/excerpt.cpp" "$source_dir/examples/minimal_host.cpp" ||
    fail "its C++ does not stand in examples/minimal_host.cpp"

block sh > "$folder/commands"
grep -q '^krige predict ' "$folder/commands" || fail "shows no krige predict"
grep -q '^krige validate ' "$folder/commands" || fail "shows no krige validate"
ln -s "$source_dir/examples" "$folder/examples"
cd "$folder"
grep '^krige ' commands > krige_commands
while read -r line; do
    eval "set -- ${line#krige }"
    "$krige" "$@" > output.txt 2> report.txt || { cat report.txt >&2; fail "fails: $line"; }
    case $line in
    *" -o "*) [ -s "${line##* -o }" ] || fail "writes nothing: $line" ;;
    "krige validate "*) grep -q RMSE output.txt || fail "prints no error figures: $line" ;;
    *) [ -s output.txt ] || fail "prints nothing: $line" ;;
    esac
done < krige_commands

for name in variogram rainfall; do
    [ -s "$name.png" ] || fail "its commands draw no $name.png"
done
for script in $(grep -o '^script/[a-z]*' commands); do
    [ -x "$source_dir/$script" ] || fail "$script is not there"
done
for link in $(grep -o '](\([^)#]*\))' "$readme" | sed 's/](\(.*\))/\1/'); do
    case $link in http*) continue ;; esac
    [ -e "$source_dir/$link" ] || fail "links to $link, which is not there"
done

#!/bin/sh
# Holds README.md to what stands: its C++ program is examples/minimal_host.cpp to the letter, its krige commands run and
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

block cpp > "$folder/program.cpp"
diff -u "$source_dir/examples/minimal_host.cpp" "$folder/program.cpp" || fail "its program is not examples/minimal_host.cpp"

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
    *" -o "*) [ -s "${line##* }" ] || fail "writes nothing: $line" ;;
    *) grep -q RMSE output.txt || fail "prints no error figures: $line" ;;
    esac
done < krige_commands

for script in $(grep -o '^script/[a-z]*' commands); do
    [ -x "$source_dir/$script" ] || fail "$script is not there"
done
for link in $(grep -o '](\([^)#]*\))' "$readme" | sed 's/](\(.*\))/\1/'); do
    case $link in http*) continue ;; esac
    [ -e "$source_dir/$link" ] || fail "links to $link, which is not there"
done

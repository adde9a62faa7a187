project=$(cd "$examples/.." && pwd)

subcommands()
{
    "$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\{1,\}\)$/\1/p'
}

# options SUBCOMMAND: all long ones of its help.
options()
{
    "$program" "$1" --help | sed -n 's/^  \(-.,\)\{0,1\}\(--[a-z-]*\).*/\2/p'
}

test_EverySubcommandIsListed()
{
    [ "$(subcommands | sort | tr '\n' ' ')" = 'info predict report tune validate variogram ' ] || fail "$(subcommands)"
}

test_EveryOptionHasADefaultOrIsNeededAndAnExample()
{
    for subcommand in $(subcommands); do
        "$program" "$subcommand" --help | awk '
            function check() { ++n; if (term != "" && (text !~ /Default:|[Nn]eeded/ || text !~ /Example/))
                { print term; bad = 1 } term = "" }
            /^  -/ { check(); if ($0 !~ /--(help|version)/) { term = $0; text = "" } next }
            /^        / { text = text " " $0; next }
            { check() }
            END { check(); exit bad || n < 2 }' || fail "$subcommand: incomplete"
    done
}

test_HelpFitsTheTerminal()
{
    for subcommand in $(subcommands); do
        "$program" "$subcommand" --help | grep -v '^  krige ' | awk 'length > 80 { print; bad = 1 } END { exit bad }' ||
            fail "$subcommand: too wide"
    done
}

test_TheManualPageIsMadeFromTheHelp()
{
    command -v help2man >/dev/null || skip 'no help2man here'
    "$project/script/make_man_page" "$program" >krige.1 || fail 'make_man_page fails'
    diff "$project/docs/krige.1" krige.1 || fail 'docs/krige.1 is old: run script/make_man_page KRIGE >docs/krige.1'
}

test_EveryOptionStandsInTheManualPage()
{
    sed 's/\\-/-/g; s/\\f[BIR]//g' "$project/docs/krige.1" >plain
    for subcommand in $(subcommands); do
        heading=$(echo "krige $subcommand" | tr '[:lower:]' '[:upper:]')
        sed -n "/^.SH \"$heading\"/,/^.SH /p" plain >section
        options "$subcommand" | grep -qx -- --help || fail "$subcommand: options not found"
        for option in $(options "$subcommand"); do
            grep -qE -- "^(-., )?$option( |$)" section || fail "$subcommand: $option is missing"
        done
    done
}

test_TheManualPageIsWellFormed()
{
    command -v man >/dev/null || skip 'no man here'
    LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$project/docs/krige.1" 2>warnings >/dev/null ||
        { cat warnings; fail 'man fails'; }
    [ ! -s warnings ] || { cat warnings; fail 'man warns'; }
}

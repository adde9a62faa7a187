project=$(cd "$examples/.." && pwd)

# completed WORD... : what bash offers for the last word, one a line.
completed()
{
    command -v bash >/dev/null || skip 'no bash here'
    mkdir -p bin
    ln -sf "$program" bin/krige
    PATH=$PWD/bin:$PATH bash -c '
        . "$1" || exit 1
        shift
        COMP_WORDS=("$@")
        COMP_CWORD=$(($# - 1))
        _krige
        printf "%s\n" "${COMPREPLY[@]}"' bash "$project/host/krige.bash-completion" krige "$@" >"$scratch/log/offered" ||
        fail 'bash fails'
}

offers()
{
    grep -qxF -- "$1" "$scratch/log/offered" || { cat "$scratch/log/offered"; fail "not offered: $1"; }
}

lacks()
{
    ! grep -qxF -- "$1" "$scratch/log/offered" || fail "must not be offered: $1"
}

test_SubcommandsAreOffered()
{
    completed ''
    for subcommand in predict validate tune variogram report info; do offers "$subcommand"; done
    offers help
    completed va
    offers validate
    offers variogram
    lacks predict
}

test_OptionsOfTheSubcommandAreOffered()
{
    completed predict samples.csv --
    for option in --inputs --grid --at --output --plot --variance --quiet --config; do offers "$option"; done
    lacks --leave-one-out
    completed validate samples.csv --le
    offers --leave-one-out
}

test_SubcommandsAreOfferedBehindHelp()
{
    completed help ''
    for subcommand in predict validate tune variogram report info; do offers "$subcommand"; done
    lacks help
}

test_WaysToReadAreOffered()
{
    completed predict samples.csv --delimiter ''
    offers space
    offers tab
    completed predict samples.csv --decimal ''
    offers comma
}

test_UnitsOfLagsAreOffered()
{
    completed variogram samples.csv --lag ''
    offers normalised
    offers units
}

test_FilesAreOffered()
{
    : >'my samples.csv'
    completed tune my
    offers 'my samples.csv'
}

test_ColumnsOfTheSamplesAreOffered()
{
    printf '"x";y\t;$(touch pwned);zone_1\r\n1;2;3;4\n' >samples.csv
    completed predict samples.csv --inputs ''
    offers x
    offers zone_1
    completed predict samples.csv --inputs x,zo
    offers x,zone_1
    [ ! -e pwned ] || fail 'a header row ran a command'
}

test_ValuesAreOffered()
{
    completed predict samples.csv --plot-column ''
    for word in estimate stderr variance lo hi; do offers "$word"; done
    completed predict samples.csv --points ''
    for word in none dots values; do offers "$word"; done
    completed tune samples.csv --objective ''
    offers likelihood
    offers rmse
    offers mae
    offers crps
    completed tune samples.csv --anisotropy ''
    offers search
    completed predict samples.csv --anisotropy ''
    lacks search
    completed predict samples.csv --sill ''
    offers auto
    offers sample
}

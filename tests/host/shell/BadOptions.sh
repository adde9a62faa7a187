# Every option of every subcommand with values that mean nothing: an error that says which, or a finite answer.

# options_with_values SUBCOMMAND: the long ones of its help that take a value, one a line.
options_with_values()
{
    "$program" "$1" --help | sed -n 's/^  \(-.,\)\{0,1\}\(--[a-z-]*\) [A-Z].*/\2/p'
}

# run_with SUBCOMMAND OPTION=VALUE: from samples.csv, with whatever else the subcommand needs.
run_with()
{
    rm -f out.csv
    case $1 in
    predict) set -- "$@" --inputs x,y --outputs z --grid 3x3 -o out.csv ;;
    tune) set -- "$@" --inputs x,y --outputs z --max-trials 3 ;;
    *) set -- "$@" --inputs x,y --outputs z ;;
    esac
    # What is tried takes the place of what is needed: an option is given once.
    subcommand=$1
    tried=$2
    shift 2
    needed=$#
    while [ "$needed" -gt 0 ]; do
        word=$1
        value=$2
        shift 2
        needed=$((needed - 2))
        case ${tried%%=*} in
        "$word") continue ;;
        --output) [ "$word" != -o ] || continue ;;
        esac
        set -- "$@" "$word" "$value"
    done
    krige "$subcommand" samples.csv "$tried" "$@"
}

# is_sane WHAT: no death by a signal, no silent failure, and nothing infinite or absurd where all is said to be well.
is_sane()
{
    [ "$status" -le 2 ] || fail "$1: exit status $status"
    if [ "$status" -ne 0 ]; then
        grep -q '^krige: .' "$scratch/log/err" || fail "$1: no message"
        [ ! -e out.csv ] || fail "$1: an output is left"
    elif [ -e out.csv ]; then
        ! grep -qiE 'nan|inf' out.csv || fail "$1: $(cat out.csv)"
        awk -F, 'NR > 1 && ($3 > 1000 || $3 < -1000) { bad = 1 } END { exit bad }' out.csv || fail "$1: $(cat out.csv)"
    fi
}

# nonsense SUBCOMMAND: each option with a path, a number and a text that cannot be what it takes.
nonsense()
{
    write_samples
    options_with_values "$1" >options
    [ "$(wc -l <options)" -ge 4 ] || fail "options of $1 not found"
    while read -r option; do
        run_with "$1" "$option=no/such/nonsense"
        is_sane "$1 $option=no/such/nonsense"
        case $option in
        --units | --output-units | --title | --missing | --comment) ;; # any text will do
        *) [ "$status" -ne 0 ] || fail "$1 $option takes nonsense" ;;
        esac
        for value in '' nan -inf -1e999 -1.5 99999999999999999999999 '1,,"'; do
            run_with "$1" "$option=$value"
            is_sane "$1 $option='$value'"
        done
    done <options
}

test_PredictTakesNoNonsense()
{
    nonsense predict
}

test_ValidateTakesNoNonsense()
{
    nonsense validate
}

test_TuneTakesNoNonsense()
{
    nonsense tune
}

test_VariogramTakesNoNonsense()
{
    nonsense variogram
}

test_InfoTakesNoNonsense()
{
    nonsense info
}

test_FlagsTakeNoNonsense()
{
    write_samples
    for subcommand in predict validate tune variogram; do
        for flag in $("$program" "$subcommand" --help | sed -n 's/^  \(--[a-z-]*\)$/\1/p'); do
            [ "$flag" != --help ] || continue
            run_with "$subcommand" "$flag=nonsense"
            is_sane "$subcommand $flag=nonsense"
            [ "$status" -eq 2 ] || fail "$subcommand $flag takes nonsense"
        done
    done
}

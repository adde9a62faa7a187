# The commands run in a terminal of their own, made by script.

require_script()
{
    command -v script >/dev/null || skip 'no script here'
}

# in_terminal SECONDS ARGUMENTS...: krige in a terminal whose screen goes to screen.txt; Ctrl-C is typed after SECONDS.
in_terminal()
{
    require_script
    seconds=$1
    shift
    { sleep "$seconds"; printf '\003'; sleep 1; } | script -qefc "$program $*" "$scratch/log/screen.txt" >/dev/null 2>&1
    status=$?
}

# A slow machine takes long before there is progress to show.
wait_for_progress()
{
    waited=0
    until grep -q ' left' "$scratch/log/screen.txt" 2>/dev/null || [ "$waited" -ge 60 ]; do
        sleep 1
        waited=$((waited + 1))
    done
}

# in_progress ARGUMENTS...: likewise; Ctrl-C is typed a second after progress is shown.
in_progress()
{
    require_script
    { wait_for_progress; sleep 1; printf '\003'; sleep 1; } |
        script -qefc "$program $*" "$scratch/log/screen.txt" >/dev/null 2>&1
    status=$?
}

expect_screen()
{
    grep -qE -- "$1" "$scratch/log/screen.txt" || { cat "$scratch/log/screen.txt"; fail "the screen lacks: $1"; }
}

# Hours of work.
endless="samples.csv --inputs x,y --outputs z --grid x=0:1:1000000,y=0:1:1000000 --yes -o out.csv"

test_PredictShowsRateAndTimeLeftAndCtrlCLeavesNothing()
{
    write_samples
    # shellcheck disable=SC2086
    in_progress predict $endless
    expect_status 130
    expect_screen '[0-9]+ of 1000000000000 targets \([0-9]+ %\), [0-9.]+/s, [0-9]+ h [0-9]+ min left'
    expect_files samples.csv
}

test_QuietShowsNoProgress()
{
    write_samples
    # shellcheck disable=SC2086
    in_terminal 3 predict $endless --quiet
    expect_status 130
    ! grep -q 'targets' "$scratch/log/screen.txt" || fail 'it is not quiet'
    expect_files samples.csv
}

# write_scattered N: points without order.
write_scattered()
{
    awk -v n="$1" 'BEGIN { srand(1); print "x,y,z"; for (i = 0; i < n; ++i) print rand() "," rand() "," rand() }' >samples.csv
}

test_ValidateStopsAtCtrlC()
{
    write_scattered 1500
    in_progress validate samples.csv --inputs x,y --outputs z --folds 1500 -o points.csv --plot fit.gp
    expect_status 130
    expect_screen '[0-9]+ of 1500 folds \([0-9]+ %\), [0-9.]+/s, .* left'
    expect_files samples.csv
}

test_TuneShowsItsTrialsAndStopsAtCtrlC()
{
    write_scattered 600
    in_progress tune samples.csv --inputs x,y --outputs z --objective crps --repeats 40 -o best.toml \
        --trials trials.csv
    expect_status 130
    expect_screen '[0-9]+ of 300 trials \([0-9]+ %\), [0-9.]+/s, .* left'
    expect_screen 'krige: stopped after [0-9]+ trials? of 300; the best settings so far are written to best.toml'
    expect_files samples.csv best.toml trials.csv
}

test_AFinishedRunWipesItsProgress()
{
    write_scattered 400 # some seconds of work
    require_script
    script -qefc "$program predict samples.csv --inputs x,y --outputs z --exact --grid 700x700 -o out.csv" \
        "$scratch/log/screen.txt" </dev/null >/dev/null 2>&1
    status=$?
    expect_status 0
    expect_screen 'of 490000 targets'
    # The last that is drawn over the line is nothing.
    tr '\r' '\n' <"$scratch/log/screen.txt" | grep -A1 'of 490000 targets' | tail -n 1 | grep -q "^$(printf '\033')\[K" ||
        fail 'the line stays'
}

test_NoTerminalNoProgress()
{
    write_samples
    predict --grid 1000x1000 -o out.csv
    expect_status 0
    expect_no_stderr 'targets ('
}

test_ProgressCanBeAskedFor()
{
    write_scattered 400 # some seconds of work
    predict --exact --grid 700x700 -o out.csv --progress
    expect_status 0
    expect_stderr 'progress: '
    grep -qE 'progress: [0-9]+ of 490000 targets \([0-9]+ %\), [0-9]+/s, ([0-9]+ min )?[0-9]+ s left' "$scratch/log/err" || fail 'no figures'
}

test_QuietAndProgressAreAUsageError()
{
    write_samples
    predict --grid 2x2 -o out.csv --progress --quiet
    expect_status 2
    expect_files samples.csv
}

# expect_row LINE VALUES: the line of out.csv, each value within 1e-12 of itself.
expect_row()
{
    sed -n "$1p" out.csv | awk -F, -v expected="$2" '{ n = split(expected, e, ","); if (n != NF) exit 1
        for (i = 1; i <= n; ++i) if (($i - e[i]) ^ 2 > 1e-24 * e[i] ^ 2) exit 1 }' ||
        { cat out.csv; fail "line $1 is not $2"; }
}

test_LogarithmsComeBackUnbiasedWithMediansAndIntervals()
{
    # Midway between two samples the weights are a half: y = ln 2. gamma is 1 between the samples and 0.6875 at half of
    # the range, so that mu = 0.1875 and the variance 0.875: exp(ln 2 + 0.5 (0.4375 - 0.1875)).
    printf 'x,z\n0,1\n1,4\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --grid x=0.5:0.5:1 --transform log --sill 0.5 --variance \
        --interval 95 -o out.csv
    expect_status 0
    expect_stderr 'transform: the model is one of natural logarithms'
    [ "$(head -n 1 out.csv)" = 'x,z,z_median,variance,z_stderr,z_lo,z_hi' ] || fail 'another header row'
    expect_row 2 "$(awk 'BEGIN { s = sqrt(0.5 * 0.875); f = 1.959963984540054
        printf "0.5,%.17g,2,0.875,%.17g,%.17g,%.17g", 2 * exp(0.125), s, 2 * exp(-f * s), 2 * exp(f * s) }')"
}

test_EveryEngineComesBackToTheSameUnits()
{
    for options in '' '--exact' '--nearest 40'; do
        # shellcheck disable=SC2086
        krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --transform log --drift 1 \
            --nugget 0.1 --scale 1,1 --sill 0.6 --grid 4x3 $options -o "out$options.csv"
        expect_status 0
    done
    paste -d, 'out.csv' 'out--exact.csv' | awk -F, 'NR > 1 && ($3 - $7) ^ 2 > 1e-18 * $7 ^ 2 { exit 1 }' ||
        fail 'the exact engine gives other expectations'
    ! cmp -s out.csv 'out--nearest 40.csv' || fail 'the local model was not asked'
}

test_AValueWithoutALogarithmIsNamedWithItsLine()
{
    printf 'x,z\n0,1\n1,0\n2,3\n' >samples.csv
    for command in 'predict --grid 3 -o out.csv' validate 'validate --leave-one-out'; do
        # shellcheck disable=SC2086
        krige ${command%% *} samples.csv --inputs x --outputs z --transform log ${command#"${command%% *}"}
        expect_status 1
        expect_stderr "samples.csv, line 3, column 'z': 0 has no logarithm: with --transform log every value must be above 0"
        [ ! -e out.csv ] || fail 'a file was left behind'
    done
}

test_AnotherTransformIsAUsageError()
{
    write_samples
    predict --grid 2x2 --transform square -o out.csv
    expect_status 2
    expect_stderr "--transform: must be log or none, not 'square'"
}

test_EstimatesAreClamped()
{
    printf 'x,z\n0,0\n1,1\n2,4\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --drift 1 --grid x=-2:4:7 --interval 90 --clamp 0.5:3 -o out.csv
    expect_status 0
    expect_stderr 'clamp: estimates are brought into 0.5:3'
    awk -F, 'NR > 1 { for (i = 2; i <= 4; ++i) { if ($i < 0.5 || $i > 3) exit 1; low += $i == 0.5; high += $i == 3 } }
        END { exit !low || !high }' out.csv || { cat out.csv; fail 'a value lies beyond the limits'; }
    krige predict samples.csv --inputs x --outputs z --drift 1 --grid x=-2:4:7 --clamp :3 -o out.csv
    awk -F, 'NR > 1 { low += $2 < 0; if ($2 > 3) exit 1 } END { exit !low }' out.csv || fail 'a missing limit acts'
}

test_LimitsThatAreNoneAreUsageErrors()
{
    write_samples
    while IFS='|' read -r limits message; do
        predict --grid 2x2 --clamp "$limits" -o out.csv
        expect_status 2
        expect_stderr "--clamp: $message"
    done <<EOF
3|needs LO:HI, LO: or :HI, not '3'
1:2:3|needs LO:HI, LO: or :HI, not '1:2:3'
:|needs a limit at least on one side, not ':'
2:1|'2:1' ends below where it begins
a:1|'a' is not a number
0:inf|needs a finite number, not 'inf'
EOF
}

test_ValidateShowsErrorsInTheDatasUnits()
{
    # The largest measured value is 585: errors of logarithms would be below 7.
    krige validate "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --transform log --nugget 0.1 \
        -o points.csv
    expect_status 0
    expect_stderr 'transform: the model is one of natural logarithms'
    awk -F, 'NR > 1 { if (($6 - ($5 - $4)) ^ 2 > 1e-18) bad = 1; sum += $6 ^ 2; n++ }
        END { exit bad || sqrt(sum / n) < 50 || sqrt(sum / n) > 110 }' points.csv || fail 'other errors'
    awk -F, 'NR == FNR { z[FNR] = $4; next } FNR > 1 && $4 != z[FNR] { exit 1 }' "$examples/rainfall/samples.csv" points.csv ||
        fail 'measured values are not those of the file'
    # Left out one by one and by as many folds: one computation by one factorisation, one by a model each.
    krige validate "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --transform log --nugget 0.1 \
        --scale 1,1 --sill 0.6 --leave-one-out --quiet -o left.csv
    expect_status 0
}

test_TheTransformIsKeptInSettingsFiles()
{
    printf 'transform = "log"\nclamp = "1:"\nsill = 0.5\n' >settings.toml
    printf 'x,z\n0,1\n1,4\n2,3\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --grid 5 --config settings.toml -o file.csv
    expect_status 0
    krige predict samples.csv --inputs x --outputs z --grid 5 --transform log --clamp 1: --sill 0.5 -o options.csv
    cmp file.csv options.csv || fail 'the settings file acts otherwise'
    krige predict samples.csv --inputs x --outputs z --grid 5 --config settings.toml --transform none -o none.csv
    [ "$(head -n 1 none.csv)" = 'x,z' ] || fail 'an option does not win'
    krige tune samples.csv --inputs x --outputs z --config settings.toml --held-out 0 --max-trials 5 -o best.toml
    expect_status 0
    grep -qx 'transform = "log"' best.toml || { cat best.toml; fail 'the transform is lost'; }
    grep -qx 'clamp = "1:"' best.toml || { cat best.toml; fail 'the limits are lost'; }
}

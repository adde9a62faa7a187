# table: the error table, its blanks squeezed.
table()
{
    sed '/^$/,$d' "$scratch/log/out" | tr -s ' '
}

# validate ARGUMENTS...: on the rainfall example.
validate()
{
    krige validate "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall "$@"
}

test_ErrorsArePrintedPerOutput()
{
    # At a sample the estimate is the sample: the errors are 2 and -1 for a, 0 and 0 for b.
    printf 'x,a,b\n0,1,0\n1,2,0\n2,4,0\n' >samples.csv
    printf 'b,x,a\n0,0,-1\n0,2,5\n' >truth.csv
    krige validate samples.csv --exact --inputs x --outputs a,b --against truth.csv
    expect_status 0
    table >table
    expect_file table <<EOF
output points RMSE MAE bias R2 MSSE worst CRPS in50% in90% in95%
a 2 1.58114 1.5 0.5 0.722222 nan 2 1.5 0.0 0.0 0.0
b 2 0 0 0 nan nan 0 0 100.0 100.0 100.0
EOF
}

test_WorstPointsComeWithLineAndCoordinates()
{
    printf 'x,a,b\n0,1,0\n1,2,0\n2,4,0\n' >samples.csv
    printf 'b,x,a\n0,0,-1\n0,2,5\n0,1,2\n' >truth.csv
    krige validate samples.csv --inputs x --outputs a --against truth.csv --worst 2
    expect_status 0
    sed -n '/^worst of/,$p' "$scratch/log/out" | tr -s ' ' >worst
    expect_file worst <<EOF
worst of a:
line x measured estimate error stderr
2 0 -1 1 2 0
3 2 5 4 -1 0
EOF
}

test_FoldsAreTheDefault()
{
    validate
    expect_status 0
    expect_stderr 'method: 10 folds of 100 samples, seed 1'
    expect_stderr "sill: of rainfall 66993.3 to 80878.7, each fold's estimated from the samples outside it"
    expect_stdout 'rainfall     100  74.1645  49.3049  -1.18376  0.59191  0.967786  -347.479  36.727   55.0   94.0   97.0'
    expect_stdout 'worst of rainfall:'
}

test_TheSeedDecidesTheFolds()
{
    validate --quiet
    cp "$scratch/log/out" first
    validate --quiet --seed 1
    cmp first "$scratch/log/out" || fail 'the default is not seed 1'
    validate --quiet --seed 2
    ! cmp -s first "$scratch/log/out" || fail 'seed 2 gives the folds of seed 1'
}

test_LeaveOneOutAgreesWithPredictionsFromTheOthers()
{
    # The sample left out lies inside the box: normalisation and range are those of all samples.
    printf 'x,y,z\n0,0,1\n4,0,2\n0,4,4\n4,4,3\n1,2,7\n3,1,5\n' >samples.csv
    krige validate samples.csv --inputs x,y --outputs z --leave-one-out -o points.csv
    expect_status 0
    sed 6d samples.csv >others.csv
    printf 'x,y\n1,2\n' >target.csv
    krige predict others.csv --inputs x,y --outputs z --at target.csv -o out.csv
    expect_status 0
    awk -F, 'NR == FNR { if (FNR == 2) expected = $3; next }
        FNR == 6 { found = 1; exit !($2 == 1 && $5 - expected < 1e-12 && expected - $5 < 1e-12) } END { if (!found) exit 1 }' \
        out.csv points.csv || { cat out.csv points.csv; fail 'the estimates differ'; }
}

test_LeaveOneOutCountsMergedSamplesOnce()
{
    printf 'x,z\n0,1\n1,2\n1,4\n2,8\n3,9\n' >samples.csv
    krige validate samples.csv --inputs x --outputs z --leave-one-out --duplicate-tolerance 0 -o points.csv
    expect_status 0
    expect_stderr 'method: leave one out of 4 points'
    grep -q '^3+4,1,3,' points.csv || { cat points.csv; fail 'the averaged point is missing'; }
}

test_PointsAreWrittenInFull()
{
    validate --quiet -o points.csv --worst 0
    expect_status 0
    [ "$(wc -l <points.csv)" -eq 101 ] || fail 'not a row per sample'
    [ "$(head -n 1 points.csv)" = line,x,y,rainfall,rainfall_estimate,rainfall_error,rainfall_stderr,variance ] ||
        fail "$(head -n 1 points.csv)"
    # The table can be computed anew from the file.
    awk -F, 'NR > 1 { s += $6 * $6 } END { printf "%.6g\n", sqrt(s / (NR - 1)) }' points.csv >rmse
    expect_stdout "$(cat rmse)"
}

test_CoincidentSamplesGetANote()
{
    printf 'x,z\n0,1\n1,2\n1,4\n2,8\n3,9\n4,9\n' >samples.csv
    krige validate samples.csv --inputs x --outputs z --folds 6 --nugget 0.1
    expect_stderr 'note: 2 of 6 samples coincide and are taken as repeated measurements'
}

test_FewerSamplesThanTenAreTheirOwnFolds()
{
    printf 'x,z\n0,1\n1,2\n2,8\n3,9\n' >samples.csv
    krige validate samples.csv --inputs x --outputs z
    expect_status 0
    expect_stderr 'method: 4 folds of 4 samples'
}

test_MoreFoldsThanSamplesIsAUsageError()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --folds 6
    expect_status 2
    expect_stderr '--folds: 6 folds need as many samples, but samples.csv has 5'
}

test_TooFewSamplesWithoutAFoldNameTheCircumstance()
{
    printf 'x,y,z\n0,0,1\n1,0,2\n0,1,3\n' >samples.csv
    krige validate samples.csv --inputs x,y --outputs z
    expect_status 1
    expect_stderr 'without one of 3 folds: samples.csv: '
    expect_empty_stdout
}

test_TwoWaysAtOnceAreAUsageError()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --leave-one-out --against samples.csv
    expect_status 2
    krige validate samples.csv --inputs x,y --outputs z --leave-one-out --folds 2
    expect_status 2
}

test_TheReportGoesToStandardError()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --against samples.csv --worst 0
    expect_status 0
    expect_stderr 'samples: 5 samples read from samples.csv'
    expect_stderr 'strategy: global over 5 points'
    [ "$(wc -l <"$scratch/log/out")" -eq 2 ] || fail 'standard output is not the table alone'
}

test_QuietSaysNothingOnStandardError()
{
    validate --quiet
    expect_status 0
    [ ! -s "$scratch/log/err" ] || fail 'standard error is not empty'
    expect_stdout RMSE
}

test_ATruthFileWithoutRowsIsAnError()
{
    write_samples
    printf 'x,y,z\n' >truth.csv
    krige validate samples.csv --inputs x,y --outputs z --against truth.csv
    expect_status 1
    expect_stderr 'truth.csv: no samples: there is nothing below the header row'
    expect_empty_stdout
}

test_ATruthFileWithoutTheOutputIsAnError()
{
    write_samples
    printf 'x,y\n0,0\n' >truth.csv
    krige validate samples.csv --inputs x,y --outputs z --against truth.csv
    expect_status 1
    expect_stderr "truth.csv, line 1, column 'z': there is no such column"
    expect_empty_stdout
}

test_AMissingTrueValueIsAnErrorWithLineAndColumn()
{
    write_samples
    printf 'x,y,z\n0,0,1\n1,0,\n' >truth.csv
    krige validate samples.csv --inputs x,y --outputs z --against truth.csv
    expect_status 1
    expect_stderr "truth.csv, line 3, column 'z': the value is missing"
    expect_empty_stdout
}

test_SettingsActAsInPredict()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --against samples.csv --nearest 3 --scale 1,2
    expect_status 0
    expect_stderr 'strategy: local over the 3 nearest of 5 points'
}

test_AFullDiskIsAnError()
{
    [ -c /dev/full ] || skip 'no /dev/full here'
    write_samples
    "$program" validate samples.csv --inputs x,y --outputs z --against samples.csv >/dev/full 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'standard output: writing failed'
}

test_FiguresOfUncertaintyCanBeComputedAnewFromTheFile()
{
    validate --leave-one-out --quiet --worst 0 -o points.csv
    expect_status 0
    awk -F, 'NR > 1 { q = $6 / $7; s += q * q; if (q < 0) q = -q; n50 += q <= 0.6744897501960817
            n90 += q <= 1.6448536269514722; n95 += q <= 1.959963984540054 }
        END { printf "%.6g %.1f %.1f %.1f\n", s / (NR - 1), 100 * n50 / (NR - 1), 100 * n90 / (NR - 1), 100 * n95 / (NR - 1) }' \
        points.csv >computed
    awk 'NR == 2 { print $7, $10, $11, $12 }' "$scratch/log/out" >printed
    cmp computed printed || { cat computed printed; fail 'other figures'; }
}

test_StandardErrorsOfLeaveOneOutTakeTheSillOfAllPoints()
{
    validate --leave-one-out -o points.csv
    expect_stderr 'sill: of rainfall 75844.6 by restricted likelihood over 100 points (sample variance 13614.5)'
    awk -F, 'NR > 1 && ($7 * $7 / $8 / 75844.6 - 1) ^ 2 > 1e-10 { bad = 1 } END { exit bad }' points.csv ||
        fail 'another sill'
}

test_AGivenSillIsTakenForEveryFold()
{
    validate --sill 10000 -o points.csv
    expect_status 0
    expect_stderr 'sill: of rainfall 10000 as given'
    awk -F, 'NR > 1 && ($7 * $7 / $8 / 10000 - 1) ^ 2 > 1e-20 { bad = 1 } END { exit bad }' points.csv ||
        fail 'another sill'
}

test_TheSampleVarianceOfEachFoldCanBeTheSill()
{
    validate --sill sample
    expect_stderr "each fold's the variance of the samples outside it"
    expect_stdout '5.29221'
}

test_IntervalsOfDefaultSettingsCoverWhatTheyPromise()
{
    # The sample variance as the sill left 68 % of rainfall and 23 % of the earthquakes in 95 % intervals.
    for example in 'rainfall x,y rainfall' 'volcano x,y elevation' 'quakes long,lat,depth mag'; do
        set -- $example
        krige validate "$examples/$1/samples.csv" --inputs "$2" --outputs "$3" --worst 0
        expect_status 0
        awk 'NR == 2 { exit !($12 >= 90) }' "$scratch/log/out" || fail "$1: intervals hold too little"
    done
}

test_TwoSamplesGiveFiniteFigures()
{
    printf 'x,z\n0,1\n1,3\n' >samples.csv
    printf 'x,z\n0,1\n0.5,3\n' >truth.csv
    krige validate samples.csv --inputs x --outputs z --against truth.csv
    expect_status 0
    expect_stderr 'sill: of z 2 by restricted likelihood over 2 points (sample variance 2)'
    expect_stdout ' 100.0  100.0'
}

test_AConstantOutputHasNoSill()
{
    printf 'x,z\n0,5\n1,5\n2,5\n3,5\n5,5\n' >samples.csv
    krige validate samples.csv --inputs x --outputs z --leave-one-out --worst 0
    expect_status 0
    expect_stderr 'sill: of z 0 by restricted likelihood'
    table >table
    expect_file table <<END
output points RMSE MAE bias R2 MSSE worst CRPS in50% in90% in95%
z 5 0 0 0 nan nan 0 0 100.0 100.0 100.0
END
}

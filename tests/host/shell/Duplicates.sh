test_EveryMergedSampleIsListedWithItsLine()
{
    printf 'x,y,z\n0,0,1\n1,1,5\n\n0,0,3\n,,\n2,1,7\n1,1,6\n0,0,2\n' >samples.csv
    predict --grid 2x2 --skip-missing --duplicate-tolerance 0 --duplicates-report merged.csv -o out.csv
    expect_status 0
    expect_stderr 'merged: 5 samples into 2 averaged points'
    expect_file merged.csv <<END
point,line,x,y,z
1,2,0,0,1
1,5,0,0,3
1,9,0,0,2
2,3,1,1,5
2,8,1,1,6
END
}

test_WithoutMergingTheReportIsAUsageErrorWithTheWayOut()
{
    write_samples
    predict --grid 2x2 --duplicates-report merged.csv -o out.csv
    expect_status 2
    expect_stderr '--duplicates-report: nothing is merged; add --duplicates merge'
    expect_files samples.csv
}

# write_field [ROWS]: 60 scattered samples of a smooth field on lines 2 to 61, then these rows.
write_field()
{
    awk -v rows="${1-}" 'BEGIN {
        print "x,y,z"
        for (i = 1; i <= 60; ++i) {
            x = i * 0.6180339887 % 1; y = i * 0.7548776662 % 1
            printf "%.6f,%.6f,%.6f\n", x, y, sin(3 * x) + y * y
        }
        printf "%s", rows
    }' >samples.csv
}

# The first sample again, its value 0.1 higher.
write_repeated_field()
{
    write_field
    sed -n 2p samples.csv | awk -F, '{ printf "%s,%s,%.6f\n", $1, $2, $3 + 0.1 }' >repeated
    cat repeated >>samples.csv
    rm repeated
}

# refused COMMAND ARGUMENTS...: the repeats are named, and nothing is written.
refused()
{
    command=$1
    shift
    krige "$command" samples.csv --inputs x,y --outputs z "$@"
    expect_status 1
    expect_stderr 'samples.csv: 2 of 61 samples share their place with another, for instance lines 2 and 62, distance 0'
    expect_stderr 'add --duplicates merge to average them'
    expect_empty_stdout
    expect_files samples.csv
}

test_ARepeatedSampleIsAnErrorThatNamesItsLines()
{
    write_repeated_field
    refused predict --grid 9x9 -o out.csv
    refused predict --grid 9x9 --exact -o out.csv
    refused predict --grid 9x9 --nearest 16 -o out.csv
    refused validate
    refused validate --leave-one-out
    refused validate --leave-one-out --nearest 16
    refused validate --against samples.csv
    refused tune --fix nugget
}

test_AnExactRepeatIsAnErrorToo()
{
    write_field
    sed -n 2p samples.csv >repeated
    cat repeated >>samples.csv
    rm repeated
    refused predict --grid 9x9 -o out.csv
    refused validate
}

test_MergingGivesEstimatesWithinTheSamplesOutputs()
{
    write_repeated_field
    predict --grid 9x9 --duplicates merge -o out.csv
    expect_status 0
    expect_stderr 'merged: 2 samples into 1 averaged point'
    awk -F, 'NR > 1 && ($3 < -0.5 || $3 > 2.5) { bad = 1 } END { exit bad || NR != 82 }' out.csv || fail 'absurd estimates'
    predict --grid 9x9 --duplicate-tolerance 0 -o same.csv
    cmp out.csv same.csv || fail 'a tolerance of 0 merges otherwise'
}

test_KeepingGoesOnWithAWarning()
{
    write_repeated_field
    predict --grid 9x9 --duplicates keep -o out.csv
    expect_status 0
    expect_stderr 'warning: the system has no solution that can be relied upon'
    expect_stderr 'warning: 2 of 61 samples coincide'
}

test_WithANuggetRepeatsAreReplicatesForEveryEngine()
{
    write_repeated_field
    for engine in '' --exact '--nearest 16'; do
        # shellcheck disable=SC2086
        predict --grid 9x9 --nugget 0.1 $engine -o out.csv
        expect_status 0
        expect_stderr 'note: 2 of 61 samples coincide and are taken as repeated measurements'
        awk -F, 'NR > 1 && ($3 < -0.5 || $3 > 2.5) { bad = 1 } END { exit bad || NR != 82 }' out.csv ||
            fail "absurd estimates $engine"
    done
}

test_SamplesWithinRoundingAreTooNearAndTheSuggestionMergesThem()
{
    write_field "$(printf '0.25,0.5,1\n0.25,0.50000000000000011,1.1\n')"
    predict --grid 9x9 -o out.csv
    expect_status 1
    expect_stderr '2 of 62 samples lie nearer to another than a model can tell apart, for instance lines 62 and 63, distance 1.11e-16'
    expect_stderr 'add --duplicates merge --duplicate-tolerance 1e-12'
    expect_files samples.csv
    predict --grid 9x9 --duplicates merge --duplicate-tolerance 1e-12 -o out.csv
    expect_status 0
    expect_stderr 'merged: 2 samples into 1 averaged point'
}

test_TheConditionIsPartOfTheReport()
{
    write_field
    predict --grid 9x9 -o out.csv
    expect_stderr 'condition: 0.000'
    expect_no_stderr warning
}

test_ToleranceAndAnotherRuleContradictEachOther()
{
    write_samples
    for rule in error keep; do
        predict --grid 2x2 --duplicates "$rule" --duplicate-tolerance 0 -o out.csv
        expect_status 2
        expect_stderr "--duplicates $rule merges no samples, --duplicate-tolerance 0 does; leave one of them out"
    done
    predict --grid 2x2 --duplicates merge --duplicate-tolerance -1 -o out.csv
    expect_status 2
    predict --grid 2x2 --duplicates drop -o out.csv
    expect_status 2
    expect_stderr "--duplicates: must be error, merge or keep, not 'drop'"
    expect_files samples.csv
}

test_AnOptionWinsOverTheRuleOfASettingsFile()
{
    write_repeated_field
    printf 'duplicates = "merge"\nduplicate-tolerance = 0.001\n' >merging.toml
    predict --grid 2x2 --config merging.toml -o out.csv
    expect_status 0
    expect_stderr 'merged: 2 samples'
    predict --grid 2x2 --config merging.toml --duplicates error -o out.csv
    expect_status 1
    printf 'duplicates = "keep"\n' >keeping.toml
    predict --grid 2x2 --config keeping.toml -o out.csv
    expect_status 0
    predict --grid 2x2 --config keeping.toml --duplicate-tolerance 0 -o out.csv
    expect_status 0
    expect_stderr 'merged: 2 samples'
}

test_TuningWritesTheRuleAndSettingsThatTakeRepeats()
{
    write_repeated_field
    krige tune samples.csv --inputs x,y --outputs z --max-trials 20 -o best.toml
    expect_status 0
    grep -qx 'duplicates = "error"' best.toml || fail "$(cat best.toml)"
    predict --grid 2x2 --config best.toml -o out.csv
    expect_status 0
    krige tune samples.csv --inputs x,y --outputs z --max-trials 20 --duplicates merge -o best.toml
    expect_status 0
    grep -qx 'duplicates = "merge"' best.toml || fail "$(cat best.toml)"
}

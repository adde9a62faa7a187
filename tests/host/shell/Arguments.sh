test_HelpIsPrintedAndExitsWithZero()
{
    krige --help
    expect_status 0
    expect_stdout predict
    expect_stdout validate
}

test_HelpOfPredictNamesEveryOption()
{
    krige predict --help
    expect_status 0
    for option in --inputs --outputs --duplicate-tolerance --scale --drift --range --nugget --nearest --config \
        --delimiter --skip-missing --at --grid --variance --keep --shard --duplicates-report -o; do
        expect_stdout "$option"
    done
}

test_HelpOfValidateNamesTheTruthFile()
{
    krige validate --help
    expect_status 0
    expect_stdout --against
}

test_VersionIsPrintedAndExitsWithZero()
{
    krige --version
    expect_status 0
    expect_stdout 'krige 1.'
}

test_NoSubcommandIsAUsageError()
{
    krige
    expect_status 2
    expect_stderr "See 'krige --help'."
    expect_empty_stdout
}

test_AnUnknownSubcommandIsAUsageError()
{
    krige prophesy
    expect_status 2
    expect_stderr prophesy
}

test_AnUnknownOptionIsAUsageError()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --colour red
    expect_status 2
    expect_stderr --colour
    expect_files samples.csv
}

test_AMissingInputsOptionIsAUsageError()
{
    write_samples
    krige predict samples.csv --outputs z --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr '--inputs is required'
    expect_files samples.csv
}

test_AMissingOutputFileIsAUsageError()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2
    expect_status 2
    expect_stderr --output
}

test_NoTargetsAtAllIsAUsageError()
{
    write_samples
    predict -o out.csv
    expect_status 2
    expect_stderr 'either --at FILE or --grid AXES'
    expect_files samples.csv
}

test_TargetsGivenTwiceIsAUsageError()
{
    write_samples
    predict --at samples.csv --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr 'either --at FILE or --grid AXES'
    expect_files samples.csv
}

test_AnOptionGivenTwiceIsAUsageError()
{
    write_samples
    predict --drift 0 --drift 1 --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr --drift
    expect_files samples.csv
}

test_AnEmptyNameForTheOutputFileIsAUsageError()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 --output ''
    expect_status 2
    expect_stderr --output
    expect_files samples.csv
}

test_TheSamplesAsOutputFileIsAUsageError()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o samples.csv
    expect_status 2
    expect_stderr "--output: 'samples.csv' is the file that is read"
    expect_files samples.csv
}

test_TheSamplesUnderAnotherNameAsOutputFileIsAUsageError()
{
    write_samples
    ln -s samples.csv link.csv
    predict --grid x=0:1:2,y=0:1:2 -o ./link.csv
    expect_status 2
    expect_stderr 'is the file that is read'
    expect_files link.csv samples.csv
}

test_TheTargetsAsOutputFileIsAUsageError()
{
    write_samples
    printf 'x,y\n0,0\n' >targets.csv
    predict --at targets.csv -o ./targets.csv
    expect_status 2
    expect_stderr 'is the file that is read'
    expect_file targets.csv <<EOF
x,y
0,0
EOF
}

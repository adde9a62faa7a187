write_gappy_samples()
{
    printf 'x,y,z,note\n0,0,0,\n1,,1,\n1,0,1,\n0,1,10,\n0,n/a,3,\n1,1,11,\n1,1,NaN,\n0.5,0.5,5.5,\n' >samples.csv
}

test_SamplesWithAMissingValueAreSkippedAndCounted()
{
    write_samples
    predict --grid 4x3 -o full.csv
    write_gappy_samples
    predict --grid 4x3 --skip-missing -o out.csv
    expect_status 0
    expect_stderr 'samples: 5 samples read'
    expect_stderr 'skipped: 3 of 8 rows of samples.csv, with a missing value'
    cmp full.csv out.csv || fail 'the remaining samples give other estimates'
}

test_WithoutSkippingTheMissingValueIsAnError()
{
    write_gappy_samples
    predict --grid 4x3 -o out.csv
    expect_status 1
    expect_stderr "samples.csv, line 3, column 'y': the value is missing; --skip-missing leaves such rows out"
    expect_files samples.csv
}

test_TargetsWithAMissingCoordinateGetNan()
{
    write_samples
    printf 'x,y,id\n0,0,a\n,1,b\n1,x,c\n1,1,d\n' >targets.csv
    predict --exact --at targets.csv --skip-missing --keep id -o out.csv
    expect_status 0
    expect_stderr 'missing: 2 of 4 targets lack a coordinate: nan is given there'
    expect_file out.csv <<END
x,y,z,id
0,0,0,a
nan,1,nan,b
1,nan,nan,c
1,1,11,d
END
}

test_TargetsWithAMissingCoordinateGetNanFromALocalModelWithVariance()
{
    write_samples
    printf 'x,y\n,1\n0,0\n' >targets.csv
    predict --at targets.csv --skip-missing --nearest 3 --variance -o out.csv
    expect_status 0
    [ "$(sed -n 2p out.csv)" = nan,1,nan,nan,nan ] || { cat out.csv; fail 'the first target is not nan throughout'; }
    ! sed -n 3p out.csv | grep -q '^0,0,nan' || fail 'the second target is nan'
}

test_OnlyMissingTargetsAreNoTrouble()
{
    write_samples
    printf 'x,y\n,\n' >targets.csv
    predict --at targets.csv --skip-missing -o out.csv
    expect_status 0
    expect_file out.csv <<END
x,y,z
nan,nan,nan
END
}

test_AnOverflowIsNotSkipped()
{
    printf 'x,y,z\n0,0,1\n1,0,1e999\n' >samples.csv
    predict --grid 2x2 --skip-missing -o out.csv
    expect_status 1
    expect_stderr "'1e999' is too large for a double"
}

test_AShortRowIsNotSkipped()
{
    printf 'x,y,z\n0,0,1\n1,0\n' >samples.csv
    predict --grid 2x2 --skip-missing -o out.csv
    expect_status 1
    expect_stderr 'the row ends before this column'
}

test_NothingLeftIsAnError()
{
    printf 'x,y,z\n,0,1\n1,,2\n' >samples.csv
    predict --grid 2x2 --skip-missing -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: no samples: 2 rows skipped'
    expect_files samples.csv
}

# marked.csv: the samples of write_samples, and rows that a mark makes void.
write_marked_samples()
{
    printf 'x,y,z\n0,0,0\n1,0,1\n0.3,0.2,-9999\n0,1,10\n1,1,11\n0.1,0.7,-9999.0\nNA,0.7,3\n0.5,0.5,5.5\n' >marked.csv
}

# marked COMMAND ARGUMENTS...
marked()
{
    command=$1
    shift
    krige "$command" marked.csv --inputs x,y --outputs z "$@"
}

test_ListedMarksLeaveSamplesOut()
{
    write_samples
    predict --grid 4x3 -o full.csv
    write_marked_samples
    marked predict --grid 4x3 --missing -9999,NA -o out.csv
    expect_status 0
    expect_stderr 'skipped: 3 of 8 rows of marked.csv, with a missing value'
    expect_no_stderr warning
    cmp full.csv out.csv || fail 'the remaining samples give other estimates'
}

test_AnUnlistedTextNamesTheOption()
{
    write_marked_samples
    marked predict --grid 4x3 -o out.csv
    expect_status 1
    expect_stderr "marked.csv, line 8, column 'x': 'NA' is not a number; if it stands for no value, name it with --missing"
    marked predict --grid 4x3 --missing -9999 --skip-missing -o out.csv
    expect_status 1
    expect_stderr "'NA' is not a number, nor one of --missing; if it stands for no value, add it there"
    expect_files marked.csv
}

test_TargetsWithAMarkGetNan()
{
    write_samples
    printf 'x,y\n-999,0\n1,1\n' >targets.csv
    predict --exact --at targets.csv --missing -999 -o out.csv
    expect_status 0
    expect_file out.csv <<END
x,y,z
nan,0,nan
1,1,11
END
}

test_EveryCommandWarnsOfAFarValueThatRepeats()
{
    write_marked_samples
    sed -i '/NA/d' marked.csv
    message="warning: column 'z': -9999 stands in 2 rows, far from all other values (0 to 11); if it means that there is no value, add --missing -9999"
    marked predict --grid 2x2 -o out.csv
    expect_stderr "$message"
    marked validate
    expect_stderr "$message"
    marked tune --max-trials 2
    expect_stderr "$message"
    marked variogram
    expect_stderr "$message"
    marked info
    expect_stdout "$message"
    krige validate marked.csv --inputs x,y --outputs z --missing -9999 --against marked.csv
    expect_status 0
    expect_no_stderr warning
}

test_InfoCountsMarksAsMissingAndSuggestsThem()
{
    write_marked_samples
    krige info marked.csv --missing -9999,NA
    expect_status 0
    expect_stdout 'samples: 5 rows with a number in each of these columns, 3 without'
    expect_stdout "--missing '-9999,NA' --grid"
}

test_NoMarksAreAUsageError()
{
    write_samples
    predict --grid 2x2 --missing '' -o out.csv
    expect_status 2
    expect_stderr '--missing: needs at least one text or number'
    expect_files samples.csv
}

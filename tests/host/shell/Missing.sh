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

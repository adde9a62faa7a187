# told DELIMITER: the samples.csv at hand, with this delimiter, gives what the plain file gives.
told()
{
    write_samples
    predict --grid 4x3 -o expected.csv
    tr , "$1" <samples.csv >other.csv
    mv other.csv samples.csv
    shift
    predict --grid 4x3 -o out.csv "$@"
    expect_status 0
    cmp expected.csv out.csv || fail 'the output differs from that of commas'
}

test_SemicolonsAreTold()
{
    told ';'
}

test_TabsAreTold()
{
    told '\t'
}

test_AnyOtherDelimiterCanBeNamed()
{
    told '|' --delimiter '|'
}

test_ATabCanBeNamedInWords()
{
    told '\t' --delimiter tab
}

test_EmptyCellsBetweenTabsKeepTheirColumns()
{
    printf 'a\tx\ty\tz\n\t0\t0\t0\n\t 1\t0\t1\n"q\tq"\t0\t1\t10\n\t\t1\t11\n' >samples.csv
    predict --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "samples.csv, line 5, column 'x': the value is missing"
}

test_SamplesAndTargetsMayDiffer()
{
    write_samples
    printf 'x;y\n0;0\n' >targets.csv
    predict --at targets.csv -o out.csv
    expect_status 0
}

test_QuotedDelimitersOfTheHeaderDoNotCount()
{
    printf '"a;b;c;d",x,y,z\n0,0,0,0\n0,1,0,1\n0,0,1,10\n0,1,1,11\n' >samples.csv
    predict --grid 2x2 -o out.csv
    expect_status 0
}

test_ADigitIsNoDelimiter()
{
    write_samples
    predict --grid 2x2 -o out.csv --delimiter 5
    expect_status 2
    expect_stderr "--delimiter: must be one character that no number holds, or comma, semicolon, tab or space, not '5'"
}

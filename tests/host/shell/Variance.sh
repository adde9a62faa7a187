test_ColumnsAreInputsOutputsVarianceErrorsThenKeptOnes()
{
    printf 'x,a,b\n0,0,1\n1,2,3\n2,4,5\n' >samples.csv
    printf 'site,x,note\nA,0.5,"p,q"\n"B ""2""",1.5,\n' >targets.csv
    krige predict samples.csv --inputs x --outputs b,a --variance --at targets.csv --keep note,site -o out.csv
    expect_status 0
    [ "$(head -n 1 out.csv)" = 'x,b,a,variance,b_stderr,a_stderr,note,site' ] || fail 'another header row'
    sed -n 2p out.csv | grep -q ',"p,q",A$' || { cat out.csv; fail 'the first row keeps other texts'; }
    sed -n 3p out.csv | grep -q ',"","B ""2"""$' || { cat out.csv; fail 'the second row keeps other texts'; }
}

test_ErrorsAreTheRootOfVarianceTimesTheSamplesVariance()
{
    # The samples' variances are 4 for a and 16 for b.
    printf 'x,a,b\n0,0,1\n1,2,5\n2,4,9\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0.25:1.75:4 -o out.csv
    expect_status 0
    awk -F, 'NR > 1 { n++; v = $4; if (v <= 0 || ($5 - sqrt(4 * v)) ^ 2 > 1e-24 || ($6 - sqrt(16 * v)) ^ 2 > 1e-24) bad = 1 }
        END { exit n != 4 || bad }' out.csv || { cat out.csv; fail 'other standard errors'; }
}

test_EstimatesAreTheSameWithAndWithoutVariance()
{
    write_samples
    predict --grid 7x5 -o without.csv
    predict --grid 7x5 --variance -o with.csv
    expect_status 0
    cut -d, -f1-3 with.csv | cmp - without.csv || fail 'the variance changes the estimates'
}

test_ANegativeVarianceGivesANanError()
{
    # In five inputs the spherical model is not always valid: two clusters far apart, asked between them.
    awk 'BEGIN { srand(3); print "a,b,c,d,e,z"; for (i = 0; i < 60; ++i) {
        for (j = 0; j < 5; ++j) printf "%d,", (int(i / 2 ^ j) % 2) * 2 + (i > 31 && j == 0 ? 1 : 0); print i % 7 } }' >samples.csv
    krige predict samples.csv --inputs a,b,c,d,e --outputs z --duplicate-tolerance 0 --range 1.2 --drift 1 --variance \
        --grid 5x5x5x5x5 -o out.csv
    expect_status 0
    awk -F, 'NR > 1 { if ($7 < 0) { negative++; if ($8 != "nan") bad = 1 } else if ($8 == "nan") bad = 1 }
        END { if (bad) exit 1; if (!negative) exit 2 }' out.csv
    case $? in
    1) fail 'a standard error is nan without a negative variance, or is none' ;;
    2) fail 'no variance is negative: the test tests nothing' ;;
    esac
}

test_AColumnThatWouldStandTwiceIsAUsageError()
{
    printf 'x,y,variance\n0,0,0\n1,0,1\n0,1,10\n' >samples.csv
    krige predict samples.csv --inputs x,y --outputs variance --variance --grid 2x2 -o out.csv
    expect_status 2
    expect_stderr "the output would have two columns 'variance'"
    expect_files samples.csv
}

test_KeepingAnInputIsAUsageError()
{
    write_samples
    predict --at samples.csv --keep x -o out.csv
    expect_status 2
    expect_stderr "the output would have two columns 'x'"
}

test_KeepingFromAGridIsAUsageError()
{
    write_samples
    predict --grid 2x2 --keep site -o out.csv
    expect_status 2
    expect_stderr '--keep: a grid has no columns to keep'
}

test_AnUnknownKeptColumnIsNamed()
{
    write_samples
    predict --at samples.csv --keep site -o out.csv
    expect_status 1
    expect_stderr "samples.csv, line 1, column 'site': there is no such column"
    expect_files samples.csv
}

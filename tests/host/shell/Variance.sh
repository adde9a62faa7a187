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

test_ErrorsAreTheRootOfVarianceTimesTheSill()
{
    # The samples' variances are 4 for a and 16 for b.
    printf 'x,a,b\n0,0,1\n1,2,5\n2,4,9\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0.25:1.75:4 --sill sample -o out.csv
    expect_status 0
    expect_stderr 'sill: of a 4, the sample variance'
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

test_ANegativeVarianceIsNanAndCounted()
{
    # In eight inputs the spherical model is not always valid: over the corners of a cube, its covariances have one
    # negative eigenvalue. Without some of them the samples' own have none, so that the others have negative variances.
    awk 'BEGIN { names = "a,b,c,d,e,f,g,h"; print names ",z" >"samples.csv"; print names >"targets.csv"
        for (s = 1; n < 17; ) { s = (s * 75 + 74) % 65537; if (!(s % 256 in left)) { left[s % 256]; n++ } }
        for (i = 0; i < 256; ++i) {
            corner = int(i / 128) % 2
            for (j = 6; j >= 0; --j) corner = corner "," int(i / 2 ^ j) % 2
            if (i in left) print corner >"targets.csv"; else print corner "," i % 7 >"samples.csv" } }'
    krige predict samples.csv --inputs a,b,c,d,e,f,g,h --outputs z --range 0.53 --variance --interval 95 --at targets.csv \
        -o out.csv
    expect_status 0
    awk -F, 'NR > 1 { negative = $10 == "nan"; n += negative; if ($9 == "nan" || $10 < 0 || ($11 == "nan") != negative ||
            ($12 == "nan") != negative || ($13 == "nan") != negative) bad = 1 }
        END { print n; exit bad || !n || n == 17 }' out.csv >negative || { cat out.csv; fail 'other values are nan'; }
    grep -qE "^hint: $(cat negative) of 17 targets (has|have) a Kriging variance below 0: nan stands for it" "$scratch/log/err" ||
        fail 'not counted'
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

# at_samples EXAMPLE INPUTS OUTPUT: standard errors at the samples themselves.
at_samples()
{
    krige predict "$examples/$1/samples.csv" --inputs "$2" --outputs "$3" --variance --interval 95 \
        --at "$examples/$1/samples.csv" -o "$1.csv"
    expect_status 0
    ! grep -q nan "$1.csv" || { grep nan "$1.csv"; fail "$1: something is nan at a sample"; }
}

test_StandardErrorsAtSamplesAreNoNan()
{
    # There variances are 0 up to rounding, of either sign.
    at_samples rainfall x,y rainfall
    at_samples volcano x,y elevation
    at_samples quakes long,lat,depth mag
    expect_no_stderr 'variance below 0'
    awk -F, 'NR > 1 && !($5 >= 0 && $5 < 1e-12 && $6 < 1e-3) { bad = 1 } END { exit bad }' quakes.csv ||
        fail 'a sample is not certain'
}

test_TheSillIsTheRestrictedLikelihoodOneByDefault()
{
    # With the range at 2: C_01 = C_12 = 5/16, C_02 = 0; z = (0, 2, 4) has the dual weights (-2, 0, 2), so z^T w / (3 - 1)
    # is 4; z = (0, 3, 0) has w = 3 (-a, 2 a, -a) with a = 1 / (3 - 4 * 5/16), and 9 a with 3 * 2 a * 3 / 2.
    printf 'x,a,b\n0,0,0\n1,2,3\n2,4,0\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0:2:5 -o auto.csv
    expect_status 0
    expect_stderr 'sill: of a 4 by restricted likelihood over 3 points (sample variance 4)'
    expect_stderr 'sill: of b 5.14286 by restricted likelihood over 3 points (sample variance 3)'
    krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0:2:5 --sill auto -o same.csv
    cmp auto.csv same.csv || fail 'auto is not the default'
}

test_EachOutputMayHaveAnotherSill()
{
    printf 'x,a,b,c\n0,0,0,1\n1,2,3,5\n2,4,0,9\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b,c --variance --grid x=0.5:1:2 --sill 100,auto,sample -o out.csv
    expect_status 0
    expect_stderr 'sill: of a 100 as given (sample variance 4)'
    expect_stderr 'sill: of b 5.14286 by restricted likelihood'
    expect_stderr 'sill: of c 16, the sample variance'
    awk -F, 'NR == 2 { exit !(($6 / sqrt(100 * $5) - 1) ^ 2 < 1e-24 && ($8 / sqrt(16 * $5) - 1) ^ 2 < 1e-24) }' out.csv ||
        { cat out.csv; fail 'other standard errors'; }
}

test_LocalModelsTakeTheSillOfPointsLeftOut()
{
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --nearest 20 --variance --grid 3x3 -o out.csv
    expect_status 0
    expect_stderr 'by leaving out each of 100 points (sample variance 13614.5)'
}

test_WithoutStandardErrorsNoSillIsSought()
{
    write_samples
    predict --grid 2x2 --sill 7 -o out.csv
    expect_status 0
    expect_no_stderr 'sill:'
}

test_AsManyPointsAsDriftTermsHaveTheirSampleVarianceAsSill()
{
    printf 'x,z\n0,1\n1,3\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --drift 1 --variance --grid x=0:1:3 -o out.csv
    expect_status 0
    expect_stderr 'sill: of z 2, the sample variance, for the points determine no other'
}

test_ASillThatIsNoneIsAUsageError()
{
    write_samples
    for sill in 0 -1 nan inf x auto,sample 1,2 '' 1e999; do
        predict --grid 2x2 --variance --sill "$sill" -o out.csv
        expect_status 2
        expect_stderr '--sill: '
        expect_files samples.csv
    done
}

test_SillsOfASettingsFileActAsTheOptionDoes()
{
    printf 'x,a,b\n0,0,0\n1,2,3\n2,4,0\n' >samples.csv
    for sill in 'sill = "sample"' 'sill = ["sample", "sample"]' 'sill = [4, 3]' 'sill = sample'; do
        echo "$sill" >settings.toml
        krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0:2:5 --config settings.toml -o file.csv
        expect_status 0
        krige predict samples.csv --inputs x --outputs a,b --variance --grid x=0:2:5 --sill sample -o option.csv
        cmp file.csv option.csv || fail "$sill is another sill"
    done
    echo 'sill = 0' >settings.toml
    krige predict samples.csv --inputs x --outputs a,b --grid x=0:2:5 --config settings.toml -o out.csv
    expect_status 1
    expect_stderr 'settings.toml, line 1: sill: must be auto, sample or a number above 0'
}

test_IntervalsStandBehindAndAreSymmetric()
{
    printf 'x,a,b\n0,0,0\n1,2,3\n2,4,0\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b --interval 95 --grid x=0.25:1.75:4 -o interval.csv
    expect_status 0
    [ "$(head -n 1 interval.csv)" = 'x,a,b,a_lo,a_hi,b_lo,b_hi' ] || fail 'another header row'
    krige predict samples.csv --inputs x --outputs a,b --interval 95 --variance --grid x=0.25:1.75:4 -o both.csv
    [ "$(head -n 1 both.csv)" = 'x,a,b,variance,a_stderr,b_stderr,a_lo,a_hi,b_lo,b_hi' ] || fail 'another header row'
    awk -F, 'NR > 1 { f = 1.959963984540054; d = $7 - ($2 - f * $5); e = $10 - ($3 + f * $6); n++
            if (d * d > 1e-24 || e * e > 1e-24) bad = 1 } END { exit n != 4 || bad }' both.csv || { cat both.csv; fail 'other ends'; }
}

test_AWiderIntervalHoldsTheNarrowerOne()
{
    write_samples
    predict --grid 3x3 --interval 50 -o half.csv
    predict --grid 3x3 --interval 99.9 -o most.csv
    paste -d, half.csv most.csv | awk -F, 'NR > 1 && ($9 > $4 || $10 < $5) { bad = 1 } END { exit bad }' ||
        fail 'an end lies inside'
}

test_AnIntervalThatIsNoPercentageIsAUsageError()
{
    write_samples
    for interval in 0 100 -5 nan 95% x ''; do
        predict --grid 2x2 --interval "$interval" -o out.csv
        expect_status 2
        expect_stderr '--interval: must be a percentage from 1 to below 100'
        expect_files samples.csv
    done
    predict --grid 2x2 --interval 0.95 -o out.csv
    expect_status 2
    expect_stderr "--interval: is in percent; '0.95' would be 95"
}

test_AnIntervalOfAnOutputThatIsNamedLikeItIsAUsageError()
{
    printf 'x,z,z_lo\n0,1,2\n1,2,3\n2,3,5\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z,z_lo --interval 95 --grid 3 -o out.csv
    expect_status 2
    expect_stderr "the output would have two columns 'z_lo'"
}

test_NuggetsCountInIntervals()
{
    # A new observation at a sample differs from the old one.
    write_samples
    predict --at samples.csv --nugget 0.5 --interval 95 -o out.csv
    awk -F, 'NR > 1 && !($5 > $4) { bad = 1 } END { exit bad }' out.csv || { cat out.csv; fail 'a new observation is certain'; }
}

test_AGridAsVtkHoldsIntervalsToo()
{
    write_samples
    predict --grid 3x3 --interval 95 -o out.vtk
    expect_status 0
    grep -aq 'SCALARS z_lo double 1' out.vtk && grep -aq 'SCALARS z_hi double 1' out.vtk || fail 'no intervals'
}

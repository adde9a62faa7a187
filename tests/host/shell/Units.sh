# samples.csv in a box of 300 by 400, so that the default scales stretch x.
write_box()
{
    printf 'x,y,z\n0,0,0\n300,0,1\n0,400,10\n300,400,11\n150,200,5.5\n' >samples.csv
}

# refused OPTION VALUE TEXT...: a usage error whose message holds each TEXT, and no output.
refused()
{
    write_box
    predict --grid 2x2 -o out.csv "$1" "$2"
    expect_status 2
    shift 2
    for text in "$@"; do
        expect_stderr "$text"
    done
    expect_files samples.csv
}

test_ARangeMeantInMetresIsRefusedWithTheWayOut()
{
    refused --range 900 '--range: must be a fraction' 'write 900u' '--scale 1,1'
}

test_ARangeInUnitsNeedsOneScale()
{
    refused --range 900u '--range 900u: ' 'add --scale 1,1 '
}

test_NonsenseForARangeInUnitsIsRefused()
{
    refused --range -5u '--range: must be at least 0'
    refused --range u "'u' is not a number"
    refused --range 900m "'900m' is not a number"
    refused --range infu 'needs a finite number'
    refused --range 1e999u 'too large'
    refused --units '' '--units: needs the name of a unit'
}

test_ARangeInUnitsIsTheFractionOfTheDiagonal()
{
    write_box
    predict --grid 5x5 -o units.csv --scale 1,1 --range 200u --units m
    expect_status 0
    expect_stderr "range: 200 m in 'x', 200 m in 'y' (0.4 of the normalised diagonal)"
    predict --grid 5x5 -o fraction.csv --scale 1,1 --range 0.4
    expect_status 0
    expect_stderr "range: 200 in 'x', 200 in 'y' (0.4 of the normalised diagonal)"
    cmp units.csv fraction.csv || fail 'they differ'
}

test_AFractionIsReportedPerInput()
{
    write_box
    predict --grid 2x2 -o out.csv --range 0.5 # of a square of 2 by 2 and its diagonal of 2.83
    expect_stderr "range: 212.132 in 'x', 282.843 in 'y' (0.5 of the normalised diagonal)"
}

test_ASettingsFileHoldsARangeInUnits()
{
    write_box
    printf 'scale = [1, 1]\nrange = "200u"\n' >settings.toml
    predict --grid 5x5 -o file.csv --config settings.toml
    expect_status 0
    predict --grid 5x5 -o option.csv --scale 1,1 --range 200u
    cmp file.csv option.csv || fail 'they differ'
    predict --grid 5x5 -o wins.csv --config settings.toml --range 0.9
    expect_stderr '(0.9 of the normalised diagonal)'
    printf 'range = "200u"\n' >settings.toml
    predict --grid 5x5 -o out.csv --config settings.toml
    expect_status 2
    expect_stderr 'add --scale 1,1 '
}

test_ValidateAndTuneObeyUnits()
{
    rainfall="$examples/rainfall/samples.csv --inputs x,y --outputs rainfall --scale 1,1 --range 120000u --units m"
    for method in --leave-one-out "--against $examples/rainfall/truth.csv" '--folds 10'; do
        krige validate $rainfall $method
        expect_status 0
        expect_stderr "range: 120000 m in 'x', 120000 m in 'y' (0.340797 of"
    done
    krige tune $rainfall --fix range,scale --max-trials 3 -o best.toml
    expect_status 0
    expect_stderr "range: 120000 m in 'x', 120000 m in 'y' (0.340797 of"
    grep -q '^range = 0.3407974654542888$' best.toml || fail 'the winner has another range'
}

test_EachFoldHasTheRangeInUnits()
{
    # Without the sample at 100 the box is a hundredth as wide: its fraction would reach a hundredth as far.
    printf 'x,z\n0,1\n0.2,3\n0.4,2\n0.6,5\n0.8,4\n1,6\n100,0\n' >samples.csv
    krige validate samples.csv --inputs x --outputs z --range 100u --folds 7 -o folds.csv
    expect_status 0
    tail -n +2 samples.csv | head -n 6 >rest
    { echo x,z; cat rest; } >others.csv
    krige predict others.csv --inputs x --outputs z --range 100u --grid x=100:100:1 -o far.csv
    expect_status 0
    estimate=$(tail -n 1 far.csv | cut -d, -f 2)
    tail -n 1 folds.csv | grep -qF -- ",$estimate," || { cat folds.csv far.csv; fail "the fold lacks $estimate"; }
}

test_SamplesTooNearForARangeInUnitsAreMergedAsForItsFraction()
{
    printf 'x,z\n0,1\n1,3\n2,2\n3,5\n1.0000000000000002,4\n' >samples.csv
    for range in 10 30u 1 3u; do
        krige predict samples.csv --inputs x --outputs z --grid 3 -o out.csv --range $range
        expect_status 1
        sed 's/.*--duplicate-tolerance \([^ ]*\) .*/\1/' "$scratch/log/err" >"tolerance$range"
    done
    cmp tolerance10 tolerance30u || { cat tolerance*; fail 'another tolerance for 30u'; }
    cmp tolerance1 tolerance3u || { cat tolerance*; fail 'another tolerance for 3u'; }
    cmp tolerance1 tolerance10 >/dev/null && { cat tolerance*; fail 'the range counts for nothing'; }
    :
}

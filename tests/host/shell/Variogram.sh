rainfall="$examples/rainfall/samples.csv --inputs x,y --outputs rainfall"

# Three samples on a line: pairs at 1, 1 and 2; the variance of 1, 2, 4 is 7/3.
write_line()
{
    printf 'x,z\n0,1\n1,2\n2,4\n' >samples.csv
}

test_BinsAndLagsHaveOneFormat()
{
    write_line
    krige variogram samples.csv --inputs x --outputs z --sill 4 --lags all --max-lag 2u
    expect_status 0
    cp "$scratch/log/out" lags
    expect_file lags <<EOF
lower_lag,upper_lag,mean_lag,semivariance,model,pairs
1,1,1,1.25,2.75,2
2,2,2,4.5,4,1
EOF
    krige variogram samples.csv --inputs x --outputs z --sill 4 --lags 2 --max-lag 3u
    expect_status 0
    cp "$scratch/log/out" bins
    expect_file bins <<EOF
lower_lag,upper_lag,mean_lag,semivariance,model,pairs
0,1.5,1,1.25,2.75,2
1.5,3,2,4.5,4,1
EOF
    krige variogram samples.csv --inputs x --outputs z --max-lag 3u
    expect_status 0
    expect_stdout 'lower_lag,upper_lag,mean_lag,semivariance,model,pairs'
}

test_NearestPointsDoNotChangeTheLags()
{
    krige variogram $rainfall --sill sample --lags all -o all.txt
    expect_status 0
    krige variogram $rainfall --sill sample --nearest 12 --lags all -o nearest.txt
    expect_status 0
    cmp all.txt nearest.txt || fail 'they differ'
    [ "$(wc -l <all.txt)" -gt 1000 ] || fail 'lags are missing'
}

test_BinsHoldEveryPairOnce()
{
    write_line
    krige variogram samples.csv --inputs x --outputs z --lags 2 --max-lag 2.0 # the box is 2 wide
    expect_status 0
    cp "$scratch/log/out" bins
    awk -F, 'NR > 1 { pairs += $6 } END { exit pairs != 3 }' bins || { cat bins; fail 'not 3 pairs'; }
}

test_LagsAreInMetresWhereInputsShareAScale()
{
    krige variogram $rainfall --scale 1,1 --units m --lags 1
    expect_status 0
    expect_stderr 'up to a lag of 176058 m'
    expect_stdout '0,176057.6'
    krige variogram $rainfall --scale 1,1 --lag normalised --lags 1
    expect_stdout '0,1.46710732'
    krige variogram $rainfall --lags 1
    expect_stdout '0,1.41421356'
    krige variogram $rainfall --lag units
    expect_status 2
    expect_stderr '--lag units: '
    expect_stderr 'add --scale 1,1 '
}

# The curve meets the points that it was fitted to: their mean deviation is a few hundredths of the sill.
test_AFitMeetsItsPointsAndServesAsSettings()
{
    krige variogram $rainfall --scale 1,1 --fit -o best.toml
    expect_status 0
    cp "$scratch/log/out" bins
    awk -F, 'NR > 1 { d += $6 * ($4 - $5); n += $6; if ($5 > sill) sill = $5 }
        END { if (d < 0) d = -d; exit !(d < 0.05 * n * sill) }' bins || { cat bins; fail 'the model is elsewhere'; }
    grep -q '^sill = \[1[0-9]*\.[0-9]*\]$' best.toml || { cat best.toml; fail 'no sill'; }
    krige predict $rainfall --config best.toml --grid 3x3 -o out.csv
    expect_status 0
    krige variogram $rainfall --config best.toml
    cmp "$scratch/log/out" bins || fail 'the settings do not give the fitted model'
}

test_FittedSettingsOnStandardOutputStandAlone()
{
    krige variogram $rainfall --scale 1,1 --fit -o -
    expect_status 0
    grep -v -E '^(#.*|[a-z-]+ = .*)$' "$scratch/log/out" && fail 'not only settings'
    expect_stderr 'lower_lag,'
}

test_ADirectionTakesAShareOfThePairs()
{
    krige variogram $rainfall --scale 1,1 --direction 45 --tolerance 22.5 --lags 1
    expect_status 0
    expect_stderr 'in the direction of 45 degrees, within 22.5'
    one=$(awk -F, 'NR > 1 { print $6 }' "$scratch/log/out")
    krige variogram $rainfall --scale 1,1 --direction 45 --tolerance 90 --lags 1
    all=$(awk -F, 'NR > 1 { print $6 }' "$scratch/log/out")
    [ "$one" -lt "$all" ] && [ "$all" -eq 4160 ] || fail "$one of $all pairs"
}

test_AHundredThousandSamplesNeedNoGlobalModel()
{
    awk 'BEGIN { srand(1); print "x,y,z"
        for (i = 0; i < 100000; ++i) { x = rand(); y = rand(); print x "," y "," sin(9 * x) + cos(7 * y) } }' >samples.csv
    krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --fit -o best.toml
    expect_status 0
    expect_stderr 'drawn: '
    expect_stderr ' of 100000 points'
    grep -q '^sill = ' best.toml || fail 'nothing is fitted'
    krige variogram samples.csv --inputs x,y --outputs z --lags all -o all.csv
    expect_status 0
}

# refused OPTION VALUE TEXT: a usage error whose message holds TEXT.
refused()
{
    write_samples
    krige variogram samples.csv --inputs x,y --outputs z "$1" "$2"
    expect_status 2
    expect_stderr "$3"
    expect_empty_stdout
}

test_NonsenseIsRefused()
{
    refused --lags 0 'whole number from 1'
    refused --lags 2.5 'whole number from 1'
    refused --lags 99999999999999999999 'whole number from 1'
    refused --max-lag -1 'at least 0'
    refused --max-lag 0u 'above 0'
    refused --max-lag nan 'finite number'
    refused --lag m "normalised or units, not 'm'"
    refused --direction nan 'degrees'
    refused --direction 1e400 'degrees'
    refused --tolerance 10 '--direction'
    write_samples
    for value in 0 -5 91 inf x; do
        krige variogram samples.csv --inputs x,y --outputs z --direction 45 --tolerance "$value"
        expect_status 2
        expect_stderr '--tolerance: '
    done
    krige variogram samples.csv --inputs x --outputs z --direction 45
    expect_status 2
    expect_stderr '--direction: there must be two inputs'
    krige variogram samples.csv --inputs x,y --outputs z --fit --lags all
    expect_status 2
    expect_stderr '--fit: needs bins'
}

test_TooFewSamplesForAFitAreAnError()
{
    write_line
    krige variogram samples.csv --inputs x --outputs z --fit -o best.toml
    expect_status 1
    expect_stderr 'samples.csv: a semivariogram can be fitted to no fewer than 3 lags'
    expect_files samples.csv
    printf 'x,z\n0,1\n1,1\n2,1\n3,1\n5,1\n8,1\n' >samples.csv
    krige variogram samples.csv --inputs x --outputs z --fit -o best.toml
    expect_status 1
    expect_stderr 'there is nothing to fit'
    expect_files samples.csv
}

test_SamplesOfAnyKindHaveASemivariogram()
{
    for rows in '0,0,1\n1,1,2' '0,0,1\n1,1,2\n2,2,4' '0,0,1\n0,0,2\n0,1,2\n1,0,5' '0,0,3\n1,0,3\n0,1,3\n1,1,3'; do
        printf "x,y,z\n$rows\n" >samples.csv
        krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --max-lag 0.5u
        expect_status 0
        krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --max-lag 9u --plot plot.gp
        expect_status 0
        grep -v "datafile missing" plot.gp | grep -q nan && fail "nan for $rows"
    done
}

test_SamplesAtOnePlaceAreAnError()
{
    printf 'x,y,z\n1,1,5\n' >samples.csv
    krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --max-lag 1u
    expect_status 1
    expect_stderr 'samples.csv: a semivariogram needs two points'
    printf 'x,y,z\n1,1,5\n1,1,6\n' >samples.csv
    krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --fit
    expect_status 1
    expect_stderr 'samples.csv: all samples lie at one place'
}

test_OneOutputAtATime()
{
    printf 'x,a,b\n0,1,0\n1,2,0\n2,4,0\n' >samples.csv
    krige variogram samples.csv --inputs x --outputs a,b
    expect_status 2
    expect_stderr 'name one at a time'
    expect_empty_stdout
}

test_AFullDiskIsAnError()
{
    [ -c /dev/full ] || skip 'no /dev/full here'
    write_samples
    "$program" variogram samples.csv --inputs x,y --outputs z >/dev/full 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'standard output: writing failed'
}

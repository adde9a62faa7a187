test_TheDumpIsTheLibrarysOwn()
{
    # Two lags on a line; the variance of 1, 2, 4 is 7/3. Each pair stands there in both orders, and each point itself.
    printf 'x,z\n0,1\n1,2\n2,4\n' >samples.csv
    krige variogram samples.csv --inputs x --outputs z
    expect_status 0
    cp "$scratch/log/out" dump
    expect_file dump <<EOF
#dist empiricalSV modeledSV count
#variance = 2.33333
0 0 0 3
1 1.25 1.60417 4
2 4.5 2.33333 2
EOF
}

test_NearestPointsDoNotChangeTheDump()
{
    krige variogram "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall -o all.txt
    expect_status 0
    krige variogram "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --nearest 12 -o nearest.txt
    expect_status 0
    cmp all.txt nearest.txt || fail 'they differ'
    [ "$(wc -l <all.txt)" -gt 1000 ] || fail 'lags are missing'
}

test_BinsHoldEveryPairOnce()
{
    # The box is 2 wide: pairs at 1, 1 and 2.
    printf 'x,z\n0,1\n1,2\n2,4\n' >samples.csv
    krige variogram samples.csv --inputs x --outputs z --lags 2 --max-lag 2.0
    expect_status 0
    cp "$scratch/log/out" bins
    awk -F, 'NR > 1 { pairs += $6 } END { exit pairs != 3 }' bins || { cat bins; fail 'not 3 pairs'; }
}

test_AMaximumLagNeedsLags()
{
    write_samples
    krige variogram samples.csv --inputs x,y --outputs z --max-lag 1
    expect_status 2
    krige variogram samples.csv --inputs x,y --outputs z --lags 3 --max-lag -1
    expect_status 2
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

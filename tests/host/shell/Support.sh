# Places in metres, far from the origin, as those of a map.
write_map()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 40; ++i)
        printf "%d,%d,%g\n", 178600 + (i * 7919) % 2800, 329700 + (i * 6101) % 3900, 5 + (i * 37) % 11 / 4 }' >map.csv
}

map()
{
    krige predict map.csv --inputs x,y --outputs z "$@"
}

test_SwappedColumnsAreAnError()
{
    write_map
    awk -F, -v OFS=, 'NR == 1 { print; next } { print $2, $1, $3 }' map.csv >swapped.csv
    map --at swapped.csv -o out.csv
    expect_status 1
    expect_stderr 'swapped.csv: all 40 targets are unsupported: they lie outside the box of the samples and beyond the range'
    expect_stderr 'Are columns swapped, or the units others?'
    tr -s ' ' <"$scratch/log/err" | grep -q '^x 178[0-9]* 181[0-9]* 329[0-9]* 333[0-9]*$' || fail 'the boxes of x are missing'
    tr -s ' ' <"$scratch/log/err" | grep -q '^y 329[0-9]* 333[0-9]* 178[0-9]* 181[0-9]*$' || fail 'the boxes of y are missing'
    [ ! -e out.csv ] || fail 'a file was left behind'
}

test_DegreesInsteadOfMetresAreAnError()
{
    write_map
    printf 'x,y\n5.72,50.95\n5.76,50.99\n' >degrees.csv
    map --at degrees.csv -o out.csv
    expect_status 1
    expect_stderr 'degrees.csv: all 2 targets are unsupported'
    map --grid x=5.7:5.8:11,y=50.9:51:11 -o out.vtk
    expect_status 1
    expect_stderr '--grid: all 121 targets are unsupported'
    [ "$(ls)" = "$(printf 'degrees.csv\nmap.csv')" ] || fail 'a file was left behind'
}

test_NothingIsPrintedBeforeTheError()
{
    write_map
    printf 'x,y\n5.72,50.95\n' >degrees.csv
    map --at degrees.csv -o -
    expect_status 1
    expect_stderr 'degrees.csv: the target is unsupported: it lies outside the box of the samples'
    expect_empty_stdout
}

test_ExtrapolateAnswersAllTheSame()
{
    write_map
    printf 'x,y\n5.72,50.95\n5.76,50.99\n' >degrees.csv
    map --at degrees.csv --extrapolate -o out.csv
    expect_status 0
    expect_stderr 'support: 2 of 2 targets lie outside the box of the samples, 2 of them beyond the range of every sample'
    [ "$(wc -l <out.csv)" = 3 ] || fail 'targets are missing'
}

test_OneSupportedTargetIsEnough()
{
    write_map
    printf 'x,y\n5.72,50.95\n180000,331000\n,\n' >targets.csv
    map --at targets.csv --skip-missing -o out.csv
    expect_status 0
    expect_stderr 'support: 1 of 3 targets lies outside the box of the samples, 1 of them beyond the range of every sample'
}

test_StreamsAndShardsWarn()
{
    write_map
    printf 'x,y\n5.72,50.95\n5.76,50.99\n' >degrees.csv
    krige predict map.csv --inputs x,y --outputs z --at - -o out.csv <degrees.csv
    expect_status 0
    expect_stderr 'warning: all 2 targets are unsupported'
    map --at degrees.csv --shard 2/2 -o out.csv
    expect_status 0
    expect_stderr 'warning: the target is unsupported'
    mkfifo pipe
    cat degrees.csv >pipe &
    map --at pipe -o out.csv
    expect_status 0
    expect_stderr 'warning: all 2 targets are unsupported'
    [ "$(wc -l <out.csv)" = 3 ] || fail 'the pipe was read twice'
}

test_TargetsMerelyOutsideTheBoxAreCounted()
{
    printf 'x,y,z\n0,0,1\n4,0,2\n0,4,3\n4,4,5\n' >map.csv
    map --grid x=-1:5:7,y=0:4:5 -o out.csv
    expect_status 0
    expect_stderr 'support: 10 of 35 targets lie outside the box of the samples, none of them beyond the range of every sample'
    map --grid x=0:4:5,y=0:4:5 -o out.csv
    expect_stderr 'support: no target lies outside the box of the samples'
    printf 'x,y,z\n-1,2,1\n2,2,3\n' >truth.csv
    krige validate map.csv --inputs x,y --outputs z --against truth.csv
    expect_status 0
    expect_stderr 'support: 1 of 2 targets lies outside the box of the samples'
}

test_TargetsFarFromEverySampleGetNan()
{
    # Scales of 1 and 5: along y a distance of 1 counts as 5 along x.
    printf 'x,y,z\n0,0,1\n10,0,2\n10,1,4\n' >map.csv
    printf 'x,y\n2,0\n2.5,0\n0,0.4\n0,0.6\n' >targets.csv
    map --at targets.csv --scale 1,5 --max-distance 2.25 -o out.csv
    expect_status 0
    expect_stderr 'limit: 2 targets farther than 2.25 from every sample: nan is given there'
    cut -d, -f3 out.csv | sed 's/^[0-9.]*$/number/' | tr '\n' ' ' >columns
    [ "$(cat columns)" = 'z number nan number nan ' ] || { cat out.csv; fail 'other targets get nan'; }
}

test_TheDistanceIsThatOfTheAnisotropy()
{
    # Twice as far along 90 degrees, the second input: 2 along y counts as 1 along x.
    printf 'x,y,z\n0,0,1\n10,0,2\n10,10,4\n' >map.csv
    printf 'x,y\n0,1.9\n0,2.1\n0.9,0\n1.1,0\n' >targets.csv
    map --at targets.csv --anisotropy 2,90 --max-distance 2 -o out.csv
    expect_status 0
    cut -d, -f3 out.csv | sed 's/^[0-9.]*$/number/' | tr '\n' ' ' >columns
    [ "$(cat columns)" = 'z number nan number nan ' ] || { cat out.csv; fail 'other targets get nan'; }
}

test_AnEmptyCornerOfATrendIsLeftOut()
{
    # Samples in one half of a square, on a slope: the other corner would take all the colours of the map.
    awk 'BEGIN { print "x,y,z"; for (i = 0; i <= 4; ++i) for (j = 0; i + j <= 4; ++j) print i "," j "," i + j + (i * j) % 2 / 8 }' \
        >map.csv
    map --drift 1 --grid 5x5 --hull --variance -o out.csv --plot map.gp
    expect_status 0
    expect_stderr 'limit: 10 targets outside the convex hull of the samples: nan is given there'
    awk -F, 'NR > 1 { out = $1 + $2 > 4; if (($3 == "nan") != out || ($4 == "nan") != out || ($5 == "nan") != out) exit 1 }' \
        out.csv || { cat out.csv; fail 'other targets get nan'; }
    map --drift 1 --grid 5x5 -o full.csv --plot full.gp
    awk -F, 'NR > 1 && $3 > high { high = $3 } END { exit high < 7 }' full.csv || fail 'the corner is not extrapolated'
    sed -n 's/^set cbrange \[.*:\(.*\)\]$/\1/p' full.gp | awk '{ exit $1 > 4.6 }' || fail 'the corner takes the colours'
    grep -q 'with lines lw 1 dt' full.gp || fail 'the corner is not marked'
    grep -q 'with vectors nohead' full.gp || fail 'the corner is not hatched'
    ! grep -q 'with vectors nohead' map.gp || fail 'what has no value is hatched'
}

test_UncertainTargetsGetNan()
{
    printf 'x,z\n0,1\n1,2\n2,4\n' >line.csv
    krige predict line.csv --inputs x --outputs z --grid x=0:6:7 --sill 1 --max-stderr 0.5 -o out.csv
    expect_status 0
    expect_stderr 'limit: 4 targets with a standard error above 0.5: nan is given there'
    [ "$(head -n 1 out.csv)" = 'x,z' ] || fail 'another header row'
    [ "$(grep -c nan out.csv)" = 4 ] || { cat out.csv; fail 'other targets get nan'; }
}

test_LimitsThatAreNoneAreUsageErrors()
{
    write_map
    for option in --max-distance --max-stderr; do
        for value in 0 -1 nan inf x 1e999; do
            map --grid 2x2 "$option" "$value" -o out.csv
            expect_status 2
            expect_stderr "$option: "
        done
    done
    krige predict map.csv --inputs x --outputs z --grid 3 --hull -o out.csv
    expect_status 2
    expect_stderr '--hull: a convex hull is that of two inputs; use --max-distance'
}

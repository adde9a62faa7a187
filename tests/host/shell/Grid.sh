test_CountsAloneSpanTheSamplesBox()
{
    write_samples
    predict --grid 5x3 -o counts.csv
    expect_status 0
    predict --grid x=0:1:5,y=0:1:3 -o axes.csv
    cmp counts.csv axes.csv || fail 'the box is another one'
}

test_CountsFitAnyNumberOfInputs()
{
    printf 'a,b,c,z\n0,0,0,1\n2,0,0,2\n0,4,0,3\n0,0,6,4\n2,4,6,5\n' >samples.csv
    krige predict samples.csv --inputs a,b,c --outputs z --grid 2x1x3 -o out.csv
    expect_status 0
    cut -d, -f1-3 out.csv >nodes.csv
    expect_file nodes.csv <<END
a,b,c
0,0,0
2,0,0
0,0,3
2,0,3
0,0,6
2,0,6
END
    printf 'x,z\n0,1\n2,2\n1,2\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --grid 3 -o out.csv
    expect_status 0
    [ "$(wc -l <out.csv)" -eq 4 ] || fail 'not three nodes'
}

test_AsManyCountsAsInputsAreNeeded()
{
    write_samples
    predict --grid 5x5x5 -o out.csv
    expect_status 2
    expect_stderr "--grid: '5x5x5': 3 counts for 2 inputs; give one each"
}

test_ACountOfNothingIsRefused()
{
    write_samples
    predict --grid 5x0 -o out.csv
    expect_status 2
    expect_stderr 'COUNT must be a whole number of at least 1'
}

# doubles FILE COUNT: the last COUNT big-endian doubles but for the line end behind them, one a line.
doubles()
{
    tail -c "$(($2 * 8 + 1))" "$1" | head -c "$(($2 * 8))" | od -An -v -t f8 -w8 --endian=big | tr -d ' '
}

test_AVtkFileHoldsTheBitsOfTheCsvFile()
{
    printf 'x,y,a,b c\n0,10,0,0\n2,10,1,7\n0,14,10,2\n2,14,11,1\n1,12,5.5,4\n' >samples.csv
    krige predict samples.csv --inputs x,y --outputs 'a,b c' --variance --grid y=10:14:3,x=0:2:5 -o out.vtk
    expect_status 0
    krige predict samples.csv --inputs x,y --outputs 'a,b c' --variance --grid x=0:2:5,y=10:14:3 -o out.csv
    head -n 8 out.vtk >head
    expect_file head <<END
# vtk DataFile Version 3.0
krige predict
BINARY
DATASET STRUCTURED_POINTS
DIMENSIONS 5 3 1
ORIGIN 0 10 0
SPACING 0.5 2 1
POINT_DATA 15
END
    grep -a '^SCALARS' out.vtk >arrays
    expect_file arrays <<END
SCALARS a double 1
SCALARS b%20c double 1
SCALARS variance double 1
SCALARS a_stderr double 1
SCALARS b%20c_stderr double 1
END
    doubles out.vtk 15 >vtk
    sed 1d out.csv | cut -d, -f7 >csv
    paste -d, vtk csv | awk -F, '{ n++; if (($1 - $2) ^ 2 > 1e-30 * $2 ^ 2) bad = 1 } END { exit bad || n != 15 }' ||
        { paste vtk csv; fail 'other numbers'; }
    # Header, five arrays, nothing else.
    [ "$(wc -c <out.vtk)" -eq "$(($(head -n 8 out.vtk | wc -c) + $(cat arrays | wc -c) + 5 * 21 + 5 * 15 * 8 + 5))" ] ||
        fail 'another size'
}

test_AVtkFileOfManyBlocksHoldsEveryNode()
{
    write_samples
    predict --nearest 3 --grid 300x300 -o out.vtk
    expect_status 0
    predict --nearest 3 --grid 300x300 -o out.csv
    doubles out.vtk 90000 >vtk
    sed 1d out.csv | cut -d, -f3 >csv
    paste -d, vtk csv | awk -F, '{ n++; if (($1 - $2) ^ 2 > 1e-30 * $2 ^ 2) bad = 1 } END { exit bad || n != 90000 }' ||
        fail 'other numbers'
}

test_FourAxesDoNotFitAVtkFile()
{
    printf 'a,b,c,d,z\n0,0,0,0,1\n1,0,0,0,2\n0,1,0,0,3\n0,0,1,0,4\n0,0,0,1,5\n' >samples.csv
    krige predict samples.csv --inputs a,b,c,d --outputs z --grid 2x2x2x2 -o out.vtk
    expect_status 2
    expect_stderr '--output: a .vtk file holds grids of up to 3 axes, not 4; name a .csv file'
    expect_files samples.csv
}

test_TargetsOfAFileDoNotFitAVtkFile()
{
    write_samples
    predict --at samples.csv -o out.vtk
    expect_status 2
    expect_stderr '--output: a .vtk file holds a grid'
}

test_APackedVtkFileIsRefused()
{
    write_samples
    predict --grid 2x2 -o out.vtk.gz
    expect_status 2
    expect_stderr '--output: a .vtk file is not packed; leave .gz out of its name'
    expect_files samples.csv
}

test_AHugeGridSaysItsSizeWhereNobodyCanBeAsked()
{
    write_samples
    predict --grid 100000x100000 -o grid.csv
    expect_status 2
    expect_stderr '--grid: 10000000000 nodes make about '
    expect_stderr ' GB; if that is meant, add --yes'
    predict --grid 100000x100000 -o grid.vtk
    expect_status 2
    expect_stderr '--grid: 10000000000 nodes make about 80 GB; if that is meant, add --yes'
    expect_files samples.csv
}

test_AHugeGridIsAskedForOnATerminal()
{
    command -v script >/dev/null || skip 'no script here'
    write_samples
    { sleep 2; echo n; sleep 1; } | script -qefc \
        "$program predict samples.csv --inputs x,y --outputs z --grid 100000x100000 -o grid.vtk" screen.txt >/dev/null 2>&1
    status=$?
    expect_status 1
    grep -qF "The grid's 10000000000 nodes make about 80 GB. Write them to grid.vtk? [y/N] n" screen.txt ||
        { cat screen.txt; fail 'nothing was asked'; }
    grep -qF 'krige: nothing is written' screen.txt || { cat screen.txt; fail 'no end'; }
    rm screen.txt
    expect_files samples.csv
}

test_APartOfAHugeGridThatIsSmallNeedsNoQuestion()
{
    write_samples
    predict --nearest 3 --grid 100000x100000 --shard 1000000/1000000 -o part.csv
    expect_status 0
    [ "$(wc -l <part.csv)" -eq 10000 ] || fail 'not a millionth'
}

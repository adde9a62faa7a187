# in_parts COUNT ARGUMENTS...: the parts by GNU parallel, one after the other in parts.csv.
in_parts()
{
    command -v parallel >/dev/null || skip 'no GNU parallel here'
    count=$1
    shift
    seq "$count" | HOME=$scratch parallel --will-cite -j 2 \
        "$program" predict samples.csv --inputs x,y --outputs z "$@" --shard "{}/$count" -o "part{}.csv" \
        2>"$scratch/log/err" || fail 'a part failed'
    : >parts.csv
    for part in $(seq "$count"); do cat "part$part.csv" >>parts.csv; done
}

test_PartsOfAFileMakeTheBytesOfOneRun()
{
    write_samples
    awk 'BEGIN { print "x,y,site"; for (i = 0; i < 1003; ++i) printf "%g,%g,\"s %d\"\n\n", i / 997, i % 13 / 12, i }' >targets.csv
    predict --at targets.csv --keep site --variance -o whole.csv
    expect_status 0
    in_parts 7 --at targets.csv --keep site --variance
    cmp whole.csv parts.csv || fail 'the parts differ from the whole'
    [ "$(wc -l <part7.csv)" -eq 143 ] || fail 'the last part has not 143 rows'
}

test_PartsOfAGridMakeTheBytesOfOneRun()
{
    write_samples
    predict --grid 31x17 -o whole.csv
    expect_status 0
    in_parts 4 --grid 31x17
    cmp whole.csv parts.csv || fail 'the parts differ from the whole'
}

test_MorePartsThanTargetsLeaveSomeEmpty()
{
    write_samples
    predict --grid 2x1 -o whole.csv
    in_parts 5 --grid 2x1
    cmp whole.csv parts.csv || fail 'the parts differ from the whole'
    [ ! -s part5.csv ] || fail 'the last part is not empty'
}

test_PackedPartsMakeOnePackedFile()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_samples
    predict --grid 5x5 -o whole.csv
    for part in 1 2 3; do predict --grid 5x5 --shard "$part/3" -o "part$part.csv.gz"; done
    cat part1.csv.gz part2.csv.gz part3.csv.gz | gzip -dc | cmp - whole.csv || fail 'the parts differ from the whole'
}

test_APartOfStandardInputIsAnErrorWithTheWayOut()
{
    write_samples
    printf 'x,y\n0,0\n' | "$program" predict samples.csv --inputs x,y --outputs z --at - --shard 1/2 -o out.csv \
        2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'put them into a plain file'
    expect_files samples.csv
}

# refused TEXT: as a part.
refused()
{
    write_samples
    predict --grid 2x2 --shard "$1" -o out.csv
    expect_status 2
    expect_stderr "--shard: must be I/K, the I-th of K parts with I from 1 to K, for instance 1/4, not '$1'"
}

test_PartsCountFromOne()
{
    refused 0/4
}

test_APartBeyondTheLastIsRefused()
{
    refused 5/4
}

test_APartWithoutACountIsRefused()
{
    refused 3
}

test_PartsOfAVtkFileAreRefused()
{
    write_samples
    predict --grid 2x2 --shard 1/2 -o out.vtk
    expect_status 2
    expect_stderr '--shard: parts of a .vtk file do not make a whole one'
}

test_NamesOfPartsSortAsThePartsDo()
{
    write_samples
    predict --grid 31x17 -o whole.csv
    for part in 1 2 3 4 5 6 7 8 9 10 11 12; do
        predict --grid 31x17 --shard "$part/12" -o 'part{shard}.csv'
        expect_status 0
    done
    [ -e part01.csv ] && [ -e part12.csv ] || fail 'names without leading zeros'
    cat part*.csv | cmp whole.csv - || fail 'the parts differ from the whole'
}

test_PartsWithoutAHeaderRowMakeTheBytesOfOneRun()
{
    write_samples
    sed 1d samples.csv >bare.csv
    krige predict bare.csv --no-header --inputs 1,2 --outputs 3 --at bare.csv -o whole.csv
    expect_status 0
    for part in 1 2 3; do
        krige predict bare.csv --no-header --inputs 1,2 --outputs 3 --at bare.csv --shard "$part/3" -o 'part{shard}.csv'
        expect_status 0
    done
    cat part*.csv | cmp whole.csv - || fail 'the parts differ from the whole'
}

test_ANumberOfAPartNeedsParts()
{
    write_samples
    predict --grid 2x2 -o 'part{shard}.csv'
    expect_status 2
    expect_stderr '--output: {shard} stands for the number of a part; add --shard I/K'
    expect_files samples.csv
}

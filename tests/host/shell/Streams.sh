write_expected()
{
    write_samples
    predict --grid 4x3 -o expected.csv
    expect_status 0
}

# same TEXT: out.csv holds the expected bytes.
same()
{
    cmp expected.csv out.csv || fail "$1"
}

test_StandardOutputGetsTheFileAndNothingElse()
{
    write_expected
    predict --grid 4x3 -o -
    expect_status 0
    cp "$scratch/log/out" out.csv
    same 'standard output differs from the file'
}

test_StandardOutputIsAppendedToWhereTheShellSaysSo()
{
    write_expected
    echo former >out.csv
    "$program" predict samples.csv --inputs x,y --outputs z --grid 4x3 -o - >>out.csv 2>/dev/null
    [ "$(head -n 1 out.csv)" = former ] || fail 'what stood there is gone'
    sed 1d out.csv | cmp - expected.csv || fail 'something else was appended'
}

test_SamplesComeFromStandardInput()
{
    write_expected
    "$program" predict - --inputs x,y --outputs z --grid 4x3 -o out.csv <samples.csv 2>"$scratch/log/err"
    same 'standard input gives other bytes'
    expect_stderr 'samples: 5 samples read from standard input'
}

test_ErrorsInStandardInputNameIt()
{
    printf 'x,y,z\n0,0,bad\n' | "$program" predict - --inputs x,y --outputs z --grid 4x3 -o out.csv 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr "standard input, line 2, column 'z': 'bad' is not a number"
}

test_TargetsComeFromStandardInput()
{
    write_expected
    cut -d, -f1,2 expected.csv |
        "$program" predict samples.csv --inputs x,y --outputs z --at - -o out.csv 2>"$scratch/log/err"
    same 'standard input gives other bytes'
}

test_SamplesAndTargetsCannotBothBeStandardInput()
{
    krige predict - --inputs x,y --outputs z --at - -o out.csv
    expect_status 2
    expect_stderr 'cannot both be standard input'
}

test_AClosedPipeEndsQuietlyWithAFailure()
{
    write_samples
    { "$program" predict samples.csv --inputs x,y --outputs z --nearest 3 --grid 2000x2000 -o - 2>"$scratch/log/err"
        echo "$?" >closed_status; } | head -n 1 >/dev/null
    [ "$(cat closed_status)" -ne 0 ] || fail 'the exit status is 0'
    expect_no_stderr 'krige:'
}

test_AClosedPipeEndsQuietlyWhereItsSignalIsIgnored()
{
    write_samples
    { (trap '' PIPE; "$program" predict samples.csv --inputs x,y --outputs z --nearest 3 --grid 2000x2000 -o - 2>"$scratch/log/err"
        echo "$?" >closed_status) } | head -n 1 >/dev/null
    [ "$(cat closed_status)" -eq 1 ] || fail "the exit status is $(cat closed_status)"
    expect_no_stderr 'krige:'
}

test_AFullDiskBehindStandardOutputIsAnError()
{
    [ -c /dev/full ] || skip 'no /dev/full here'
    write_samples
    "$program" predict samples.csv --inputs x,y --outputs z --grid 4x3 -o - >/dev/full 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'standard output: writing failed: No space left on device'
}

test_AFullDiskLeavesNoFile()
{
    unshare -rm true 2>/dev/null || skip 'no file system can be mounted here'
    write_samples
    mkdir small
    unshare -rm sh -c 'mount -t tmpfs -o size=64k none small && echo former >small/out.csv || exit 77
        "$1" predict samples.csv --inputs x,y --outputs z --nearest 3 --grid 200x200 -o small/out.csv
        status=$?
        [ "$(cat small/out.csv)" = former ] || status=90
        [ "$(ls -A small)" = out.csv ] || status=91
        exit $status' sh "$program" 2>"$scratch/log/err"
    status=$?
    [ "$status" -ne 77 ] || skip 'no file system can be mounted here'
    expect_status 1
    expect_stderr 'small/out.csv: writing failed: No space left on device'
}

test_AFileBeyondTheLimitOfItsSizeLeavesNothing()
{
    write_samples
    (ulimit -f 16; "$program" predict samples.csv --inputs x,y --outputs z --nearest 3 --grid 200x200 -o out.csv) \
        2>"$scratch/log/err"
    status=$?
    [ "$status" -ne 0 ] || fail 'the exit status is 0'
    expect_stderr 'strategy: local' # it had begun
    expect_files samples.csv
}

test_PackedSamplesAreRead()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_expected
    gzip samples.csv
    mv samples.csv.gz samples.csv # known by its content, not by its name
    predict --grid 4x3 -o out.csv
    expect_status 0
    same 'the packed file gives other bytes'
}

test_SeveralPackedPartsAreOneFile()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_expected
    { head -n 2 samples.csv | gzip; sed 1,2d samples.csv | gzip; } >packed.gz
    "$program" predict - --inputs x,y --outputs z --grid 4x3 -o out.csv <packed.gz 2>/dev/null
    same 'the packed file gives other bytes'
}

test_ATruncatedPackedFileIsAnError()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_samples
    gzip -c samples.csv | head -c 40 >cut.gz
    mv cut.gz samples.csv
    predict --grid 4x3 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: the gzip data end too early: the file is truncated'
    expect_files samples.csv
}

test_ADamagedPackedFileIsAnError()
{
    printf '\037\213\010\000abcdefghijklmnopq' >samples.csv
    predict --grid 4x3 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: the gzip data are damaged'
}

test_AnOutputNamedGzIsPackedAndTheSameEachTime()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_expected
    predict --grid 4x3 -o out.csv.gz
    expect_status 0
    cp out.csv.gz again.gz
    gzip -dc out.csv.gz >out.csv
    same 'the packed file holds other bytes'
    predict --grid 4x3 -o out.csv.gz
    cmp again.gz out.csv.gz || fail 'a second run gives other bytes'
}

test_LargeOutputsArePackedWhole()
{
    command -v gzip >/dev/null || skip 'no gzip here'
    write_samples
    predict --nearest 3 --grid 400x300 -o expected.csv
    predict --nearest 3 --grid 400x300 -o out.csv.gz
    gzip -dc out.csv.gz >out.csv
    same 'the packed file holds other bytes'
}

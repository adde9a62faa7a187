# rejected TEXT: predicting from the samples.csv at hand fails with TEXT and leaves nothing behind.
rejected()
{
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 1
    expect_stderr "$1"
    expect_empty_stdout
    expect_files samples.csv
}

test_AMissingFileIsNamed()
{
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: No such file or directory'
    expect_files
}

test_AFolderIsNoSamplesFile()
{
    mkdir samples.csv
    rejected 'samples.csv: Is a directory'
}

test_AnEmptyFileIsRejected()
{
    : >samples.csv
    rejected 'samples.csv, line 1: the file is empty; it needs a header row'
}

test_AHeaderWithoutSamplesIsRejected()
{
    printf 'x,y,z\n' >samples.csv
    rejected 'samples.csv: no samples: there is nothing below the header row'
}

test_ATruncatedQuoteIsRejectedWhereItsRecordBegins()
{
    printf 'x,y,z\n0,0,1\n"1,0,2\n0,1,3\n' >samples.csv
    rejected 'samples.csv, line 3, column 1: the quoted field is never closed'
}

test_ABinaryFileIsRejected()
{
    printf '\177ELF\002\001\001\000\000\000x,y,z\n' >samples.csv
    rejected 'samples.csv, line 1: a NUL byte'
}

test_BytesWithoutNulAreRejectedForTheirHeader()
{
    printf '\377\376\033[2J\302\n\201\n' >samples.csv
    rejected "samples.csv, line 1, column 'x': there is no such column"
    ! grep -q "$(printf '\033')" "$scratch/log/err" || fail 'an escape sequence reached the terminal'
}

test_AnOverflowIsRejectedWithLineAndColumn()
{
    printf 'x,y,z\n0,0,1\n1,0,1e999\n0,1,3\n' >samples.csv
    rejected "samples.csv, line 3, column 'z': '1e999' is too large for a double"
}

test_AnUnderflowIsRejectedWithLineAndColumn()
{
    printf 'x,y,z\n1e-400,0,1\n' >samples.csv
    rejected "samples.csv, line 2, column 'x': '1e-400' is too small for a double"
}

test_AnInfinityIsMissing()
{
    printf 'x,y,z\n0,-inf,1\n' >samples.csv
    rejected "samples.csv, line 2, column 'y': the value is missing ('-inf')"
}

test_AnEmptyCellIsMissing()
{
    printf 'x,y,z\n0,0,1\n0,,1\n' >samples.csv
    rejected "samples.csv, line 3, column 'y': the value is missing"
}

test_ATextIsNotANumber()
{
    printf 'x,y,z\n0,0,none\n' >samples.csv
    rejected "samples.csv, line 2, column 'z': 'none' is not a number"
}

test_LinesAreThoseOfAnEditorDespiteQuotedLineEndsAndBlankLines()
{
    printf 'note,x,y,z\n"a\nb",0,0,1\n\nc,0,0,bad\n' >samples.csv
    rejected "samples.csv, line 5, column 'z': 'bad' is not a number"
}

test_LinesOfACrlfFileAreCountedOnce()
{
    printf 'x,y,z\r\n0,0,1\r\n0,0,bad\r\n' >samples.csv
    rejected "samples.csv, line 3, column 'z': 'bad' is not a number"
}

test_AnUnknownColumnIsNamed()
{
    printf 'x,y,w\n0,0,1\n' >samples.csv
    rejected "samples.csv, line 1, column 'z': there is no such column; the header row has 'x', 'y', 'w'"
}

test_ADuplicateColumnNameIsRejected()
{
    printf 'x,y,z,z\n0,0,1,2\n' >samples.csv
    rejected "samples.csv, line 1, column 'z': the header row has this name twice, as column 3 and column 4"
}

test_AShortRowIsRejected()
{
    printf 'x,y,z\n0,0,1\n0,1\n' >samples.csv
    rejected "samples.csv, line 3, column 'z': the row ends before this column"
}

test_ADecimalCommaIsRejected()
{
    printf 'x,y,z\n0,5,0,1\n' >samples.csv
    rejected 'samples.csv, line 2, column 4: the row is longer than the header row'
}

test_AHundredThousandColumnsAreNoTrouble()
{
    awk 'BEGIN { n = 100000; printf "x,y,z"; for (i = 3; i < n; ++i) printf ",c%d", i; printf "\n";
        for (r = 0; r < 4; ++r) { printf "%d,%d,%d", r % 2, r / 2, r; for (i = 3; i < n; ++i) printf ","; printf "\n" } }' \
        >samples.csv
    predict --exact --grid x=0:0:1,y=0:0:1 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
0,0,0
EOF
}

test_AMissingTargetsFileIsNamed()
{
    write_samples
    predict --at none.csv -o out.csv
    expect_status 1
    expect_stderr 'none.csv: No such file or directory'
    expect_files samples.csv
}

test_ABadTargetLeavesNoOutput()
{
    write_samples
    printf 'y,x\n0,0\n0,oops\n' >targets.csv
    predict --at targets.csv -o out.csv
    expect_status 1
    expect_stderr "targets.csv, line 3, column 'x': 'oops' is not a number"
    expect_files samples.csv targets.csv
}

test_ABadTargetAfterManyWrittenOnesLeavesNoOutput()
{
    write_samples
    awk 'BEGIN { print "x,y"; for (i = 0; i < 70000; ++i) print "0.5,0.25"; print "0.5,nan" }' >targets.csv
    predict --at targets.csv -o out.csv
    expect_status 1
    expect_stderr "targets.csv, line 70002, column 'y': the value is missing"
    expect_files samples.csv targets.csv
}

test_AFailureLeavesTheFormerOutputAlone()
{
    write_samples
    printf 'x,y\n0,oops\n' >targets.csv
    echo former >out.csv
    predict --at targets.csv -o out.csv
    expect_status 1
    expect_file out.csv <<EOF
former
EOF
    expect_files out.csv samples.csv targets.csv
}

test_AnInputWithOneValueNamesTheWayOut()
{
    printf 'x,y,z\n0,2,1\n1,2,2\n2,2,3\n3,2,3\n' >samples.csv
    rejected "samples.csv: the input 'y' has one value in all samples (2); leave it out of --inputs"
}

test_TooFewSamplesNameTheWayOut()
{
    printf 'x,y,z\n0,0,1\n1,1,2\n' >samples.csv
    rejected 'samples.csv: 2 samples are too few for 2 inputs: at least 3 are needed'
}

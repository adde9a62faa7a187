test_ColumnsAreListedWithWhatTheyHold()
{
    printf 'id;x;y;z;note\n1;0;0;1;a\n2;1;;2;\n3;0;1;n/a;b\n4;1;1;4;7\n5;1;1;-5e3;\n' >samples.csv
    krige info samples.csv
    expect_status 0
    tr -s ' ' <"$scratch/log/out" >out
    head -n 7 out >head
    expect_file head <<END
file: samples.csv, 5 rows, 5 columns, delimiter semicolon
 column numbers missing other least greatest
 'id' 5 0 0 1 5
 'x' 5 0 0 0 1
 'y' 4 1 0 0 1
 'z' 4 0 1 -5000 4
 'note' 1 2 2 7 7
END
    expect_stdout 'inputs: x,y; outputs: z (guessed'
    expect_stdout 'samples: 3 rows with a number in each of these columns, 2 without'
    expect_stdout 'coincident: 2 of 3 samples coincide; --duplicates merge averages them and leaves 2 points'
    expect_stdout 'global model: 2 points, '
    expect_stdout 'suggestion: krige predict samples.csv --inputs x,y --outputs z --skip-missing --duplicates merge --grid 200x200 -o estimates.csv'
    [ ! -s "$scratch/log/err" ] || fail 'standard error is not empty'
}

test_TheSuggestedCommandWorks()
{
    printf 'x,"the ""depth"", m",z\n0,0,1\n1,0,2\n0,1,3\n1,1,4\n' >"my 'samples'.csv"
    krige info "my 'samples'.csv"
    expect_status 0
    command=$(sed -n 's/^suggestion: krige //p' "$scratch/log/out")
    [ -n "$command" ] || fail 'no command is suggested'
    eval "krige $command"
    expect_status 0
    expect_files estimates.csv "my 'samples'.csv"
}

test_NamedColumnsAreTakenInsteadOfGuesses()
{
    printf 'x,y,z\n0,5,1\n1,5,2\n2,6,3\n' >samples.csv
    krige info samples.csv --inputs z --outputs y
    expect_status 0
    expect_stdout 'inputs: z; outputs: y'
    expect_stdout 'coincident: none'
    expect_stdout '--inputs z --outputs y --grid 1000 -o'
}

test_AnUnknownColumnIsNamed()
{
    write_samples
    krige info samples.csv --inputs x,q --outputs z
    expect_status 1
    expect_stderr "samples.csv: there is no column 'q'"
}

test_AModelTooLargeIsSuggestedWithItsNearestSamples()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 400000; ++i) printf "%d,%d,%d\n", i % 2000, i / 2000, i % 7 }' >samples.csv
    krige info samples.csv
    expect_status 0
    expect_stdout 'global model: 400000 points, 1.28 TB of memory'
    expect_stdout 'measured here with 1500 points, then scaled'
    expect_stdout '--nearest 32'
}

test_AFileOfTextsGetsNoSuggestion()
{
    printf 'a,b\nu,v\n' >samples.csv
    krige info samples.csv
    expect_status 0
    expect_stdout 'suggestion: none'
}

test_UnevenRowsAndNamesThatStandTwiceAreNoTrouble()
{
    printf 'x,x,y,z\n1,2,3,4\n1,2\n1,2,3,4,5\n' >samples.csv
    krige info samples.csv
    expect_status 0
    expect_stdout 'uneven: 2 rows not as long as the header row, the first in line 3'
    expect_stdout 'inputs: y; outputs: z'
}

test_AHeaderAloneIsNoTrouble()
{
    printf 'x,y\n' >samples.csv
    krige info samples.csv
    expect_status 0
    expect_stdout 'file: samples.csv, 0 rows'
}

test_HostileFilesAreErrorsOrSurveysAndNeverCrashes()
{
    : >empty.csv
    krige info empty.csv
    expect_status 1
    expect_stderr 'empty.csv, line 1: the file is empty'
    mkdir folder.csv
    krige info folder.csv
    expect_status 1
    expect_stderr 'folder.csv: Is a directory'
    head -c 100000 "$program" >binary.csv
    krige info binary.csv
    expect_status 1
    expect_stderr 'binary.csv, line 1: a NUL byte'
    printf 'x,y\033[2J,z\n1,2,1e999\n' >escape.csv
    krige info escape.csv
    expect_status 0
    ! grep -q "$(printf '\033')" "$scratch/log/out" || fail 'an escape sequence reached the terminal'
    awk 'BEGIN { n = 100000; printf "x"; for (i = 1; i < n; ++i) printf ",c%d", i; printf "\n";
        for (r = 0; r < 4; ++r) { printf "%d", r; for (i = 1; i < n; ++i) printf ",%d", r; printf "\n" } }' >wide.csv
    krige info wide.csv --inputs x --outputs c7
    expect_status 0
    expect_stdout 'wide.csv, 4 rows, 100000 columns'
}

# within_2_GB SUBCOMMAND ARGUMENTS...: over as many samples as need 3.4 in the covariance form, twice that exactly.
within_2_GB()
{
    subcommand=$1
    shift
    (ulimit -v 2000000; "$program" --version) >/dev/null 2>&1 || skip 'the program needs more address space to begin'
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 29000; ++i) printf "%d,%d,%d\n", i % 200, i / 200, i % 7 }' >samples.csv
    (ulimit -v 2000000; "$program" "$subcommand" samples.csv --inputs x,y --outputs z "$@") \
        >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
}

test_AModelLargerThanTheMemoryIsRefusedWithFiguresAndTheWayOut()
{
    within_2_GB predict --grid 3x3 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: a model over all 29000 points takes 3.'
    expect_stderr ' GB of memory and there are 1.'
    expect_stderr 'add --nearest 32 to work on the nearest samples'
    expect_files samples.csv
}

test_ALocalModelOverAsManySamplesIsNotRefused()
{
    within_2_GB predict --grid 3x3 -o out.csv --nearest 8
    expect_status 0
}

test_ValidationRefusesAModelLargerThanTheMemory()
{
    for mode in '--folds 10' --leave-one-out; do
        # shellcheck disable=SC2086
        within_2_GB validate $mode
        expect_status 1
        expect_stderr 'add --nearest 32 to work on the nearest samples'
    done
}

test_TuningRefusesAModelLargerThanTheMemoryWhereItIsInsistedOn()
{
    within_2_GB tune -o best.toml --fix nearest --nearest 0
    expect_status 1
    expect_stderr 'add --nearest 32 to work on the nearest samples'
    expect_files samples.csv
}

# Which engine estimates, and on how many threads.

test_TheReportNamesTheEngineOnceBeforeTheTime()
{
    write_samples
    predict --grid 3x3 -o out.csv
    expect_status 0
    expect_stderr 'engine: '
    [ "$(grep -c '^engine: ' "$scratch/log/err")" = 1 ] || fail 'the engine is named more than once'
    [ "$(tail -n 1 "$scratch/log/err" | cut -c -6)" = 'time: ' ] || fail 'the time is not the last line'
}

test_AnExactRunSaysThatItIsOne()
{
    write_samples
    predict --grid 3x3 --exact -o out.csv
    expect_status 0
    expect_stderr 'engine: exact'
}

test_ALocalRunNamesTheLocalEngine()
{
    write_samples
    predict --grid 3x3 --nearest 3 -o out.csv
    expect_status 0
    expect_stderr 'engine: local'
}

test_TheNumberOfThreadsChangesNoByte()
{
    volcano="$examples/volcano/samples.csv --inputs x,y --outputs elevation --grid 60x50 --variance"
    for engine in '' '--exact' '--nearest 16' '--exact --nearest 16'; do
        # shellcheck disable=SC2086
        krige predict $volcano $engine --threads 1 -o one.csv
        expect_status 0
        # shellcheck disable=SC2086
        krige predict $volcano $engine --threads 3 -o three.csv
        expect_status 0
        cmp one.csv three.csv || fail "$engine: the estimates differ"
    done
}

test_AtLeastOneThreadIsNeeded()
{
    write_samples
    predict --grid 3x3 --threads 0 -o out.csv
    expect_status 2
    expect_stderr '--threads'
}

test_ValidationNamesTheEngineToo()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --against samples.csv --exact
    expect_status 0
    expect_stderr 'engine: exact'
}

test_LeavingOneOutHasItsOwnWay()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z --leave-one-out --exact
    expect_status 2
    expect_stderr '--exact'
}

test_TuningTakesBothOptions()
{
    write_samples
    krige tune samples.csv --inputs x,y --outputs z --max-trials 2 --held-out 0 --threads 1 --exact
    expect_status 0
    expect_stdout 'winner'
}

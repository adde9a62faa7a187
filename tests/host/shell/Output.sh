test_AMissingOutputFolderIsAnError()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o none/out.csv
    expect_status 1
    expect_stderr 'none/out.csv: cannot be written: No such file or directory'
    expect_files samples.csv
}

test_AFolderAsOutputFileIsAnError()
{
    write_samples
    mkdir out.csv
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 1
    expect_stderr 'out.csv: cannot be written: it is a folder'
    expect_files out.csv samples.csv
}

# as_nobody ARGUMENTS...: without the rights of the superuser, for whom no folder is closed.
as_nobody()
{
    if [ "$(id -u)" -ne 0 ]; then
        krige "$@"
        return
    fi
    chmod 755 "$scratch" "$scratch/work"
    setpriv --reuid=65534 --regid=65534 --clear-groups "$program" --version >/dev/null 2>&1 ||
        skip 'the program cannot be run as another user here'
    setpriv --reuid=65534 --regid=65534 --clear-groups "$program" "$@" >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
}

test_AnUnwritableOutputFolderIsAnError()
{
    write_samples
    mkdir closed
    chmod 555 closed
    as_nobody predict samples.csv --inputs x,y --outputs z --grid x=0:1:2,y=0:1:2 -o closed/out.csv
    expect_status 1
    expect_stderr 'closed/out.csv: cannot be written: Permission denied'
    [ -z "$(ls -A closed)" ] || fail 'something is in the closed folder'
}

test_AWriteProtectedOutputFileIsAnError()
{
    write_samples
    mkdir open
    echo former >open/out.csv
    chmod 777 open
    chmod 444 open/out.csv
    as_nobody predict samples.csv --inputs x,y --outputs z --grid x=0:1:2,y=0:1:2 -o open/out.csv
    expect_status 1
    expect_stderr 'open/out.csv: cannot be written: Permission denied'
    expect_file open/out.csv <<EOF
former
EOF
}

test_AFullDiskIsAnError()
{
    [ -c /dev/full ] || skip 'no /dev/full here'
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o /dev/full
    expect_status 1
    expect_stderr '/dev/full: writing failed: No space left on device'
    [ -c /dev/full ] || fail 'the device was replaced'
}

test_StandardOutputByItsDeviceNameIsAPipeLikeAnyOther()
{
    write_samples
    "$program" predict samples.csv --exact --inputs x,y --outputs z --grid x=0:0:1,y=0:1:2 -o /dev/stdout 2>/dev/null |
        cat >caught.csv
    expect_file caught.csv <<EOF
x,y,z
0,0,0
0,1,10
EOF
}

test_AFormerOutputIsReplaced()
{
    write_samples
    echo former >out.csv
    predict --exact --grid x=0:0:1,y=0:1:2 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
0,0,0
0,1,10
EOF
    expect_files out.csv samples.csv
}

# fails_when_full ARGUMENTS...: with a full disk behind standard output.
fails_when_full()
{
    [ -c /dev/full ] || skip 'no /dev/full here'
    "$program" "$@" >/dev/full 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'krige: standard output: writing failed'
}

test_EveryCommandFailsWhereItsResultsAreLost()
{
    write_samples
    fails_when_full info samples.csv
    fails_when_full validate samples.csv --inputs x,y --outputs z
    fails_when_full tune samples.csv --inputs x,y --outputs z --max-trials 3
    fails_when_full variogram samples.csv --inputs x,y --outputs z
}

test_HelpAndVersionFailWhereTheyAreLost()
{
    fails_when_full --help
    fails_when_full --version
    fails_when_full help predict
    fails_when_full info --help
}

test_LeftoversOfKilledRunsAreNamed()
{
    write_samples
    mkdir out
    sh -c 'echo $$' >gone
    : >"out/.krige-$(cat gone)-1-0.tmp"
    predict --grid 2x2 -o out/grid.csv
    expect_status 0
    expect_stderr "left over: out/.krige-$(cat gone)-1-0.tmp, a temporary file of a run that was killed; remove it"
    predict --grid 2x2 -o out/grid.csv --quiet
    expect_no_stderr 'left over'
    rm out/.krige-*
    predict --grid 2x2 -o out/grid.csv
    expect_no_stderr 'left over'
}

test_AKilledRunLeavesAFileThatTheNextOneNames()
{
    write_samples
    "$program" predict samples.csv --inputs x,y --outputs z --grid 100000x100000 --yes -o out.csv 2>/dev/null &
    waited=0
    until ls .krige-* >/dev/null 2>&1 || [ "$waited" -ge 60 ]; do
        sleep 1
        waited=$((waited + 1))
    done
    name=$(ls .krige-*)
    predict --grid 2x2 -o other.csv
    expect_no_stderr 'left over' # for it runs
    kill -KILL $!
    wait $! 2>/dev/null
    predict --grid 2x2 -o other.csv
    expect_status 0
    expect_stderr "left over: ./$name, a temporary file of a run that was killed; remove it"
}

test_PipesAreFilesLikeAnyOther()
{
    write_samples
    predict --grid 3x3 -o expected.csv
    mkfifo samples.pipe out.pipe
    cat samples.csv >samples.pipe &
    cat out.pipe >out.csv &
    krige predict samples.pipe --inputs x,y --outputs z --grid 3x3 -o out.pipe
    expect_status 0
    wait
    cmp expected.csv out.csv || fail 'pipes give other bytes'
    [ -p out.pipe ] || fail 'the pipe was replaced'
}

test_EveryCommandWritesToStandardOutput()
{
    write_samples
    krige validate samples.csv --inputs x,y --outputs z -o -
    expect_status 0
    [ "$(head -c 5 "$scratch/log/out")" = 'line,' ] || fail 'no points'
    krige tune samples.csv --inputs x,y --outputs z --max-trials 3 -o -
    expect_status 0
    [ "$(head -c 2 "$scratch/log/out")" = '# ' ] || fail 'no settings'
    krige tune samples.csv --inputs x,y --outputs z --max-trials 3 --trials -
    expect_status 0
    ! grep -q RMSE "$scratch/log/out" || fail 'scores among the trials'
    krige variogram samples.csv --inputs x,y --outputs z -o -
    expect_status 0
    [ "$(head -c 9 "$scratch/log/out")" = 'lower_lag' ] || fail 'no lags'
}

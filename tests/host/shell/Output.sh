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

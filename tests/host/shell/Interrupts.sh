# interrupted SIGNAL STATUS: stops a run of hours once it has begun to write.
interrupted()
{
    write_samples
    env --default-signal=INT "$program" predict samples.csv --inputs x,y --outputs z \
        --grid x=0:1:1000000,y=0:1:1000000 --yes -o out.csv >"$scratch/log/out" 2>"$scratch/log/err" &
    process=$!
    waited=0
    until [ -n "$(find . -name '.krige-*.tmp' -size +0)" ]; do
        waited=$((waited + 1))
        [ "$waited" -lt 300 ] || { kill -KILL "$process"; fail 'no temporary file appeared'; }
        sleep 0.1
    done
    kill -"$1" "$process"
    wait "$process"
    status=$?
    expect_status "$2"
    expect_files samples.csv
}

test_CtrlCLeavesNoOutput()
{
    env --default-signal=INT true 2>/dev/null || skip 'env cannot reset signals here'
    interrupted INT 130
}

test_TerminationLeavesNoOutput()
{
    env --default-signal=INT true 2>/dev/null || skip 'env cannot reset signals here'
    interrupted TERM 143
}

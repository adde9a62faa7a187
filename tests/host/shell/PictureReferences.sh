# Every kind of picture beside a reference rendering that a person has looked at (tests/host/pictures/references). With
# UPDATE_PICTURES=1 in the environment the references are written anew: look at them before they are committed.

compare=$(dirname "$script")/../pictures/compare_picture.py
references=$(dirname "$script")/../pictures/references

# expect_picture NAME: draws NAME.gp without its texts, for fonts differ, and compares it.
expect_picture()
{
    expect_status 0
    command -v gnuplot >/dev/null || skip 'no gnuplot here'
    command -v python3 >/dev/null || skip 'no python3 here'
    sed '/^set terminal/s/fontscale [0-9.]*/fontscale 0.05/' "$1.gp" >textless.gp
    gnuplot -d textless.gp 2>"$scratch/log/err" || fail 'gnuplot refuses it'
    if [ -n "${UPDATE_PICTURES:-}" ]; then
        python3 "$compare" --update "$1.png" "$references/$1.png" || fail 'no reference written'
    fi
    python3 "$compare" "$1.png" "$references/$1.png" >"$scratch/log/out" 2>>"$scratch/log/err" ||
        fail "$1 does not look as before"
    cat "$scratch/log/out"
}

rainfall()
{
    subcommand=$1
    shift
    krige "$subcommand" "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --scale 1,1 --range 100000u \
        --units m "$@"
}

write_line()
{
    awk 'BEGIN { print "t,z"; for (i = 0; i < 20; ++i)
        printf "%d,%g\n", 2451545 + 7 * i + (i * 5) % 4, (i * 7) % 10 / 10 + i / 8 }' >line.csv
}

test_AMapLooksAsBefore()
{
    rainfall predict --grid 80x50 -o out.csv --title Rainfall --output-units mm --plot-size 500x360 --plot map.gp
    expect_picture map
}

test_ContoursAndValuesLookAsBefore()
{
    krige predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 87x61 --contours \
        --points values -o out.csv --plot-size 500x360 --plot contours.gp
    expect_picture contours
}

test_BothBesideEachOtherLookAsBefore()
{
    rainfall predict --grid x=-300000:300000:121,y=-250000:250000:101 --plot-both --points none -o out.csv \
        --plot-size 800x340 --plot both.gp
    expect_picture both
}

test_SlicesLookAsBefore()
{
    krige predict "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --nearest 20 \
        --grid long=160:190:61,lat=-40:-10:61,depth=0:700:36 -o out.csv --plot-size 800x640 --plot slices.gp
    expect_picture slices
}

test_TargetsOfAFileLookAsBefore()
{
    head -n 60 "$examples/rainfall/truth.csv" >targets.csv
    rainfall predict --at targets.csv --plot-column stderr -o out.csv --plot-size 500x360 --plot targets.gp
    expect_picture targets
}

test_ALineInItsBandLooksAsBefore()
{
    write_line
    krige predict line.csv --inputs t --outputs z --nugget 0.1 --range 60u --scale 1 --grid t=2451480:2451800:161 \
        -o out.csv --units d --plot-size 500x360 --plot line.gp
    expect_picture line
}

test_ValidationLooksAsBefore()
{
    rainfall validate --leave-one-out --plot-size 700x680 --plot validation.gp
    expect_picture validation
}

test_ValidationAlongOneInputLooksAsBefore()
{
    write_line
    krige validate line.csv --inputs t --outputs z --nugget 0.1 --leave-one-out --plot-size 700x680 --plot along.gp
    expect_picture along
}

test_ASemivariogramLooksAsBefore()
{
    rainfall variogram --plot-size 500x400 --plot variogram.gp
    expect_picture variogram
}

test_ASemivariogramOfSingleLagsLooksAsBefore()
{
    rainfall variogram --lags all --plot-size 500x400 --plot lags.gp
    expect_picture lags
}

test_AnotherPictureIsToldFromTheReference()
{
    [ -z "${UPDATE_PICTURES:-}" ] || skip 'references are being written'
    command -v gnuplot >/dev/null || skip 'no gnuplot here'
    command -v python3 >/dev/null || skip 'no python3 here'
    krige predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 87x61 \
        --points values -o out.csv --plot-size 500x360 --plot contours.gp
    sed '/^set terminal/s/fontscale [0-9.]*/fontscale 0.05/' contours.gp >textless.gp
    gnuplot -d textless.gp 2>"$scratch/log/err" || fail 'gnuplot refuses it'
    ! python3 "$compare" contours.png "$references/contours.png" >"$scratch/log/out" 2>&1 || fail 'contours are not missed'
}

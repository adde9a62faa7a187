# turned FILE COLUMNS...: the rainfall samples, or targets, rotated by 30 degrees, what lies across stretched by 2.
turn()
{
    awk -F, -v OFS=, 'BEGIN { c = cos(atan2(1, 1) * 2 / 3); s = sin(atan2(1, 1) * 2 / 3) }
        NR == 1 { for (i = 1; i <= NF; ++i) { if ($i == "x") X = i; if ($i == "y") Y = i } print; next }
        { x = $X; y = $Y; $X = sprintf("%.17g", x * c + y * s); $Y = sprintf("%.17g", 2 * (y * c - x * s)); print }' "$1"
}

test_SamplesAndTargetsAreTurnedAndStretchedBeforeTheModel()
{
    printf 'x,y\n-120000,-80000\n0,0\n35000,60000\n150000,-20000\n' >targets.csv
    turn "$examples/rainfall/samples.csv" >turned_samples.csv
    turn targets.csv >turned_targets.csv
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --range 0.3 --nugget 0.1 --variance \
        --anisotropy 2,30 --at targets.csv -o out.csv
    expect_status 0
    expect_stderr 'anisotropy: the longer range lies at 30 degrees from the axis of the first input, 2 times the shorter one'
    krige predict turned_samples.csv --inputs x,y --outputs rainfall --range 0.3 --nugget 0.1 --variance --scale 1,1 \
        --at turned_targets.csv -o turned.csv
    expect_status 0
    paste -d, out.csv turned.csv | awk -F, 'NR > 1 { for (i = 3; i <= 5; ++i)
        if (($i - $(i + 5)) ^ 2 > 1e-18 * $i ^ 2) exit 1 }' || { cat out.csv turned.csv; fail 'other estimates'; }
    cut -d, -f1,2 out.csv | cmp - targets.csv || fail 'targets are not those of the file'
}

test_WithoutAnglesItIsAScaleOfOneEach()
{
    for options in '--scale 1,1' '--anisotropy 1,0'; do
        # shellcheck disable=SC2086
        krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall $options --grid 5x4 -o \
            "out${options%% *}.csv"
        expect_status 0
    done
    cmp out--scale.csv out--anisotropy.csv || fail 'other estimates'
}

test_GridsAndPicturesStayInTheCoordinatesOfTheFile()
{
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --anisotropy 3,120 --grid 5x4 \
        -o grid.vtk --plot grid.gp
    expect_status 0
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --grid 5x4 -o plain.vtk --plot plain.gp
    sed -n '1,/^LOOKUP_TABLE/p' grid.vtk >head
    sed -n '1,/^LOOKUP_TABLE/p' plain.vtk | cmp head - || fail 'another grid'
    grep '^set [xy]range' grid.gp >ranges
    grep '^set [xy]range' plain.gp | cmp ranges - || fail 'another picture'
}

test_ValidateAndVariogramTurnTheSamplesToo()
{
    turn "$examples/rainfall/samples.csv" >turned.csv
    for command in 'validate' 'validate --leave-one-out' 'variogram --lags 8'; do
        # shellcheck disable=SC2086
        krige $command "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --anisotropy 2,30 --quiet
        expect_status 0
        sed -n '1,/^$/p' "$scratch/log/out" | cut -c1-60 >first
        # shellcheck disable=SC2086
        krige $command turned.csv --inputs x,y --outputs rainfall --scale 1,1 --quiet
        expect_status 0
        sed -n '1,/^$/p' "$scratch/log/out" | cut -c1-60 | cmp - first || fail "$command does otherwise"
    done
}

test_ItTakesThePlaceOfScaleFactors()
{
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --anisotropy 2,30 --scale 1,1 --grid \
        3x3 -o out.csv
    expect_status 2
    expect_stderr 'anisotropy'
    expect_stderr 'scale'
    printf 'anisotropy = [2, 30]\nscale = [1, 1]\n' >both.toml
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --config both.toml --grid 3x3 -o out.csv
    expect_status 1
    expect_stderr "both.toml, line 1: 'anisotropy' takes the place of 'scale'; keep one of them"
}

test_AnOptionWinsOverTheOtherOneInTheFile()
{
    printf 'anisotropy = [2, 30]\n' >turned.toml
    printf 'scale = [1, 5]\n' >scaled.toml
    for options in '--config turned.toml --scale 1,5' '--config scaled.toml' '--config scaled.toml --anisotropy 2,30' \
        '--config turned.toml'; do
        # shellcheck disable=SC2086
        krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall $options --grid 3x3 -o \
            "out$((n = ${n:-0} + 1)).csv"
        expect_status 0
    done
    cmp out1.csv out2.csv || fail '--scale does not win'
    cmp out3.csv out4.csv || fail '--anisotropy does not win'
    ! cmp -s out1.csv out3.csv || fail 'both are the same'
}

test_WhatIsNoAnisotropyIsAUsageError()
{
    write_samples
    while IFS='|' read -r value message; do
        predict --grid 2x2 --anisotropy "$value" -o out.csv
        expect_status 2
        expect_stderr "--anisotropy: $message"
    done <<EOF
2|needs RATIO,ANGLE, not '2'
2,30,1|needs RATIO,ANGLE, not '2,30,1'
0.5,30|the ratio of the longer over the shorter range must be at least 1, not '0.5'; turn ANGLE by 90 degrees instead
a,30|'a' is not a number
2,inf|needs a finite number, not 'inf'
EOF
    printf 'x,z\n0,1\n1,2\n2,4\n' >line.csv
    krige predict line.csv --inputs x --outputs z --anisotropy 2,30 --grid 3 -o out.csv
    expect_status 2
    expect_stderr '--anisotropy: has an angle with two inputs only, but there is 1 input'
}

# search ARGUMENTS...: for the ratio and the angle of the rainfall example.
search()
{
    krige tune "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall "$@"
}

test_TuneSearchesRatioAndAngle()
{
    search --anisotropy search --trials trials.csv -o best.toml
    expect_status 0
    expect_stderr ', nugget 0 to 0.99, anisotropy, nearest all, 16 and 32'
    awk -F '[][, ]+' '$1 == "anisotropy" { ratio = $3; angle = $4 }
        END { exit !(ratio > 2 && ratio <= 8 && angle > 30 && angle < 70) }' best.toml || { cat best.toml; fail 'not that of the valleys'; }
    ! grep -q '^scale' best.toml || fail 'scales beside it'
    ratio=$(sed -n 's/^anisotropy = \[\([^,]*\), \(.*\)\]/\1,\2/p' best.toml)
    expect_stdout " --anisotropy $ratio --sill"
    head -n 1 trials.csv | grep -qx 'trial,drift,range,nugget,nearest,scale,anisotropy,deviance,score,winner,failure' ||
        fail 'no column for it'
    grep -q '"1,1",""' trials.csv || fail 'equal scales are not tried'
    [ "$(awk -F, '$(NF - 1) == 1' trials.csv | grep -c "\"$ratio\"")" -eq 1 ] || fail 'not the winner of the trials'

    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --config best.toml --grid 4x4 -o file.csv
    expect_status 0
    # shellcheck disable=SC2046
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall \
        $(search --anisotropy search --quiet; sed -n 's/^winner, trial .*: //p' "$scratch/log/out") --grid 4x4 -o options.csv
    expect_status 0
    cmp file.csv options.csv || fail 'the winner is not repeated'
}

test_ASearchNeedsNoWordBeforeAnotherOption()
{
    search --anisotropy search --quiet --max-trials 60
    cp "$scratch/log/out" word
    search --anisotropy --quiet --max-trials 60
    expect_status 0
    cmp word "$scratch/log/out" || fail 'another search'
    printf 'scale = [1, 3]\nrange = 1\n' >scaled.toml
    search --config scaled.toml --anisotropy --quiet --max-trials 60
    expect_status 0
    cmp word "$scratch/log/out" || fail 'it does not start from equal scales'
}

test_AGivenAnisotropyIsKeptByTune()
{
    search --anisotropy 2,30 --max-trials 20 -o best.toml
    expect_status 0
    grep -qx 'anisotropy = \[2, 30\]' best.toml || { cat best.toml; fail 'not kept'; }
    search --config best.toml --max-trials 20 -o again.toml
    grep -qx 'anisotropy = \[2, 30\]' again.toml || { cat again.toml; fail 'not kept from a file'; }
}

test_WhatCannotBeSearchedIsAUsageError()
{
    search --anisotropy find
    expect_status 2
    expect_stderr "--anisotropy: needs search or RATIO,ANGLE, not 'find'"
    search --anisotropy search --fix scale
    expect_status 2
    expect_stderr '--anisotropy search: takes the place of scales, which --fix scale keeps; leave one of them out'
    search --anisotropy search --scale 1,1
    expect_status 2
    krige tune "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --anisotropy search
    expect_status 2
    expect_stderr '--anisotropy search: has an angle with two inputs only, but there are 3 inputs'
    write_samples
    predict --grid 2x2 --anisotropy search -o out.csv
    expect_status 2
    expect_stderr "--anisotropy: needs RATIO,ANGLE, not 'search'"
    printf 'anisotropy = "search"\n' >search.toml
    search --config search.toml
    expect_status 1
}

require_gnuplot()
{
    command -v gnuplot >/dev/null || skip 'no gnuplot here'
}

# expect_png NAME: a picture with more than a few colours.
expect_png()
{
    [ "$(head -c 8 "$1" | od -An -tx1 | tr -d ' ')" = 89504e470d0a1a0a ] || fail "$1 is no PNG"
    [ "$(wc -c <"$1")" -gt 8000 ] || fail "$1 is all but empty"
}

volcano()
{
    krige predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 20x20 -o out.csv "$@"
}

test_ASurfaceIsDrawn()
{
    require_gnuplot
    volcano --plot surface.png
    expect_status 0
    expect_png surface.png
    expect_files out.csv surface.png
}

test_AnSvgHoldsTheNamesOfTheColumns()
{
    require_gnuplot
    volcano --plot surface.svg
    expect_status 0
    tail -n 3 surface.svg | grep -q '</svg>' || fail 'surface.svg is cut off'
    for text in '>x<' '>y<' '>elevation<'; do
        tr -d '\n\t' <surface.svg | grep -q "$text" || fail "$text is missing"
    done
}

test_APdfIsAPageOfTheSizeThatIsAskedFor()
{
    require_gnuplot
    volcano --plot surface.pdf --plot-size 960x480
    expect_status 0
    [ "$(head -c 5 surface.pdf)" = '%PDF-' ] || fail 'no PDF'
    grep -aq '720 360' surface.pdf || fail 'not 10 by 5 inches'
}

test_APngHasTheSizeThatIsAskedFor()
{
    require_gnuplot
    volcano --plot surface.png --plot-size 300x250 --title 'A title'
    expect_status 0
    # Bytes 16 to 24 are width and height.
    [ "$(tail -c +17 surface.png | head -c 8 | od -An -tx1 | tr -d ' ')" = 0000012c000000fa ] || fail 'another size'
}

test_TheScriptDrawsByItself()
{
    require_gnuplot
    volcano --plot surface.gp
    expect_status 0
    expect_files out.csv surface.gp
    gnuplot surface.gp >"$scratch/log/out" 2>"$scratch/log/err" || fail 'gnuplot refuses it'
    expect_png surface.png
}

test_ThreeInputsGiveSlices()
{
    krige predict "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --nearest 20 \
        --at "$examples/quakes/truth.csv" -o out.csv --plot slices.gp
    expect_status 0
    [ "$(grep -c 'with image' slices.gp)" -eq 3 ] || fail 'not three slices'
    # The mean of the samples' depths.
    mean=$(awk -F, 'NR > 1 { s += $3; ++n } END { printf "%.6g", s / n }' "$examples/quakes/samples.csv")
    grep -qF "'depth = $mean'" slices.gp || { grep 'set label' slices.gp; fail 'not at the mean'; }
}

test_AGridOfOneLayerIsDrawnThere()
{
    krige predict "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --nearest 20 \
        --grid long=165:188:5,lat=-38:-11:5,depth=100:100:1 -o out.csv --plot layer.gp
    expect_status 0
    [ "$(grep -c 'with image' layer.gp)" -eq 1 ] || fail 'not one picture'
    grep -qF "depth = 100'" layer.gp || fail 'not at that depth'
}

test_OneInputGivesALine()
{
    require_gnuplot
    printf 'x,z\n0,1\n1,3\n3,2\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --grid 50 -o out.csv --plot line.png
    expect_status 0
    expect_png line.png
}

test_ValidationAndVariogramAreDrawn()
{
    require_gnuplot
    krige validate "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --plot fit.png
    expect_status 0
    expect_png fit.png
    krige variogram "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --lags 12 --plot lags.png
    expect_status 0
    expect_png lags.png
    krige variogram "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --plot all.png
    expect_status 0
    expect_png all.png
}

test_NamesReachNoInterpreter()
{
    require_gnuplot
    # Backquotes, macros, quotes, formats, mark-up, a line end, a bell, a byte that is no UTF-8.
    name="$(printf "a'b\`touch pwned\`@z%%s_{1}\\\\n<&>\$(touch pwned);!touch pwned\nset output 'pwned'\a\377")"
    field=$(printf '%s' "$name" | sed 's/"/""/g')
    { printf '"%s","|touch pwned"\n' "$field"; printf '0,1\n1,3\n3,2\n5,4\n4,1\n'; } >samples.csv
    for ending in png svg pdf gp; do
        krige predict samples.csv --inputs "\"$field\"" --outputs '|touch pwned' --at samples.csv -o out.csv \
            --output-units "\"$field\"" --title "$(printf '%s' "$name" | tr -d '\n\a')" --plot "p.$ending"
        expect_status 0
        krige validate samples.csv --inputs '|touch pwned' --outputs "\"$field\"" --nugget 0.1 --plot "v.$ending"
        expect_status 0
        krige variogram samples.csv --inputs '|touch pwned' --outputs "\"$field\"" --plot "s.$ending"
        expect_status 0
    done
    gnuplot p.gp && gnuplot v.gp && gnuplot s.gp || fail 'a script does not run'
    expect_files out.csv p.gp p.pdf p.png p.svg s.gp s.pdf s.png s.svg samples.csv v.gp v.pdf v.png v.svg
}

test_PicturesOfConstantsAndHugeNumbersAreDrawn()
{
    require_gnuplot
    printf 'x,y,c,h\n0,0,7,1e300\n1,0,7,-1e300\n0,1,7,5e299\n1,1,7,0\n0.5,0.6,7,1e299\n' >samples.csv
    krige predict samples.csv --inputs x,y --outputs c,h --grid 3x3 -o out.csv --plot p.png
    expect_status 0
    expect_png p.png
    krige validate samples.csv --inputs x,y --outputs c --plot v.png
    expect_status 0
    krige variogram samples.csv --inputs x,y --outputs c --plot s.png
    expect_status 0
}

# Ticks and margins as they stand in a script.
test_TicksOfMetresDoNotTouchEachOther()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 40; ++i)
        printf "%d,%d,%d\n", 178600 + (i * 997) % 2800, 329700 + (i * 1409) % 3900, i % 9 }' >metres.csv
    krige predict metres.csv --inputs x,y --outputs z --scale 1,1 --grid 20x20 -o out.csv --plot narrow.gp
    expect_status 0
    # The room of a label: 70 pixels of the picture's width.
    width=$(sed -n 's/^set terminal.* size \([0-9]*\),.*/\1/p' narrow.gp)
    from=$(sed -n 's/^set lmargin at screen //p' narrow.gp)
    to=$(sed -n 's/^set rmargin at screen //p' narrow.gp)
    range=$(sed -n 's/^set xrange \[\(.*\):\(.*\)\]/\1 \2/p' narrow.gp)
    sed -n 's/^set xtics out nomirror (\(.*\)) scale tick$/\1/p' narrow.gp | tr ',' '\n' | sed "s/.*' //" >ticks
    [ "$(wc -l <ticks)" -ge 2 ] || fail 'no ticks'
    awk -v width="$width" -v from="$from" -v to="$to" -v range="$range" '
        BEGIN { split(range, end, " ") }
        NR > 1 && ($1 - last) / (end[2] - end[1]) * (to - from) * width < 70 { exit 1 }
        { last = $1 }' ticks || { cat ticks; fail 'ticks are too close'; }
}

test_OfALargeGridEverySoManyNodesAreDrawnAndThatIsSaid()
{
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --nearest 8 --grid 1500x20 \
        -o out.csv --plot map.gp
    expect_status 0
    expect_stderr "picture: shows 500 of 1500 nodes along 'x'"
    [ "$(wc -l <out.csv)" = 30001 ] || fail 'the table is thinned too'
    krige predict "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --nearest 8 --grid 150x20 \
        -o out.csv --plot map.gp
    expect_no_stderr 'picture:'
}

test_WhatIsDrawnIsWhatStandsInTheTable()
{
    volcano --variance --plot map.gp --plot-column stderr
    expect_status 0
    # The first row of nodes, to nine digits.
    sed -n '/^\$data1/,/^END/p' map.gp | sed -n 2p | tr ' ' '\n' >drawn
    awk -F, 'NR > 1 && NR < 22 { printf "%.9g\n", $5 }' out.csv | cmp - drawn || fail 'other values'
}

test_UnitsOfOutputsStandInPictures()
{
    sed '1s/rainfall/"rainfall [mm]"/' "$examples/rainfall/samples.csv" >samples.csv
    krige variogram samples.csv --inputs x,y --outputs 'rainfall [mm]' --plot v.gp
    grep -qF "'semivariance of rainfall (mm²)'" v.gp || fail 'no unit in the semivariogram'
    krige validate samples.csv --inputs x,y --outputs 'rainfall [mm]' --output-units inch --plot p.gp
    grep -qF "'error of rainfall (inch)'" p.gp || fail 'no unit in the map of errors'
    krige validate samples.csv --inputs x,y --outputs 'rainfall [mm]' --output-units inch,mm --plot p.gp
    expect_status 2
    expect_stderr '--output-units: 2 units for 1 output; give one each'
}

# refused MESSAGE ARGUMENTS...: a usage error before any work, and no file.
refused()
{
    message=$1
    shift
    volcano "$@"
    expect_status 2
    expect_stderr "$message"
    expect_files
}

test_WhatNoPictureCanBeIsRefusedBeforeTheWork()
{
    refused "--plot-size: needs width and height in pixels, each from 200 to 10000, such as 1200x900, not '0x0'" \
        --plot p.gp --plot-size 0x0
    refused "--plot-size: needs width and height" --plot p.gp --plot-size 800
    refused "--plot-size: needs width and height" --plot p.gp --plot-size 800x99999
    refused "--plot-column: must be estimate, stderr, variance, lo or hi, not 'elevation'" --plot p.gp \
        --plot-column elevation
    refused "--points: must be none, dots or values, not 'all'" --plot p.gp --points all
    refused "--title: needs a text of one line, not ''" --plot p.gp --title ''
    refused '--output-units: 2 units for 1 output; give one each' --plot p.gp --output-units m,m
    refused '--plot-column excludes --plot-both' --plot p.gp --plot-column stderr --plot-both
    for option in '--title Map' '--plot-size 300x300' '--plot-column lo' '--points dots' --contours --plot-both; do
        # One option and its value: shellcheck disable=SC2086
        refused "${option%% *} requires --plot" $option
    done
}

test_ContoursNeedAMap()
{
    printf 'x,z\n0,1\n1,3\n3,2\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --grid 50 -o out.csv --plot line.gp --contours
    expect_status 2
    expect_stderr '--contours: lines of equal values need a map, of two inputs or more'
    expect_files samples.csv
}

test_AnotherEndingIsAUsageError()
{
    volcano --plot surface.jpg
    expect_status 2
    expect_stderr "--plot: 'surface.jpg' must end in .png, .svg or .pdf for a picture, or in .gp for its gnuplot script"
    expect_files
}

test_WithoutGnuplotTheWayOutIsNamedBeforeAnyWork()
{
    mkdir empty
    PATH=$PWD/empty "$program" predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 20x20 \
        -o out.csv --plot surface.png >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr 'surface.png: gnuplot, which draws pictures, is not installed; install it (Debian: gnuplot-nox)'
    expect_files empty
}

test_AGnuplotThatFailsLeavesTheTableAndNoPicture()
{
    mkdir bin
    printf '#!/bin/sh\necho "no fonts" >&2\nexit 3\n' >bin/gnuplot
    chmod +x bin/gnuplot
    PATH=$PWD/bin:$PATH "$program" predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 20x20 \
        -o out.csv --plot surface.png >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr "surface.png: gnuplot failed: 'no fonts'; the estimates are complete, in out.csv"
    expect_files bin out.csv
    [ "$(wc -l <out.csv)" -eq 401 ] || fail 'the table is not complete'
}

test_APictureThatFailsLeavesTheOtherTables()
{
    mkdir bin
    printf '#!/bin/sh\nexit 3\n' >bin/gnuplot
    chmod +x bin/gnuplot
    write_samples
    PATH=$PWD/bin:$PATH "$program" validate samples.csv --inputs x,y --outputs z -o points.csv --plot fit.png \
        >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stdout RMSE
    PATH=$PWD/bin:$PATH "$program" variogram samples.csv --inputs x,y --outputs z -o lags.csv --plot lags.png \
        >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_files bin lags.csv points.csv samples.csv
}

test_ThePicturesFolderIsCheckedBeforeAnyWork()
{
    write_samples
    for folder in none samples.csv; do
        predict --grid 2x2 -o out.csv --plot "$folder/surface.gp"
        expect_status 1
        expect_stderr "$folder/surface.gp: cannot be written: "
        expect_no_stderr 'samples: '
    done
    mkdir surface.gp
    predict --grid 2x2 -o out.csv --plot surface.gp
    expect_status 1
    expect_stderr 'surface.gp: cannot be written: it is a folder'
    expect_files samples.csv surface.gp
}

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
    grep -qF "set title 'mag, depth = $mean'" slices.gp || { grep title slices.gp; fail 'not at the mean'; }
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
    for ending in png svg gp; do
        krige predict samples.csv --inputs "\"$field\"" --outputs '|touch pwned' --at samples.csv -o out.csv --plot "p.$ending"
        expect_status 0
        krige validate samples.csv --inputs '|touch pwned' --outputs "\"$field\"" --nugget 0.1 --plot "v.$ending"
        expect_status 0
        krige variogram samples.csv --inputs '|touch pwned' --outputs "\"$field\"" --plot "s.$ending"
        expect_status 0
    done
    gnuplot p.gp && gnuplot v.gp && gnuplot s.gp || fail 'a script does not run'
    expect_files out.csv p.gp p.png p.svg s.gp s.png s.svg samples.csv v.gp v.png v.svg
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

test_AnotherEndingIsAUsageError()
{
    volcano --plot surface.pdf
    expect_status 2
    expect_stderr "--plot: 'surface.pdf' must end in .png or .svg for a picture, or in .gp for its gnuplot script"
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

test_AGnuplotThatFailsLeavesNoPicture()
{
    mkdir bin
    printf '#!/bin/sh\necho "no fonts" >&2\nexit 3\n' >bin/gnuplot
    chmod +x bin/gnuplot
    PATH=$PWD/bin:$PATH "$program" predict "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 20x20 \
        -o out.csv --plot surface.png >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 1
    expect_stderr "surface.png: gnuplot failed: 'no fonts'"
    expect_files bin
}

# page ARGUMENTS...: of samples.csv into page.html.
page()
{
    krige report samples.csv --inputs x,y --outputs z -o page.html "$@"
}

rainfall()
{
    krige report "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --scale 1,1 --range 0.4 -o page.html "$@"
}

# Fourteen samples of a slope with bumps.
write_slope()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 14; ++i) { x = (i * 5) % 14; y = (i * 3) % 7
        print x "," y "," x + 2 * y + (i * i) % 5 } }' >samples.csv
}

# The page without the times that its steps took.
untimed()
{
    sed '/class="timings"/,/<\/table>/d' "$1"
}

expect_page()
{
    grep -qF -- "$1" page.html || { cut -c 1-200 page.html; fail "the page lacks: $1"; }
}

expect_not_on_page()
{
    ! grep -qF -- "$1" page.html || fail "the page must not hold: $1"
}

test_OnePageHoldsAllSections()
{
    rainfall --units m
    expect_status 0
    expect_files page.html
    head -n 1 page.html | grep -qx '<!DOCTYPE html>' || fail 'no HTML'
    [ "$(tail -n 1 page.html)" = '</html>' ] || fail 'the page is cut off'
    for section in data settings semivariogram validation maps run; do
        expect_page "<section id=\"$section\">"
        expect_page "<a href=\"#$section\">"
    done
    expect_page '<title>Kriging of rainfall</title>'
    expect_page 'x (m)'
    expect_page 'semivariance of rainfall'
    expect_page "Made by $("$program" --version)."
}

test_TheReportNamesItsStepsAndEngine()
{
    rainfall
    expect_stderr 'engine: covariance form'
    expect_stderr 'support: no target lies outside the box of the samples'
    grep -qE '^time: [0-9.]+ s \(reading the samples .*, cross-validation .*, maps ' "$scratch/log/err" || fail 'no times'
    rainfall --quiet
    [ ! -s "$scratch/log/err" ] || fail 'standard error is not empty'
}

test_NothingIsLoadedFromAnywhere()
{
    rainfall
    expect_page "default-src 'none'; img-src data:;"
    # The one address is the name of SVG, in the script; nothing is fetched from it.
    grep -oE '[a-z]+://[^"'"'"' ]*' page.html | sort -u >addresses
    [ "$(cat addresses)" = 'http://www.w3.org/2000/svg' ] || { cat addresses; fail 'the page names other addresses'; }
    grep -oE '(src|href)="[^"]{0,12}' page.html | grep -vE '="(data:image/p|#)' >sources
    [ ! -s sources ] || { cat sources; fail 'the page refers to something'; }
    expect_not_on_page '@import'
}

test_FiguresAreThoseOfValidate()
{
    rainfall --folds 5 --seed 3 --worst 3
    expect_status 0
    krige validate "$examples/rainfall/samples.csv" --inputs x,y --outputs rainfall --scale 1,1 --range 0.4 --folds 5 \
        --seed 3 --worst 3
    expect_page '5 folds of 100 samples, seed 3'
    for figure in $(awk 'NR == 2 { print $3, $4, $5, $6, $7, $9 }' "$scratch/log/out"); do
        expect_page "<td>$figure</td>"
    done
    sed -n '/^worst of/,$p' "$scratch/log/out" | awk 'NR > 2 { print $1 }' >lines
    sed -n '/class="worst"/,/<\/table>/s/^<tr><th scope="row">\([0-9]*\)<.*/\1/p' page.html >shown
    cmp lines shown || { cat lines shown; fail 'other lines are the worst'; }
}

test_TheShownCommandMakesThePageAgain()
{
    printf 'x;y;z\n' >'my samples.csv'
    write_slope
    sed '1d; s/,/;/g' samples.csv >>'my samples.csv'
    printf 'my samples.csv' >name
    printf 'drift = 1\nrange = "9u"\nscale = [1, 1]\nnugget = 0.1\nsill = [30]\nclamp = "0:"\n' >best.toml
    krige report 'my samples.csv' --inputs x,y --outputs z --config best.toml --nugget 0.2 --units 'km & more' \
        --delimiter semicolon --folds 4 --title "It's <here>" --grid 12x9 -o page.html
    expect_status 0
    untimed page.html >first
    grep -A 1 'This page again' page.html | sed -n 's/^<pre>\(.*\)<\/pre>$/\1/p' |
        sed -e "s/&#39;/'/g; s/&lt;/</g; s/&gt;/>/g; s/&quot;/\"/g; s/&amp;/\&/g" >command
    grep -q '^krige report .*--nugget 0.2' command || { cat command; fail 'no command'; }
    rm page.html best.toml
    eval "set -- $(cat command)"
    shift
    krige "$@"
    expect_status 0
    # Where the settings come from is another sentence then.
    untimed page.html | grep -v '<p>The settings come from' >second
    grep -v '<p>The settings come from' first | cmp - second || fail 'another page'
}

test_TheShownPredictionIsThatOfTheMap()
{
    rainfall --grid 7x5
    grep -A 1 'in a file:' page.html | sed -n 's/^<pre>\(.*\)<\/pre>$/\1/p' >command
    eval "set -- $(cat command)"
    shift
    krige "$@"
    expect_status 0
    [ "$(wc -l <map.csv)" -eq 36 ] || fail 'not a row per node'
    head -n 1 map.csv | grep -qx 'x,y,rainfall,variance,rainfall_stderr' || fail 'other columns'
}

test_MarkupInNamesIsText()
{
    name='<script>alert("x")</script><b title='"'"'&amp;'
    field=$(printf '%s' "$name" | sed 's/"/""/g')
    printf '"%s","</script><img src=x onerror=alert(1)>",y\n0,1,0\n1,2,0\n0,3,1\n1,5,1\n0.4,4,0.6\n' "$field" >'a<i>.csv'
    krige report 'a<i>.csv' --inputs "\"$field\",y" --outputs '</script><img src=x onerror=alert(1)>' \
        --units '"><u>' --title '</title><s>' -o page.html
    expect_status 0
    for markup in '<script>alert' '<img' '<b title' '<i>' '<u>' '<s>'; do
        expect_not_on_page "$markup"
    done
    [ "$(grep -o '<script' page.html | wc -l)" -eq 1 ] || fail 'not one script'
    [ "$(grep -o '</script' page.html | wc -l)" -eq 1 ] || fail 'the script ends early'
    expect_page '&lt;script&gt;alert(&quot;x&quot;)&lt;/script&gt;&lt;b title=&#39;&amp;amp;'
}

test_TheSamePageComesOfTheSameSamples()
{
    rainfall --quiet
    untimed page.html >first
    rainfall --quiet --threads 1
    untimed page.html | cmp - first || fail 'other bytes'
}

test_WarningsStandOnThePage()
{
    write_slope
    printf '3,3,-9999\n4,4,-9999\n' >>samples.csv
    page
    expect_status 0
    expect_stderr 'warning: '
    expect_page 'class="warnings"'
    expect_page '-9999'
}

test_OneInputGivesAProfileWithItsInterval()
{
    printf 'x,z\n0,1\n1,3\n3,2\n4,5\n6,4\n' >samples.csv
    krige report samples.csv --inputs x --outputs z -o page.html
    expect_status 0
    expect_page 'the interval that holds 95 % of new measurements'
    expect_page 'data-columns="400" data-rows="1"'
}

test_ThreeInputsGiveSlicesThroughTheMeans()
{
    krige report "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --nearest 20 --nugget 0.3 \
        --grid 12x10x8 -o page.html
    expect_status 0
    mean=$(awk -F, 'NR > 1 { s += $3; ++n } END { printf "%.6g", s / n }' "$examples/quakes/samples.csv")
    expect_page "mag at depth = $mean, 12 x 10 nodes"
    [ "$(grep -c '<figure class="map">' page.html)" -eq 3 ] || fail 'not three slices'
    krige report "$examples/quakes/samples.csv" --inputs long,lat,depth --outputs mag --nearest 20 --nugget 0.3 \
        --grid long=165:188:5,lat=-38:-11:4,depth=100:100:1 -o page.html
    expect_status 0
    expect_page 'mag at depth = 100, 5 x 4 nodes'
    [ "$(grep -c '<figure class="map">' page.html)" -eq 1 ] || fail 'not one slice'
}

test_ManyInputsGiveTheFirstSlices()
{
    awk 'BEGIN { print "a,b,c,d,e,z"; s = 1; for (i = 0; i < 40; ++i) { line = ""
        for (k = 0; k < 6; ++k) { s = (s * 16807) % 2147483647; line = line (k ? "," : "") s / 2147483647 }
        print line } }' >samples.csv
    krige report samples.csv --inputs a,b,c,d,e --outputs z --grid 5x5x5x5x5 -o page.html
    expect_status 0
    [ "$(grep -c '<figure class="map">' page.html)" -eq 6 ] || fail 'not six slices'
    expect_page '4 other pairs of inputs are left out'
}

test_TooFewSamplesForCrossValidationLeaveTheRest()
{
    printf 'x,y,z\n0,0,1\n1,0,2\n0,1,3\n' >samples.csv
    page
    expect_status 0
    expect_page 'There is none: without one of 3 folds: samples.csv: '
    expect_page 'class="layers"'
}

test_TwoOutputsEachHaveTheirPictures()
{
    printf 'x,y,z,w\n0,0,1,5\n1,0,2,4\n0,1,3,7\n1,1,4,1\n0.5,0.4,2,2\n' >samples.csv
    krige report samples.csv --inputs x,y --outputs z,w -o page.html
    expect_status 0
    [ "$(grep -c '<figure class="map">' page.html)" -eq 2 ] || fail 'not two maps'
    for name in z w; do expect_page "Semivariogram of $name"; done
}

test_APageGoesToStandardOutput()
{
    write_slope
    krige report samples.csv --inputs x,y --outputs z -o -
    expect_status 0
    expect_stdout '</html>'
    expect_stdout '-o report.html'
    expect_files samples.csv
}

test_SamplesComeFromStandardInput()
{
    write_slope
    "$program" report - --inputs x,y --outputs z -o page.html <samples.csv >"$scratch/log/out" 2>"$scratch/log/err"
    status=$?
    expect_status 0
    expect_page '14 samples of standard input'
}

test_AMillionNodesStayBelowThreeMegabytes()
{
    krige report "$examples/volcano/samples.csv" --inputs x,y --outputs elevation --grid 1000x1000 -o page.html
    expect_status 0
    [ "$(wc -c <page.html)" -lt 3000000 ] || fail "$(wc -c <page.html) bytes"
    expect_page 'data-columns="1000" data-rows="1000"'
}

test_BadInputLeavesTheOldPage()
{
    write_slope
    echo old >page.html
    krige report samples.csv --inputs x,q --outputs z -o page.html
    expect_status 1
    expect_stderr "samples.csv, line 1, column 'q': there is no such column"
    page --grid 10
    expect_status 2
    expect_stderr "--grid: '10': 1 count for 2 inputs"
    page --grid 1x1
    expect_status 2
    expect_stderr '--grid: a page needs an input with two nodes or more'
    page --grid 3000x3000
    expect_status 2
    expect_stderr '--grid: a page shows up to 4000000 nodes'
    page --folds 15
    expect_status 2
    expect_stderr '--folds: 15 folds need as many samples, but samples.csv has 14; lower it'
    page --folds 1
    expect_status 2
    page --range -1
    expect_status 2
    page --grid x=1e6:2e6:5,y=1e6:2e6:5
    expect_status 1
    expect_stderr 'are unsupported'
    page --config missing.toml
    expect_status 1
    echo old | cmp - page.html || fail 'the old page is gone'
    expect_files page.html samples.csv
}

test_SamplesAtOnePlaceEndIt()
{
    printf 'x,y,z\n0,0,1\n1,0,2\n0,1,3\n0,0,4\n' >samples.csv
    page
    expect_status 1
    expect_stderr 'samples.csv: 2 of 4 samples share their place with another, for instance lines 2 and 5'
    expect_files samples.csv
    page --duplicates merge
    expect_status 0
    expect_page '2 samples averaged into 1 point'
}

test_ThePageIsNotWrittenOverTheSamples()
{
    write_slope
    krige report samples.csv --inputs x,y --outputs z -o ./samples.csv
    expect_status 2
    expect_stderr "--output: './samples.csv' is the file that is read"
    krige report samples.csv --inputs x,y --outputs z
    expect_status 2
    expect_stderr '--output is required'
    krige report samples.csv --inputs x,y --outputs z -o missing/page.html
    expect_status 1
    expect_files samples.csv
}

test_ConstantAndHugeValuesAreShown()
{
    printf 'x,y,c,h\n0,0,7,1e150\n1,0,7,-1e150\n0,1,7,5e149\n1,1,7,0\n0.5,0.6,7,1e149\n' >samples.csv
    krige report samples.csv --inputs x,y --outputs c,h -o page.html
    expect_status 0
    sed 's/data-codes="[^"]*"//; s/base64,[^"]*//' page.html | grep -E '="[^"]*(nan|inf)' && fail 'a picture has no place for it'
    expect_page '</html>'
}

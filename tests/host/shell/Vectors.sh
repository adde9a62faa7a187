# samples.csv and the same as samples.gpkg, in EPSG:28992.
write_vectors()
{
    awk 'BEGIN { print "x,y,zinc,site"; for (i = 0; i < 40; ++i) {
        x = 155000 + (i * 7919) % 1000 + 0.1; y = 463000 + (i * 6101) % 800 + 0.7
        printf "%.17g,%.17g,%.17g,\"site %d, \"\"a\"\"\"\n", x, y, sin(x / 90) + y / 100, i } }' >samples.csv
    to_points -f GPKG samples.gpkg samples.csv
}

to_points()
{
    ogr2ogr -q "$@" -oo X_POSSIBLE_NAMES=x -oo Y_POSSIBLE_NAMES=y -oo KEEP_GEOM_COLUMNS=NO -oo AUTODETECT_TYPE=YES \
        -a_srs EPSG:28992 || fail 'no test data'
}

predict_zinc()
{
    source=$1
    shift
    krige predict "$source" --inputs x,y --outputs zinc "$@"
}

test_PointsGiveTheBitsOfTheirCsvFile()
{
    write_vectors
    predict_zinc samples.csv --grid 20x20 -o csv.csv
    expect_status 0
    to_points -f FlatGeobuf samples.fgb samples.csv
    to_points -f GeoJSON -lco SIGNIFICANT_FIGURES=17 samples.geojson samples.csv
    for file in samples.gpkg samples.fgb samples.geojson; do
        predict_zinc $file --grid 20x20 -o out.csv
        expect_status 0
        LC_ALL=C sort csv.csv >a
        LC_ALL=C sort out.csv >b
        cmp a b || fail "$file gives other estimates"
    done
}

test_AShapefileIsRead()
{
    write_vectors
    to_points -f 'ESRI Shapefile' samples.shp samples.csv
    predict_zinc samples.shp --grid 5x5 -o out.csv
    expect_status 0
    expect_stderr '40 samples read from samples.shp'
}

test_AnAttributeNamedXWinsOverTheGeometry()
{
    printf 'lon,lat,x,y,z\n1,2,10,20,1\n3,4,30,40,2\n5,7,50,10,4\n' >points.csv
    ogr2ogr -q -f GPKG points.gpkg points.csv -oo X_POSSIBLE_NAMES=lon -oo Y_POSSIBLE_NAMES=lat \
        -oo KEEP_GEOM_COLUMNS=NO -oo AUTODETECT_TYPE=YES
    krige predict points.gpkg --inputs x,y --outputs z --grid 2x2 -o out.csv
    expect_status 0
    cut -d, -f1,2 out.csv >nodes
    expect_file nodes <<END
x,y
10,10
50,10
10,40
50,40
END
}

test_HeightsOfPointsAreZ()
{
    cat >points.geojson <<'END'
{"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"v":1},"geometry":{"type":"Point","coordinates":[0,0,10]}},
{"type":"Feature","properties":{"v":2},"geometry":{"type":"Point","coordinates":[1,0,30]}},
{"type":"Feature","properties":{"v":4},"geometry":{"type":"Point","coordinates":[0,1,20]}},
{"type":"Feature","properties":{"v":3},"geometry":{"type":"Point","coordinates":[1,1,15]}},
{"type":"Feature","properties":{"v":5},"geometry":{"type":"Point","coordinates":[2,1,11]}}]}
END
    krige info points.geojson
    expect_status 0
    expect_stdout "'z'"
    expect_stdout '5 rows, 4 columns'
    krige predict points.geojson --inputs x,y,z --outputs v --grid 1x1x2 -o - --quiet
    expect_status 0
    expect_stdout '0,0,30'
}

test_EveryCommandTakesPoints()
{
    write_vectors
    krige info samples.gpkg
    expect_status 0
    expect_stdout '40 rows, 4 columns'
    krige validate samples.gpkg --inputs x,y --outputs zinc
    expect_status 0
    krige variogram samples.gpkg --inputs x,y --outputs zinc -o lags.csv
    expect_status 0
    krige tune samples.gpkg --inputs x,y --outputs zinc --trials 5 -o best.toml
    expect_status 0
}

test_PointsAreTargetsAndTheirAttributesAreKept()
{
    write_vectors
    predict_zinc samples.csv --at samples.gpkg --keep site -o out.csv
    expect_status 0
    predict_zinc samples.csv --at samples.csv --keep site -o same.csv
    cmp out.csv same.csv || fail 'other estimates'
}

test_EstimatesAreWrittenAsPoints()
{
    write_vectors
    printf 'x,y,id\n155100.25,463100,a\n155200,463300.5,"b, c"\n155400,463250,\n155300,463000.125,d\n' >targets.csv
    predict_zinc samples.gpkg --at targets.csv --variance --keep id -o csv.csv
    for file in out.gpkg out.geojson; do
        predict_zinc samples.gpkg --at targets.csv --variance --keep id -o $file
        expect_status 0
        ogrinfo -al $file >info || fail "ogrinfo cannot read $file"
        grep -q 'Feature Count: 4' info || fail 'not all points'
        grep -qF 'ID["EPSG",28992]' info || fail 'the reference system is lost'
        grep -qF 'id (String) = b, c' info || fail 'the kept column is lost'
        ogr2ogr -q -f CSV -lco GEOMETRY=AS_XY plain.csv $file
        for table in csv.csv plain.csv; do
            sed 1d $table | tr -d '"' | awk -F, '{ printf "%.15g,%.15g,%.15g,%.15g,%.15g\n", $1, $2, $3, $4, $5 }' >$table.rounded
        done
        cmp csv.csv.rounded plain.csv.rounded || fail "$file differs"
        # To the bit: as samples, the points give what the table gives.
        krige predict $file --inputs x,y --outputs zinc,variance,zinc_stderr --scale 1,1 --at targets.csv --exact -o from_points.csv
        krige predict csv.csv --inputs x,y --outputs zinc,variance,zinc_stderr --scale 1,1 --at targets.csv --exact -o from_text.csv
        cmp from_points.csv from_text.csv || fail "$file has other bits"
        rm plain.csv *.rounded from_*.csv
    done
    rm csv.csv info
    expect_files out.geojson out.gpkg samples.csv samples.gpkg targets.csv
}

test_AShapefileComesWithItsFiles()
{
    write_vectors
    predict_zinc samples.gpkg --at samples.gpkg -o out.shp
    expect_status 0
    expect_files out.cpg out.dbf out.prj out.shp out.shx samples.csv samples.gpkg
    ogrinfo -al -so out.shp | grep -q 'Feature Count: 40' || fail 'not all points'
    predict_zinc samples.gpkg --at samples.gpkg -o out.shp
    expect_status 0
    expect_files out.cpg out.dbf out.prj out.shp out.shx samples.csv samples.gpkg
}

test_AGridMayBePoints()
{
    write_vectors
    predict_zinc samples.gpkg --grid 10x10 -o out.gpkg
    expect_status 0
    ogrinfo -al -so out.gpkg | grep -q 'Feature Count: 100' || fail 'not all nodes'
}

test_ValidCellsOfARasterAreTargets()
{
    write_vectors
    predict_zinc samples.gpkg --grid cell=100 --hull -o map.tif
    predict_zinc samples.gpkg --at map.tif -o cells.csv
    expect_status 0
    predict_zinc samples.gpkg --grid cell=100 --hull -o grid.csv
    grep -v nan grid.csv | LC_ALL=C sort >a
    LC_ALL=C sort cells.csv | cmp - a || { cat cells.csv a; fail 'other cells'; }
}

test_LongitudesAndLatitudesAreWarnedOfAndProjected()
{
    write_vectors
    ogr2ogr -q -f GPKG -t_srs EPSG:4326 degrees.gpkg samples.gpkg
    predict_zinc degrees.gpkg --grid 5x5 -o out.csv
    expect_status 0
    expect_stderr 'warning: the inputs are longitudes and latitudes, whose degrees are not equally long'
    expect_stderr '--project EPSG:32631 computes in metres, those of UTM zone 31 north'
    predict_zinc degrees.gpkg --project EPSG:28992 --grid cell=100 -o map.tif
    expect_status 0
    expect_no_stderr 'longitudes'
    gdalinfo map.tif | grep -qF 'Origin = (155000.000000000000000,463800.000000000000000)' || fail 'another place'
    gdalinfo map.tif | grep -qF 'ID["EPSG",28992]' || fail 'another reference system'
    # Targets are projected too, whichever way their columns are named.
    printf 'lat,lon,z\n52.1,5.1,1\n52.2,5.3,2\n52.0,5.2,3\n' >degrees.csv
    krige predict degrees.csv --inputs lat,lon --outputs z --project EPSG:28992 --at degrees.csv -o - --quiet
    expect_status 0
    sed 1d "$scratch/log/out" | awk -F, '{ n++; if ($1 < 440000 || $1 > 500000 || $2 < 100000 || $2 > 170000 || ($3 - n) ^ 2 > 1e-20) bad = 1 }
        END { exit bad || n != 3 }' || fail 'not in the metres of the map'
}

test_AProjectionFromNowhereIsRefused()
{
    write_vectors
    predict_zinc samples.csv --project EPSG:32631 --grid 5x5 -o out.csv
    expect_status 2
    expect_stderr '--project: nothing says in which coordinate reference system the inputs of samples.csv are; name it with --crs'
    predict_zinc samples.csv --crs EPSG:28992 --project EPSG:32631 --grid 5x5 -o out.csv
    expect_status 0
    predict_zinc samples.csv --crs EPSG:4326 --project EPSG:28992 --grid 5x5 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv, line 2: the place has no image in EPSG:28992'
}

test_TargetsInAnotherReferenceSystemAreRefused()
{
    write_vectors
    ogr2ogr -q -f GPKG -t_srs EPSG:32631 other.gpkg samples.gpkg
    predict_zinc samples.gpkg --at other.gpkg -o out.csv
    expect_status 1
    expect_stderr 'other.gpkg: is in EPSG:32631, but samples.gpkg in EPSG:28992; --project EPSG:28992 brings both into one'
    predict_zinc samples.gpkg --at other.gpkg --project EPSG:28992 -o out.csv
    expect_status 0
}

test_LayersWithoutPointsAreRefused()
{
    write_vectors
    printf 'zinc;wkt\n1;"LINESTRING (0 0, 1 1)"\n' >lines.csv
    ogr2ogr -q -f GPKG lines.gpkg lines.csv -oo GEOM_POSSIBLE_NAMES=wkt
    predict_zinc lines.gpkg --grid 5x5 -o out.csv
    expect_status 1
    expect_stderr 'lines.gpkg, line 2: is no point but a LINESTRING'
    ogr2ogr -q -f GPKG -nln second -update samples.gpkg samples.csv -oo X_POSSIBLE_NAMES=x -oo Y_POSSIBLE_NAMES=y
    predict_zinc samples.gpkg --grid 5x5 -o out.csv
    expect_status 1
    expect_stderr "samples.gpkg: has 2 layers: 'samples', 'second'; put one of them into a file of its own"
}

test_MissingValuesOfAttributesAreMissing()
{
    cat >points.geojson <<'END'
{"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"v":1},"geometry":{"type":"Point","coordinates":[0,0]}},
{"type":"Feature","properties":{"v":null},"geometry":{"type":"Point","coordinates":[1,0]}},
{"type":"Feature","properties":{"v":2},"geometry":{"type":"Point","coordinates":[1,1]}},
{"type":"Feature","properties":{"v":4},"geometry":{"type":"Point","coordinates":[0,1]}}]}
END
    krige predict points.geojson --inputs x,y --outputs v --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "points.geojson, line 3, column 'v'"
    krige predict points.geojson --inputs x,y --outputs v --skip-missing --grid 2x2 -o out.csv
    expect_status 0
    expect_stderr 'skipped: 1 of 4 rows'
}

test_FromAGeoPackageToAMapInThreeCommands()
{
    write_vectors
    krige tune samples.gpkg --inputs x,y --outputs zinc --trials 10 -o best.toml
    expect_status 0
    krige validate samples.gpkg --inputs x,y --outputs zinc --config best.toml
    expect_status 0
    predict_zinc samples.gpkg --config best.toml --grid cell=40 -o map.tif
    expect_status 0
    gdalinfo map.tif | grep -qF 'ID["EPSG",28992]' || fail 'the reference system is lost'
    printf 'x,y\n155220,463420\n155700,463100\n' >targets.csv
    predict_zinc samples.gpkg --config best.toml --at targets.csv -o targets.out.csv
    sed 1d targets.out.csv | while IFS=, read -r x y z; do
        value=$(gdallocationinfo -valonly -geoloc map.tif "$x" "$y")
        awk -v a="$value" -v b="$z" 'BEGIN { exit !(a != "" && (a - b) ^ 2 < 1e-26 * b ^ 2) }' ||
            fail "at $x, $y there is $value, not $z"
    done || exit 1
}

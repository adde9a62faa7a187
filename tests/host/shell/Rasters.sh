# map.csv: samples on a slope with waves, in the metres of a map.
write_map()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 60; ++i) {
        x = 155000 + (i * 7919) % 1000; y = 463000 + (i * 6101) % 800
        printf "%d,%d,%.17g\n", x, y, sin(x / 90) + y / 100 } }' >map.csv
}

map()
{
    krige predict map.csv --inputs x,y --outputs z "$@"
}

# raster_hex FILE BAND COLUMNS: the bits of a band's cells, a line each, from the lower left corner on, row by row upwards.
raster_hex()
{
    gdal_translate -q -of ENVI -ot Float64 -b "$2" "$1" raw.bin || fail "$1 cannot be read"
    od -An -v -t x8 -w"$(($3 * 8))" --endian=little raw.bin | tac | tr -s ' ' '\n' | sed '/^$/d'
    rm -f raw.bin raw.hdr raw.bin.aux.xml
}

# vtk_hex FILE COUNT: the bits of the last array, which has COUNT values, in the same order.
vtk_hex()
{
    tail -c "$(($2 * 8 + 1))" "$1" | head -c "$(($2 * 8))" | od -An -v -t x8 -w8 --endian=big | tr -d ' '
}

test_AGeoTiffIsTiledPackedDescribedAndNorthUp()
{
    write_map
    map --grid x=155000:156000:51,y=463000:463800:41 --crs EPSG:28992 --variance --interval 90 -o map.tif
    expect_status 0
    expect_files map.csv map.tif
    gdalinfo map.tif >info || fail 'gdalinfo cannot read it'
    for text in 'Driver: GTiff/GeoTIFF' 'Size is 51, 41' 'ID["EPSG",28992]' 'COMPRESSION=DEFLATE' 'INTERLEAVE=BAND' \
        'Origin = (154990.000000000000000,463810.000000000000000)' 'Pixel Size = (20.000000000000000,-20.000000000000000)' \
        'Band 1 Block=256x256 Type=Float64' 'NoData Value=nan'; do
        grep -qF "$text" info || { cat info; fail "gdalinfo lacks: $text"; }
    done
    sed -n 's/^  Description = //p' info >bands
    expect_file bands <<END
z
variance
z_stderr
z_lo
z_hi
END
}

test_EveryCellHoldsTheBitsOfTheEstimate()
{
    write_map
    map --grid x=155000:156000:301,y=463000:463800:270 --nearest 8 -o map.tif
    expect_status 0
    map --grid x=155000:156000:301,y=463000:463800:270 --nearest 8 -o map.vtk
    raster_hex map.tif 1 301 >tif
    vtk_hex map.vtk 81270 >vtk
    cmp tif vtk || fail 'other bits'
    [ "$(wc -l <tif)" -eq 81270 ] || fail 'not every cell'
}

test_ALocationHasTheValueOfATargetThere()
{
    write_map
    map --grid cell=40 -o map.tif
    expect_status 0
    printf 'x,y\n155020,463020\n155460,463740\n155980,463380\n' >targets.csv
    map --at targets.csv -o targets.out.csv
    sed 1d targets.out.csv | while IFS=, read -r x y z; do
        value=$(gdallocationinfo -valonly -geoloc map.tif "$x" "$y")
        awk -v a="$value" -v b="$z" 'BEGIN { exit !(a != "" && (a - b) ^ 2 < 1e-26 * b ^ 2) }' ||
            fail "at $x, $y there is $value, not $z"
    done || exit 1
}

test_SinglePrecisionIsRounded()
{
    write_map
    map --grid cell=40 --type float32 -o map.tif
    expect_status 0
    gdalinfo map.tif | grep -q 'Type=Float32' || fail 'not float32'
    map --grid cell=40 -o full.tif
    half=$(gdallocationinfo -valonly map.tif 3 4)
    full=$(gdallocationinfo -valonly full.tif 3 4)
    awk -v a="$half" -v b="$full" 'BEGIN { d = (a - b) ^ 2; exit !(d > 0 && d < 1e-13 * b ^ 2) }' ||
        fail "$half is not $full rounded"
}

test_AnAsciiGridHoldsTheBits()
{
    write_map
    map --grid cell=40 --crs EPSG:28992 -o map.asc
    expect_status 0
    expect_files map.asc map.csv map.prj
    map --grid cell=40 -o map.tif
    raster_hex map.tif 1 25 >tif
    # The driver reads as float32 unless a cell needs more; the text itself is held against the GeoTIFF's.
    gdal_translate -q --config AAIGRID_DATATYPE Float64 map.asc back.tif
    raster_hex back.tif 1 25 >asc
    cmp tif asc || fail 'other bits'
    grep -q 'cellsize *40' map.asc || fail 'another size of cells'
}

test_AnAsciiGridHasSquareCellsAndOneColumn()
{
    write_map
    map --grid 20x20 -o map.asc
    expect_status 1
    expect_stderr 'map.asc: such a file has square cells, but these are '
    map --grid cell=40 --variance -o map.asc
    expect_status 2
    expect_stderr '--output: an .asc file holds one column, but there are 3; name a .tif file'
    expect_files map.csv
}

test_CellsWithoutAnEstimateAreNoDataInAnAsciiGrid()
{
    write_map
    map --grid cell=40 --hull -o map.asc
    expect_status 0
    grep -q '^NODATA_value *-9999' map.asc || fail 'no mark'
    [ "$(gdallocationinfo -valonly map.asc 0 0)" = -9999 ] || fail 'the corner has a value'
    ! grep -qi nan map.asc || fail 'nan in the file'
}

test_XarrayOpensANetCdfFileWithCoordinatesAndUnits()
{
    write_map
    map --grid x=155000:156000:51,y=463000:463800:41 --crs EPSG:28992 --variance -o map.nc
    expect_status 0
    expect_files map.csv map.nc
    map --grid x=155000:156000:51,y=463000:463800:41 --variance -o map.out.csv
    cat >check.py <<'END'
import csv, xarray
data = xarray.open_dataset("map.nc")
assert {"z", "variance", "z_stderr"} <= set(data.data_vars), list(data.data_vars)
assert data.z.dims == ("y", "x") and data.z.shape == (41, 51), data.z
assert data.x.attrs["units"] in ("m", "metre") and data.y.attrs["units"] in ("m", "metre"), data.x.attrs
assert data.x.attrs["standard_name"] == "projection_x_coordinate", data.x.attrs
assert data.attrs["Conventions"].startswith("CF-"), data.attrs
rows = list(csv.DictReader(open("map.out.csv")))
assert len(rows) == 51 * 41
for row in rows:
    cell = data.sel(x=float(row["x"]), y=float(row["y"]), method="nearest", tolerance=1e-6)
    assert float(cell.z) == float(row["z"]), row
    assert float(cell.z_stderr) == float(row["z_stderr"]), row
END
    /usr/bin/python3 check.py || fail 'xarray finds something else'
}

test_CellsOfAnotherRasterAreTaken()
{
    write_map
    map --grid cell=40 --crs EPSG:28992 -o first.tif
    map --grid like=first.tif -o second.tif
    expect_status 0
    raster_hex first.tif 1 25 >a
    raster_hex second.tif 1 25 >b
    cmp a b || fail 'other cells'
    gdalinfo second.tif | grep -qF 'ID["EPSG",28992]' || fail 'the reference system is lost'
    # From south to north: the same cells.
    gdal_translate -q -of GTiff -a_ullr 154980 463000 155980 463800 first.tif flipped.tif
    map --grid like=flipped.tif -o third.tif
    expect_status 0
    gdalinfo third.tif | grep -qF 'Origin = (154980.000000000000000,463800.000000000000000)' || fail 'not north up'
}

test_ARasterInAnotherReferenceSystemIsRefused()
{
    write_map
    map --grid cell=40 --crs EPSG:28992 -o dem.tif
    map --grid like=dem.tif --crs EPSG:32631 -o map.tif
    expect_status 1
    expect_stderr 'dem.tif: is in EPSG:28992, but the samples are in EPSG:32631; --project EPSG:28992 brings them there'
}

test_PartsAreRowsThatAVrtJoins()
{
    write_map
    map --grid x=155000:156000:301,y=463000:463800:270 --nearest 8 --crs EPSG:28992 --variance -o map.tif
    for i in 2 3 1; do
        map --grid x=155000:156000:301,y=463000:463800:270 --nearest 8 --crs EPSG:28992 --variance --shard $i/3 \
            -o 'part-{shard}.tif'
        expect_status 0
        cp part.vrt "vrt$i" || fail 'no .vrt'
    done
    cmp vrt1 vrt2 || fail 'parts write other mosaics'
    rm vrt?
    expect_files map.csv map.tif part-1.tif part-2.tif part-3.tif part.vrt
    for band in 1 2 3; do
        raster_hex map.tif $band 301 >whole
        raster_hex part.vrt $band 301 >parts
        cmp whole parts || fail 'other bits'
    done
    gdalinfo part.vrt | grep -qF 'Description = z_stderr' || fail 'bands are not described'
    gdalinfo part.vrt | grep -qF 'ID["EPSG",28992]' || fail 'the reference system is lost'
    gdalinfo part.vrt | grep -F 'Origin' >a
    gdalinfo map.tif | grep -F 'Origin' >b
    cmp a b || fail 'another place'
}

test_PartsNeedNamesAndRows()
{
    write_map
    map --grid cell=40 --shard 1/2 -o map.tif
    expect_status 2
    expect_stderr 'write {shard} where the number goes, as in -o map{shard}.tif'
    map --grid cell=40 --shard 1/2 -o 'map{shard}.nc'
    expect_status 2
    expect_stderr '--shard: parts of a .nc file do not make a whole one; name a .tif file'
    map --grid cell=40 --shard 1/99 -o 'map{shard}.tif'
    expect_status 1
    expect_stderr '--shard: the raster has fewer rows than parts: 19'
    expect_files map.csv
}

test_AMaskOfPolygonsOrOfCellsLeavesOutTheRest()
{
    write_map
    cat >area.csv <<'END'
id;wkt
1;"POLYGON ((155110 463110, 155510 463110, 155510 463510, 155110 463510, 155110 463110))"
END
    ogr2ogr -q -f GPKG area.gpkg area.csv -oo GEOM_POSSIBLE_NAMES=wkt -a_srs EPSG:28992
    map --grid x=155020:155980:25,y=463020:463780:20 --crs EPSG:28992 -o full.tif
    map --grid x=155020:155980:25,y=463020:463780:20 --crs EPSG:28992 --mask area.gpkg -o map.tif
    expect_status 0
    expect_stderr 'mask: 400 targets outside area.gpkg are not estimated: nan is given there'
    raster_hex full.tif 1 25 >full
    raster_hex map.tif 1 25 >masked
    # Cell (3, 3) from the left and from below has its centre at 155140, 463140: the first one within.
    paste full masked | awk '{ column = (NR - 1) % 25; row = int((NR - 1) / 25)
        within = column >= 3 && column <= 12 && row >= 3 && row <= 12
        if ((($1 == $2) != within) || (!within && $2 !~ /^[7f]ff8/)) bad = 1; n += within } END { exit bad || n != 100 }' ||
        fail 'other cells are masked'
    # Another reference system, and a raster's cells without values, leave out the same.
    ogr2ogr -q -f GeoJSON -t_srs EPSG:4326 -lco COORDINATE_PRECISION=12 area.geojson area.gpkg
    for mask in area.geojson map.tif; do
        map --grid x=155020:155980:25,y=463020:463780:20 --crs EPSG:28992 --mask $mask -o again.tif
        expect_status 0
        raster_hex again.tif 1 25 | cmp - masked || fail "$mask masks other cells"
    done
    map --grid x=155020:155980:25,y=463020:463780:20 --crs EPSG:28992 --mask area.gpkg -o out.csv
    [ "$(grep -vc nan out.csv)" -eq 101 ] || fail 'CSV has other targets'
}

test_MasksThatAreNoneAreRefused()
{
    write_map
    map --grid cell=40 --mask none.gpkg -o map.tif
    expect_status 1
    expect_stderr 'none.gpkg: No such file or directory'
    printf 'no map' >text.gpkg
    map --grid cell=40 --mask text.gpkg -o map.tif
    expect_status 1
    expect_stderr 'text.gpkg: cannot be read: '
    ogr2ogr -q -f GPKG points.gpkg map.csv -oo X_POSSIBLE_NAMES=x -oo Y_POSSIBLE_NAMES=y
    map --grid cell=40 --mask points.gpkg -o map.tif
    expect_status 1
    expect_stderr 'points.gpkg: a mask is made of polygons or is a raster, but there is a POINT'
    [ ! -e map.tif ] || fail 'a file was left behind'
}

test_RastersHoldGridsOfTwoInputs()
{
    write_map
    map --at map.csv -o map.tif
    expect_status 2
    expect_stderr '--output: a .tif file holds a grid; give the targets with --grid'
    krige predict map.csv --inputs x --outputs z --duplicates merge --grid 5 -o map.tif
    expect_status 1
    expect_stderr '--output: a raster is that of two inputs; name a .csv file'
    map --grid x=155000:156000:1,y=463000:463800:1 -o map.tif
    expect_status 1
    expect_stderr 'make no cells'
    expect_files map.csv
}

test_NamesAndFormatsThatAreUnknownAreUsageErrors()
{
    write_map
    map --grid cell=40 -o map.jpg
    expect_status 2
    expect_stderr "--output: nothing is known of files that end in '.jpg'; known are .csv, .tsv and .txt"
    map --grid cell=40 --output-format jpg -o map.jpg
    expect_status 2
    expect_stderr '--output-format: must be one of csv, vtk, tif, asc, nc, gpkg, geojson and shp'
    map --grid cell=40 -o map.tif.gz
    expect_status 2
    expect_stderr '--output: a .tif file is not packed; leave .gz out of its name'
    map --grid cell=40 --output-format tif -o -
    expect_status 2
    expect_stderr 'a .tif file is not written in order'
    map --grid cell=40 --type float16 -o map.tif
    expect_status 2
    expect_stderr '--type: must be float64 or float32'
    map --grid cell=40 --type float32 -o map.csv
    expect_status 2
    expect_stderr '--type: goes with a raster'
    map --grid cell=40 --crs EPSG:99999999 -o map.tif
    expect_status 2
    expect_stderr "--crs: 'EPSG:99999999' is no coordinate reference system that is known here"
    expect_files map.csv
}

test_AFormatByNameWinsOverTheSuffix()
{
    write_map
    map --grid cell=40 --output-format tif -o map.data
    expect_status 0
    gdalinfo map.data | grep -q 'Driver: GTiff' || fail 'no GeoTIFF'
    map --grid cell=40 --output-format csv -o table.tif
    expect_status 0
    [ "$(head -n 1 table.tif)" = 'x,y,z' ] || fail 'no CSV'
}

test_AFailingRunLeavesWhatWasThere()
{
    write_map
    echo old >map.tif
    printf 'x,y,z\n1,1,1\n1,1,2\n' >bad.csv
    krige predict bad.csv --inputs x,y --outputs z --grid x=0:1:2,y=0:1:2 -o map.tif
    expect_status 1
    [ "$(cat map.tif)" = old ] || fail 'the old file is gone'
    expect_files bad.csv map.csv map.tif
    mkdir folder.tif
    map --grid cell=40 -o folder.tif
    expect_status 1
    expect_stderr 'folder.tif: cannot be written: it is a folder'
    map --grid cell=40 -o none/map.tif
    expect_status 1
    expect_stderr 'none/map.tif: cannot be written: '
}

test_CtrlCLeavesNoRaster()
{
    write_map
    "$program" predict map.csv --inputs x,y --outputs z --grid cell=0.01 --yes -o map.tif >out 2>err &
    pid=$!
    tries=0
    until [ -n "$(find . -name '.krige-*.tmp*')" ]; do
        tries=$((tries + 1))
        [ $tries -lt 600 ] || { kill $pid; fail 'nothing is written'; }
        sleep 0.1
    done
    kill -INT $pid 2>/dev/null
    kill -TERM $pid # a shell without job control has its children ignore the interrupt
    wait $pid
    rm -f out err
    expect_files map.csv
}

test_TheProgramItselfDoesNotLinkGdal()
{
    ! readelf -d "$program" | grep -i gdal || fail 'krige depends on GDAL'
    readelf -d "$(dirname "$program")/krige_gdal.so" | grep -qi 'NEEDED.*gdal' || fail 'the module lies elsewhere'
}

test_WithoutTheModuleThePackageIsNamed()
{
    write_map
    cp "$program" ./alone
    program=./alone
    LD_LIBRARY_PATH=$(readelf -d ./alone | sed -n 's/.*R[UN]*PATH.*\[\(.*\)\]/\1/p')
    export LD_LIBRARY_PATH
    map --grid cell=40 -o map.tif
    expect_status 1
    expect_stderr 'map.tif: needs the module krige_gdal, which is not installed; it comes with the package krige-gdal'
    map --grid cell=40 -o map.out.csv
    expect_status 0
    expect_files alone map.csv map.out.csv
}

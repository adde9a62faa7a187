# Files that hold something else than a table, under whatever name.

# told TEXT: what is said of table.csv, by every subcommand that reads samples, and of targets.
told()
{
    krige info table.csv
    expect_status 1
    expect_stderr "table.csv: $1"
    expect_empty_stdout
    krige predict table.csv --inputs x,y --outputs z --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "table.csv: $1"
    write_samples
    predict --at table.csv -o out.csv
    expect_status 1
    expect_stderr "table.csv: $1"
    expect_files samples.csv table.csv
}

test_GeoJsonUnderAnotherName()
{
    printf '{ "type": "FeatureCollection", "features": [\n] }\n' >table.csv
    told 'holds GeoJSON, not a table in CSV; it is read by its name, which must end in .geojson then'
}

test_OtherJson()
{
    printf '[{"x": 1, "y": 2, "z": 3}]\n' >table.csv
    told 'holds JSON, not a table in CSV; convert it to CSV'
}

test_ATiffUnderAnotherName()
{
    printf 'II*\000\010\000\000\000\000\000' >table.csv
    told 'holds a TIFF image or raster, not a table in CSV; a raster is read by its name, which must end in .tif then'
}

test_AGeoPackageUnderAnotherName()
{
    printf 'SQLite format 3\000\020\000\001\001' >table.csv
    told 'holds a database, such as a GeoPackage, not a table in CSV; a GeoPackage is read by its name, which must end in .gpkg then'
}

test_AShapefileUnderAnotherName()
{
    printf '\000\000\047\012\000\000\000\000' >table.csv
    told 'holds a Shapefile, not a table in CSV'
}

test_ANetcdfUnderAnotherName()
{
    printf '\211HDF\r\n\032\n\002\010\010' >table.csv
    told 'holds an HDF5 or netCDF file, not a table in CSV'
}

test_AnAsciiGridUnderAnotherName()
{
    printf 'ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2\n' >table.csv
    told 'holds an ASCII grid, not a table in CSV'
}

test_AnOldSpreadsheet()
{
    printf '\320\317\021\340\241\261\032\341\000\000' >table.csv
    told 'holds an old office document, such as a spreadsheet (.xls), not a table in CSV; save its sheet as CSV'
}

test_APdf()
{
    printf '%%PDF-1.7\n' >table.csv
    told 'holds a PDF document, not a table in CSV'
}

test_AnImage()
{
    printf '\211PNG\r\n\032\n\000\000\000\015' >table.csv
    told 'holds a PNG image, not a table in CSV'
}

test_AWebPage()
{
    printf '<!DOCTYPE html>\n<html><body>404 Not Found</body></html>\n' >table.csv
    told 'holds a web page, not a table in CSV; a download may have brought an error page in place of the file'
}

test_Xml()
{
    printf '<?xml version="1.0"?>\n<kml/>\n' >table.csv
    told 'holds an XML document, such as KML or GML, not a table in CSV; convert it to CSV'
}

test_AParquetFile()
{
    printf 'PAR1\025\004\025' >table.csv
    told 'holds a Parquet file, not a table in CSV; convert it to CSV'
}

test_OurOwnSettings()
{
    write_samples
    krige tune samples.csv --inputs x,y --outputs z --nugget 0.1 --max-trials 3 -o table.csv
    expect_status 0
    told 'holds the settings of a model, not a table in CSV; they belong behind --config'
}

test_OurOwnVtkFile()
{
    write_samples
    predict --grid 2x2 -o grid.vtk
    mv grid.vtk table.csv
    told 'holds a VTK file, not a table in CSV'
}

test_Utf16()
{
    printf '\377\376x\000,\000y\000,\000z\000\n\000' >table.csv
    told 'is in the encoding UTF-16; save it in UTF-8'
}

test_Utf16WithoutItsMark()
{
    printf 'x\000,\000y\000,\000z\000\n\000' >table.csv
    told 'is in the encoding UTF-16; save it in UTF-8'
}

test_AFolderNamesAFileInIt()
{
    mkdir data
    : >data/.hidden
    printf 'x,y,z\n' >data/wells.csv
    krige info data
    expect_status 1
    expect_stderr "data: Is a directory; name a file in it, for instance 'data/wells.csv'"
}

test_AMisspeltFileIsSuggested()
{
    write_samples
    mkdir data
    cp samples.csv data/wells.csv
    krige info sample.csv
    expect_status 1
    expect_stderr "sample.csv: No such file or directory; did you mean 'samples.csv'?"
    krige info data/wels.csv
    expect_stderr "did you mean 'data/wells.csv'?"
}

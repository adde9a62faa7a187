# Samples in archives and packed by other programs than gzip.

require()
{
    for program_needed in "$@"; do
        command -v "$program_needed" >/dev/null || skip "no $program_needed here"
    done
}

# unpacks FILE: predicting from it gives what predicting from samples.csv gives.
unpacks()
{
    predict --grid 4x3 -o expected.csv
    krige predict "$1" --inputs x,y --outputs z --grid 4x3 -o out.csv
    expect_status 0
    cmp expected.csv out.csv || fail "$1 gives other bytes"
    "$program" predict - --inputs x,y --outputs z --grid 4x3 -o out.csv <"$1" 2>/dev/null
    cmp expected.csv out.csv || fail "$1 from standard input gives other bytes"
    # shellcheck disable=SC2002 # a pipe is what is tried
    cat "$1" | "$program" predict - --inputs x,y --outputs z --grid 4x3 -o out.csv 2>/dev/null
    cmp expected.csv out.csv || fail "$1 from a pipe gives other bytes"
}

# refused TEXT FILE
refused()
{
    krige predict "$2" --inputs x,y --outputs z --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "$1"
    [ ! -e out.csv ] || fail 'an output is left'
}

test_XzIsUnpacked()
{
    require xz
    write_samples
    xz -k samples.csv
    unpacks samples.csv.xz
}

test_ZstdIsUnpacked()
{
    require zstd
    write_samples
    zstd -q samples.csv
    unpacks samples.csv.zst
}

test_Bzip2IsUnpacked()
{
    require bzip2
    write_samples
    bzip2 -k samples.csv
    unpacks samples.csv.bz2
}

test_TheOnlyFileOfAZipArchiveIsRead()
{
    require zip
    write_samples
    mkdir data
    cp samples.csv data
    zip -qr samples.zip data
    unpacks samples.zip
}

test_TargetsMayBePackedToo()
{
    require xz
    write_samples
    printf 'x,y\n0,0\n0,1\n1,1\n' >targets.csv
    predict --at targets.csv -o expected.csv
    xz targets.csv
    predict --at targets.csv.xz --shard 1/1 -o out.csv
    cmp expected.csv out.csv || fail 'packed targets give other bytes'
    predict --at targets.csv.xz --shard 1/2 -o part1.csv
    predict --at targets.csv.xz --shard 2/2 -o part2.csv
    cat part1.csv part2.csv | cmp expected.csv - || fail 'parts of packed targets give other bytes'
}

test_SeveralFilesOfAZipArchiveAreNamed()
{
    require zip
    write_samples
    cp samples.csv other.csv
    zip -q both.zip samples.csv other.csv
    refused "both.zip: the zip archive holds 2 files: 'samples.csv', 'other.csv'; unpack it and name one of them" both.zip
    # shellcheck disable=SC2002 # a pipe is what is tried
    cat both.zip | "$program" info - >"$scratch/log/out" 2>"$scratch/log/err"
    expect_stderr 'standard input: the zip archive holds 2 files: '
}

test_AnEmptyZipArchiveIsAnError()
{
    printf 'PK\005\006\000\000\000\000\000\000\000\000\000\000\000\000\000\000\000\000\000\000' >empty.zip
    refused 'empty.zip: the zip archive holds no file' empty.zip
}

test_AnEncryptedFileIsAnError()
{
    require zip
    write_samples
    zip -q -P secret locked.zip samples.csv
    refused 'locked.zip: the file in the zip archive is encrypted; unpack it first' locked.zip
}

test_ASpreadsheetIsToldSo()
{
    require zip
    mkdir xl
    echo '<x/>' >'[Content_Types].xml'
    echo '<x/>' >xl/workbook.xml
    zip -q book.xlsx '[Content_Types].xml' xl/workbook.xml
    refused 'book.xlsx: holds an office document, such as a spreadsheet; save its sheet as CSV' book.xlsx
}

test_ACutOffXzFileIsAnError()
{
    require xz
    write_samples
    xz -k samples.csv
    head -c 70 samples.csv.xz >cut.xz
    refused 'cut.xz: the xz data are damaged or end too early' cut.xz
}

test_ACutOffZstdFileIsAnError()
{
    require zstd
    write_samples
    zstd -q samples.csv
    head -c 40 samples.csv.zst >cut.zst
    refused 'cut.zst: the zstd data are damaged or end too early' cut.zst
}

test_ACutOffZipArchiveIsAnError()
{
    require zip
    write_samples
    zip -q samples.zip samples.csv
    head -c 60 samples.zip >cut.zip
    refused 'cut.zip: the zip data are damaged or end too early' cut.zip
}

test_DamagedXzDataAreAnError()
{
    printf '\3757zXZ\000abcdefghijklmnopq' >bad.xz
    refused 'bad.xz: the xz data are damaged' bad.xz
}

test_DamagedZstdDataAreAnError()
{
    printf '\050\265\057\375abcdefghijklmnopq' >bad.zst
    refused 'bad.zst: the zstd data are damaged' bad.zst
}

test_ATarArchiveIsToldSo()
{
    require tar gzip
    write_samples
    tar -czf samples.tar.gz samples.csv
    refused 'samples.tar.gz: holds a tar archive, not a table in CSV; unpack it and name one of its files' samples.tar.gz
}

# Tables as they come: blanks between fields, decimal commas, comments, no header row, other encodings.

# like_plain FILE ARGUMENTS...: predicting from it gives what predicting from the plain samples gives.
like_plain()
{
    file=$1
    shift
    [ -e samples.csv ] || write_samples
    predict --grid 4x3 -o expected.csv
    krige predict "$file" --inputs x,y --outputs z --grid 4x3 -o out.csv "$@"
    expect_status 0
    cmp expected.csv out.csv || fail 'the output differs from that of the plain file'
}

test_RunsOfBlanksSeparateFields()
{
    printf '  x   y\tz \n0 0  0\n1 0 1\r\n  0 1 10\n\n1 1 11\n0.5 0.5\t5.5\n' >table.txt
    like_plain table.txt --delimiter space
}

test_QuotesHoldTextsWithBlanks()
{
    printf 'site x y z\n"a  b" 0 0 0\nc 1 0 1\n"d" 0 1 10\ne 1 1 11\n"f ""g"""  0.5 0.5 5.5\n' >table.txt
    like_plain table.txt --delimiter space
}

test_DecimalCommasAreRead()
{
    printf 'x;y;z\n0;0;0\n1;0;1,0\n0;1;10\n1;1;11\n0,5;,5;5,5\n' >table.csv
    like_plain table.csv --decimal ,
}

test_QuotedDecimalCommasStandBetweenCommas()
{
    printf 'x,y,z\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n"0,5","0,5","5,5"\n' >table.csv
    like_plain table.csv --decimal comma
}

test_CommentsArePassedOver()
{
    printf '# made; today; by; hand\n\n#\nx,y,z\n0,0,0\n1,0,1\n # checked\n0,1,10\n1,1,11\n0.5,0.5,5.5\n# end' >table.csv
    like_plain table.csv --comment '#'
}

test_ColumnsWithoutAHeaderRowHaveNumbers()
{
    write_samples
    sed 1d samples.csv >bare.csv
    predict --grid 4x3 -o expected.csv
    krige predict bare.csv --no-header --inputs 1,2 --outputs 3 --grid 4x3 -o out.csv
    expect_status 0
    sed 1d expected.csv | cmp - out.csv || fail 'the estimates differ, or have a header row'
    krige predict bare.csv --no-header --inputs 1,2 --outputs 3 --grid 1=0:1:4,2=0:1:3 -o out.csv
    sed 1d expected.csv | cmp - out.csv || fail 'the axes by number give other estimates'
}

test_OutputsWithoutAHeaderRowAreReadAgain()
{
    write_samples
    sed 1d samples.csv >bare.csv
    printf '0.5 0.5 a\n0 1 b\n' >targets.txt
    krige predict bare.csv --no-header --inputs 1,2 --outputs 3 --grid 4x3 --variance -o out.csv
    krige info out.csv --no-header
    expect_status 0
    expect_stdout '12 rows, 5 columns'
    krige validate bare.csv --no-header --inputs 1,2 --outputs 3 --against bare.csv
    expect_status 0
}

test_KeptColumnsAreNamedByNumberToo()
{
    printf '0 0 0\n1 0 1\n0 1 10\n1 1 11\n' >bare.txt
    printf '"a b" 0 0\nc 1 1\n' >targets.txt
    krige predict bare.txt --no-header --delimiter space --inputs 2,1 --outputs 3 --at targets.txt --keep 3 -o out.csv
    expect_status 1
    expect_stderr "targets.txt, line 1, column '1': 'a b' is not a number"
    printf '0 0 "a b"\n1 1 c\n' >targets.txt
    krige predict bare.txt --exact --no-header --delimiter space --inputs 1,2 --outputs 3 --at targets.txt --keep 3 -o out.csv
    expect_status 0
    expect_file out.csv <<END
0,0,0,a b
1,1,11,c
END
}

test_EverythingAtOnceIsRead()
{
    printf '# GMT\n  0,0 0,0 0\n1 0 1\n0 1 1,0e1\n> segment\n1 1 11\n' >table.txt
    krige info table.txt --no-header --delimiter space --decimal , --comment '#'
    expect_status 0
    sed '/^>/d' table.txt >plain.txt
    krige info plain.txt --no-header --delimiter space --decimal , --comment '#'
    expect_stdout 'plain.txt, 4 rows, 3 columns, delimiter blanks'
    expect_stdout "krige predict plain.txt --inputs 1,2 --outputs 3 --delimiter space --decimal , --comment '#' --no-header"
}

test_NamesInWindows1252AreFoundByTheirUtf8Names()
{
    printf 'x,y,H\366he\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n' >table.csv
    krige predict table.csv --exact --inputs x,y --outputs 'Höhe' --grid x=0:0:1,y=0:0:1 -o out.csv
    expect_status 0
    expect_file out.csv <<END
x,y,Höhe
0,0,0
END
}

test_KeptTextsInWindows1252BecomeUtf8()
{
    write_samples
    printf 'x,y,site\n0,0,M\374hle \200\n' >targets.csv
    predict --exact --at targets.csv --keep site -o out.csv
    expect_status 0
    expect_file out.csv <<END
x,y,z,site
0,0,0,Mühle €
END
}

test_ThousandsOfColumnsAreNoTrouble()
{
    awk 'BEGIN { n = 3000; printf "x,y"; for (i = 1; i <= n; ++i) printf ",c%d", i; printf "\n";
        for (r = 0; r < 30; ++r) { printf "%d,%d", r % 6, r / 6; for (i = 1; i <= n; ++i) printf ",%d", (r * i) % 17;
            printf "\n" } }' >table.csv
    krige predict table.csv --inputs x,y --outputs c1,c3000 --grid 3x3 -o out.csv
    expect_status 0
    krige info table.csv
    expect_status 0
    expect_stdout '30 rows, 3002 columns'
    expect_stdout "'c3000'"
    outputs=$(awk 'BEGIN { for (i = 1; i <= 3000; ++i) printf "%sc%d", (i > 1 ? "," : ""), i }')
    krige predict table.csv --inputs x,y --outputs "$outputs" --grid 3x3 -o out.csv
    expect_status 0
    [ "$(head -n 1 out.csv | tr ',' '\n' | wc -l)" -eq 3002 ] || fail 'columns are missing'
}

# refused STATUS TEXT FILE ARGUMENTS...: predicting from the file with the usual columns.
refused()
{
    expected=$1
    text=$2
    file=$3
    shift 3
    krige predict "$file" --inputs x,y --outputs z --grid 2x2 -o out.csv "$@"
    expect_status "$expected"
    expect_stderr "$text"
    [ ! -e out.csv ] || fail 'an output is left'
}

test_AFileWithoutAHeaderRowIsToldSo()
{
    printf '0,0,0\n1,0,1\n0,1,10\n' >bare.csv
    refused 1 'bare.csv, line 1: all cells of the first row are numbers: it is no header row; add --no-header and name columns by number, as in --inputs 1,2 --outputs 3' bare.csv
    krige info bare.csv
    expect_status 1
    expect_stderr 'add --no-header'
}

test_NamesDoNotGoWithNoHeader()
{
    printf '0,0,0\n1,0,1\n0,1,10\n' >bare.csv
    refused 2 "--inputs: with --no-header columns are named by number, from 1, not 'x'" bare.csv --no-header
}

test_ColumnsCountFromOne()
{
    printf '0,0,0\n1,0,1\n0,1,10\n' >bare.csv
    krige predict bare.csv --no-header --inputs 0,1 --outputs 2 --grid 2x2 -o out.csv
    expect_status 2
    expect_stderr "--inputs: with --no-header columns are named by number, from 1, not '0'"
}

test_AColumnNumberBeyondTheLastIsRefused()
{
    printf '0,0,0\n1,0,1\n0,1,10\n' >bare.csv
    krige predict bare.csv --no-header --inputs 1,2 --outputs 4 --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "bare.csv, line 1, column '4': there is no such column; without a header row columns have numbers, here 1 to 3"
}

test_BlankSeparatedNamesAreToldTheOption()
{
    printf 'x y z\n0 0 0\n' >table.txt
    refused 1 "the header row has 'x y z'; if blanks separate its columns, add --delimiter space" table.txt
}

test_AnotherSeparatorIsToldTheOption()
{
    printf 'x|y|z\n0|0|0\n' >table.txt
    refused 1 'separates its columns, name it with --delimiter' table.txt
}

test_AHeaderThatIsACommentIsToldTheOption()
{
    printf '# made today\nx,y,z\n0,0,0\n' >table.csv
    refused 1 "if this row is a comment, add --comment '#'" table.csv
}

test_AFileOfCommentsAloneIsEmpty()
{
    printf '# a\n# b\n' >table.csv
    refused 1 'table.csv, line 1: the file is empty; it needs a header row' table.csv --comment '#'
}

test_ADecimalCommaIsToldTheOption()
{
    printf 'x;y;z\n0;0;1,5\n' >table.csv
    refused 1 "table.csv, line 2, column 'z': '1,5' is not a number; if it has a decimal comma, add --decimal ," table.csv
}

test_APointIsNoDecimalComma()
{
    printf 'x;y;z\n0;0;1.5\n' >table.csv
    refused 1 "column 'z': '1.5' is not a number with a decimal comma (--decimal ,)" table.csv --decimal ,
}

test_ThousandsHaveNoSeparator()
{
    printf 'x;y;z\n0;0;1.234,5\n' >table.csv
    refused 1 "column 'z': '1.234,5' is not a number" table.csv --decimal ,
}

test_ALongRowBetweenBlanksIsRejected()
{
    printf 'x y z\n0 0 0\n1 0 1 extra\n' >table.txt
    refused 1 'table.txt, line 3, column 4: the row is longer than the header row' table.txt --delimiter space
}

test_AnEmptyCellCannotStandBetweenBlanks()
{
    printf 'x y z\n0 0 0\n1  1\n' >table.txt
    refused 1 "table.txt, line 3, column 'z': the row ends before this column" table.txt --delimiter space
}

test_AQuoteLeftOpenBetweenBlanksIsRejected()
{
    printf 'x y z\n0 0 "0\n1 0 1\n' >table.txt
    refused 1 'table.txt, line 2, column 3: the quoted field is never closed' table.txt --delimiter space
}

test_AMisspeltDelimiterIsRefused()
{
    write_samples
    refused 2 "not 'tabs'; did you mean 'tab'?" samples.csv --delimiter tabs
}

test_ADecimalCharacterIsACommaOrAPoint()
{
    write_samples
    refused 2 "--decimal: must be a comma or a point, not ';'" samples.csv --decimal ';'
}

test_ACommentBeginsLikeNoNumber()
{
    write_samples
    refused 2 "--comment: needs the text with which such lines begin, for instance '#', not '1'" samples.csv --comment 1
}

test_ACommentDoesNotBeginWithTheDelimiter()
{
    write_samples
    refused 2 "--comment: '|x' begins with the delimiter" samples.csv --delimiter '|' --comment '|x'
}

test_AnotherCaseOfANameIsSuggested()
{
    printf 'X,Y,Z\n0,0,0\n' >table.csv
    refused 1 "there is no such column; the header row has 'X', 'Y', 'Z'; did you mean 'X'?" table.csv
}

test_ANameWithAnUmlautIsSuggestedInUtf8()
{
    printf 'x,y,h\366he\n0,0,0\n' >table.csv
    krige predict table.csv --inputs x,y --outputs 'Höhe' --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "did you mean 'höhe'?"
}

# same_as_plain: the samples.csv at hand gives the bytes that the plain file gives.
same_as_plain()
{
    mv samples.csv disguised.csv
    write_samples
    predict --grid x=0:1:4,y=0:1:3 -o plain.csv
    expect_status 0
    mv disguised.csv samples.csv
    predict --grid x=0:1:4,y=0:1:3 -o out.csv
    expect_status 0
    cmp plain.csv out.csv || fail 'the output differs from that of the plain file'
}

test_CrlfLineEndsChangeNothing()
{
    printf 'x,y,z\r\n0,0,0\r\n1,0,1\r\n0,1,10\r\n1,1,11\r\n0.5,0.5,5.5\r\n' >samples.csv
    same_as_plain
}

test_AByteOrderMarkChangesNothing()
{
    printf '\357\273\277x,y,z\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n0.5,0.5,5.5\n' >samples.csv
    same_as_plain
}

test_AMissingLastLineEndChangesNothing()
{
    printf 'x,y,z\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n0.5,0.5,5.5' >samples.csv
    same_as_plain
}

test_QuotedNamesAndNumbersChangeNothing()
{
    printf '"x","y",z\n"0",0,0\n1,"0",1\n0,1,"10"\n1,1,11\n0.5,0.5,5.5\n' >samples.csv
    same_as_plain
}

test_AnyColumnOrderAndFurtherColumnsChangeNothing()
{
    printf 'site,z,"the ""note""",y,x\na,0,"u,v",0,0\nb,1,"two\nlines",0,1\n,10,,1,0\n,11,,1,1\n,5.5,1e999,0.5,0.5\n' \
        >samples.csv
    same_as_plain
}

test_BlanksPlusSignsAndExponentsChangeNothing()
{
    printf 'x, y ,z\n 0 ,0,0\n+1,0,\t1\n0,1,1e1\n" +1 ",1,+1.1E+1\n.5,5e-1,5.5\n' >samples.csv
    same_as_plain
}

test_BlankLinesChangeNothing()
{
    printf '\nx,y,z\n\n0,0,0\n1,0,1\n   \n0,1,10\n1,1,11\n0.5,0.5,5.5\n\n' >samples.csv
    same_as_plain
}

test_NamesWithCommasAndQuotesAreReadAndWritten()
{
    printf '"x, m","say ""y""",z\n0,0,0\n1,0,1\n0,1,10\n1,1,11\n' >samples.csv
    krige predict samples.csv --exact --inputs '"x, m","say ""y"""' --outputs z --grid '"x, m=0:0:1","say ""y""=0:1:2"' -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
"x, m","say ""y""",z
0,0,0
0,1,10
EOF
}

test_TargetsMayHoldTheirColumnsInAnyOrder()
{
    write_samples
    printf 'name,y,x\n"a,b",1,0\n,0,1\n' >targets.csv
    predict --exact --at targets.csv -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
0,1,10
1,0,1
EOF
}

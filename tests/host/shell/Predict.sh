test_SamplesAreReproducedWhereTheyLie()
{
    write_samples
    predict --at samples.csv -o out.csv
    expect_status 0
    expect_empty_stdout
    expect_file out.csv <<EOF
x,y,z
0,0,0
1,0,1
0,1,10
1,1,11
0.5,0.5,5.5
EOF
    expect_files out.csv samples.csv
}

test_TheFirstNamedAxisRunsFastest()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
0,0,0
1,0,1
0,1,10
1,1,11
EOF
}

test_ColumnsKeepTheOrderOfTheInputsWhenTheGridNamesAnother()
{
    write_samples
    predict --grid y=0:1:2,x=0:1:2 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
0,0,0
0,1,10
1,0,1
1,1,11
EOF
}

test_InputsMayBeNamedInAnyOrder()
{
    write_samples
    krige predict samples.csv --inputs y,x --outputs z --grid x=0:1:2,y=0:0:1 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
y,x,z
0,0,0
0,1,1
EOF
}

test_TheLastGridNodeIsExactlyTheHighEnd()
{
    write_samples
    predict --grid x=0.1:0.3:4,y=0:0:1 -o out.csv
    expect_status 0
    tail -n 1 out.csv | grep -q '^0\.3,0,' || { cat out.csv; fail 'the last node is not 0.3'; }
}

test_ATargetsFileWithoutTargetsGivesAHeaderAlone()
{
    write_samples
    printf 'x,y\n' >targets.csv
    predict --at targets.csv -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,y,z
EOF
}

test_SeveralOutputsComeInTheirOrder()
{
    printf 'x,b,a\n0,1,2\n1,3,4\n2,5,6\n' >samples.csv
    krige predict samples.csv --inputs x --outputs a,b --grid x=0:2:3 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,a,b
0,2,1
1,4,3
2,6,5
EOF
}

test_ALinearDriftReproducesAPlane()
{
    printf 'x,z\n0,1\n1,3\n2,5\n3,7\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --drift 1 --grid x=10:10:1 --extrapolate -o out.csv
    expect_status 0
    # z = 1 + 2 x, far outside the samples; the tolerance is for rounding
    awk -F, 'NR == 2 { ok = ($2 - 21) ^ 2 < 1e-18 } END { exit !ok }' out.csv || { cat out.csv; fail 'not 21'; }
}

test_ALocalModelUsesTheNearestSamples()
{
    # The outlier at 100 is none of the two nearest of any target.
    printf 'x,z\n0,5\n1,5\n2,5\n100,9999\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --nearest 2 --grid x=0:2:3 -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,z
0,5
1,5
2,5
EOF
}

test_MergedSamplesAreAveraged()
{
    printf 'x,z\n0,1\n0,3\n1,7\n2,8\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --duplicate-tolerance 0 --grid x=0:0:1 --exact -o out.csv
    expect_status 0
    expect_file out.csv <<EOF
x,z
0,2
EOF
}

test_NegativeScaleFactorsNeedNoEqualsSign()
{
    write_samples
    predict --scale -1,-2 --at samples.csv -o out.csv
    expect_status 0
}

test_ANegativeToleranceMergesNothing()
{
    write_samples
    predict --duplicate-tolerance -1 --at samples.csv -o out.csv
    expect_status 0
    expect_stderr 'merged: none'
}

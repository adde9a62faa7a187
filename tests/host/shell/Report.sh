test_AGlobalRunReportsWhatItDid()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 0
    expect_stderr 'samples: 5 samples read from samples.csv, 2 inputs, 1 output'
    expect_stderr 'merged: none'
    expect_stderr 'strategy: global over 5 points'
    expect_stderr 'time: '
    expect_stderr '4 targets'
}

test_ALocalRunReportsItsNearestPoints()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --nearest 3
    expect_status 0
    expect_stderr 'strategy: local over the 3 nearest of 5 points'
}

test_AsManyNearestAsPointsIsReportedAsGlobal()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --nearest 5
    expect_status 0
    expect_stderr 'strategy: global over 5 points'
}

test_MergedSamplesAreReported()
{
    printf 'x,z\n0,1\n0,3\n0,3\n1,7\n2,8\n2,9\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --duplicate-tolerance 0 --grid x=0:0:1 -o out.csv
    expect_status 0
    expect_stderr 'merged: 5 samples into 2 averaged points'
    expect_stderr 'strategy: global over 3 points'
    expect_no_stderr hint
}

test_CoincidentSamplesGetANote()
{
    printf 'x,z\n0,1\n0,3\n1,7\n2,8\n' >samples.csv
    krige predict samples.csv --inputs x --outputs z --nugget 0.1 --grid x=1.5:2:2 -o out.csv
    expect_status 0
    expect_stderr 'note: 2 of 4 samples coincide and are taken as repeated measurements, for there is a nugget'
}

test_SamplesApartGetNoHint()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_no_stderr hint
}

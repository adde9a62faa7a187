test_EveryMergedSampleIsListedWithItsLine()
{
    printf 'x,y,z\n0,0,1\n1,1,5\n\n0,0,3\n,,\n2,1,7\n1,1,6\n0,0,2\n' >samples.csv
    predict --grid 2x2 --skip-missing --duplicate-tolerance 0 --duplicates-report merged.csv -o out.csv
    expect_status 0
    expect_stderr 'merged: 5 samples into 2 averaged points'
    expect_file merged.csv <<END
point,line,x,y,z
1,2,0,0,1
1,5,0,0,3
1,9,0,0,2
2,3,1,1,5
2,8,1,1,6
END
}

test_WithoutMergingTheReportIsAUsageErrorWithTheWayOut()
{
    write_samples
    predict --grid 2x2 --duplicates-report merged.csv -o out.csv
    expect_status 2
    expect_stderr '--duplicates-report: nothing is merged; add --duplicate-tolerance 0'
    expect_files samples.csv
}

test_CoincidentSamplesNameTheWayOut()
{
    printf 'x,y,z\n0,0,1\n1,1,5\n0,0,3\n2,1,7\n' >samples.csv
    predict --grid 2x2 -o out.csv
    expect_stderr '2 of 4 samples coincide; add --duplicate-tolerance 0 to merge them'
}

# refused OPTION VALUE TEXT: a usage error whose message holds TEXT, and no output.
refused()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv "$1" "$2"
    expect_status 2
    expect_stderr "$1: "
    expect_stderr "$3"
    expect_files samples.csv
}

test_ANaNRangeIsRefused()
{
    refused --range nan 'finite number'
}

test_ANegativeRangeIsRefused()
{
    refused --range -1 'at least 0'
}

test_ANaNNuggetIsRefused()
{
    refused --nugget nan 'finite number'
}

test_ANuggetAboveTheSillIsRefused()
{
    refused --nugget 1.5 'between 0 and 1'
}

test_ANaNToleranceIsRefused()
{
    refused --duplicate-tolerance nan 'finite number'
}

test_AnOverflowingSettingIsRefused()
{
    refused --range 1e999 'too large'
}

test_ASettingWithTextIsRefused()
{
    refused --nugget 0.1x 'is not a number'
}

test_ANegativeNearestIsRefused()
{
    refused --nearest -3 "of at least 0, not '-3'"
}

test_AFractionalNearestIsRefused()
{
    refused --nearest 2.5 'whole number'
}

test_ANearestBeyondAnIntIsRefused()
{
    refused --nearest 3000000000 'whole number'
}

test_ADriftAboveFourIsRefused()
{
    refused --drift 5 'from 0 to 4'
}

test_ANegativeDriftIsRefused()
{
    refused --drift -1 'from 0 to 4'
}

test_ANaNScaleIsRefused()
{
    refused --scale 1,nan 'finite number'
}

test_TooFewScaleFactorsAreRefused()
{
    refused --scale 1 '1 factor for 2 inputs'
}

test_TooManyScaleFactorsAreRefused()
{
    refused --scale 1,2,3 '3 factors for 2 inputs'
}

test_AScaleFactorOfZeroIsRefusedWithItsInput()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --scale 1,0
    expect_status 1
    expect_stderr "that of 'y' is 0"
    expect_files samples.csv
}

test_AnInputNamedTwiceIsRefused()
{
    write_samples
    krige predict samples.csv --inputs x,x --outputs z --grid x=0:1:2 -o out.csv
    expect_status 2
    expect_stderr "the column 'x' is named twice"
    expect_files samples.csv
}

test_AColumnAsInputAndOutputIsRefused()
{
    write_samples
    krige predict samples.csv --inputs x,y --outputs y --grid x=0:1:2,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr "the column 'y' is named twice"
    expect_files samples.csv
}

test_AnEmptyColumnNameIsRefused()
{
    write_samples
    krige predict samples.csv --inputs x, --outputs z --grid x=0:1:2 -o out.csv
    expect_status 2
    expect_stderr 'empty name'
    expect_files samples.csv
}

test_AGridWithTheWrongAxesIsRefused()
{
    write_samples
    predict --grid x=0:1:2,q=0:1:2 -o out.csv
    expect_status 2
    expect_stderr "the input 'y' has no axis"
    expect_files samples.csv
}

test_AGridThatRunsBackwardsIsRefused()
{
    write_samples
    predict --grid x=1:0:2,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr 'HI is below LO'
    expect_files samples.csv
}

test_AGridWithoutNodesIsRefused()
{
    write_samples
    predict --grid x=0:1:0,y=0:1:2 -o out.csv
    expect_status 2
    expect_stderr 'COUNT must be a whole number of at least 1'
    expect_files samples.csv
}

test_TooLittleNearestForTheInputsNamesTheWayOut()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --nearest 2
    expect_status 1
    expect_stderr 'samples.csv: --nearest 2 is too few for 2 inputs: at least 3 are needed; raise --nearest'
    expect_files samples.csv
}

test_TooHighADriftNamesTheWayOut()
{
    write_samples
    predict --grid x=0:1:2,y=0:1:2 -o out.csv --drift 3
    expect_status 1
    expect_stderr 'samples.csv: 5 samples are too few for --drift 3 in 2 inputs: at least 10 are needed; lower --drift'
    expect_files samples.csv
}

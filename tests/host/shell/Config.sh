# Samples on which drift and nugget show.
write_slope()
{
    printf 'x,z\n0,1\n1,3\n2,5.5\n3,7\n4,9\n' >samples.csv
}

slope()
{
    krige predict samples.csv --inputs x --outputs z --grid x=-1:5:7 "$@"
    expect_status 0
}

test_ASettingsFileActsAsTheOptionsDo()
{
    write_slope
    printf '# found by hand\nduplicate-tolerance = 0\nscale = [-2]\ndrift = 1\nrange = 0.7\n\nnugget=0.25 # smooth\nnearest = 4\n' \
        >settings.toml
    slope --config settings.toml -o file.csv
    expect_stderr 'strategy: local over the 4 nearest'
    slope --duplicate-tolerance 0 --scale -2 --drift 1 --range 0.7 --nugget 0.25 --nearest 4 -o options.csv
    cmp file.csv options.csv || fail 'the settings file gives other estimates'
}

test_AnOptionWinsOverTheSettingsFileOnEitherSideOfIt()
{
    write_slope
    printf 'drift = 2\nnugget = 0.25\n' >settings.toml
    slope --drift 1 --nugget 0.25 -o expected.csv
    slope --drift 1 --config settings.toml -o before.csv
    slope --config settings.toml --drift 1 -o after.csv
    cmp expected.csv before.csv || fail 'the file won over an option before it'
    cmp expected.csv after.csv || fail 'the file won over an option after it'
}

test_ValidateReadsTheSettingsFileToo()
{
    write_slope
    printf 'nearest = 3\n' >settings.toml
    krige validate samples.csv --inputs x --outputs z --against samples.csv --config settings.toml
    expect_status 0
    expect_stderr 'strategy: local over the 3 nearest'
}

# refused CONTENT TEXT: a settings file with this content is an error that says TEXT.
refused()
{
    write_slope
    printf "$1" >settings.toml
    krige predict samples.csv --inputs x --outputs z --grid x=0:1:2 --config settings.toml -o out.csv
    expect_status 1
    expect_stderr "$2"
    expect_files samples.csv settings.toml
}

test_AnUnknownKeyIsRefusedWithTheKnownOnes()
{
    refused 'drift = 1\ndrfit = 2\n' "settings.toml, line 2: 'drfit' is no setting; the settings are duplicates, duplicate-tolerance, scale"
}

test_ABadValueIsRefusedWithItsLine()
{
    refused '\n\nnugget = 7\n' "settings.toml, line 3: nugget: must be between 0 and 1, not '7'"
}

test_AKeyTwiceIsRefused()
{
    refused 'drift = 1\r\ndrift = 1\r\n' "settings.toml, line 2: 'drift' stands in line 1 already"
}

test_ALineThatIsNoSettingIsRefused()
{
    refused 'drift\n' "settings.toml, line 1: 'drift' is no setting; write KEY = VALUE"
}

test_AMissingSettingsFileIsNamed()
{
    write_slope
    krige predict samples.csv --inputs x --outputs z --grid x=0:1:2 --config none.toml -o out.csv
    expect_status 1
    expect_stderr 'none.toml: No such file or directory'
}

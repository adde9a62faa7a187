# What is meant by a command line that is not quite right. tests/host/ArgumentHintsTest.cpp has more of them.

# usage TEXT ARGUMENTS...
usage()
{
    text=$1
    shift
    krige "$@"
    expect_status 2
    expect_stderr "krige: $text"
    expect_empty_stdout
}

test_AMisspeltOption()
{
    write_samples
    usage '--nuget: there is no such option; did you mean --nugget?' \
        predict samples.csv --inputs x,y --outputs z --grid 2x2 -o out.csv --nuget 0.1
    expect_files samples.csv
}

test_InputForInputs()
{
    usage '--input: there is no such option; did you mean --inputs?' \
        predict samples.csv --input x,y --outputs z --grid 2x2 -o out.csv
}

test_AListWithBlanks()
{
    usage 'a list is written with commas and without blanks; did you mean --inputs x,y?' \
        predict samples.csv --inputs x y --outputs z --grid 2x2 -o out.csv
}

test_OutputForOutputs()
{
    write_samples
    usage '--outputs is required, and --output names a file to write; did you mean --outputs z?' \
        predict samples.csv --inputs x,y --output z --grid 2x2
    expect_files samples.csv
    usage '--output: there is no such option; did you mean --outputs?' info samples.csv --inputs x,y --output z
}

test_AMisspeltSubcommand()
{
    krige predcit samples.csv
    expect_status 2
    expect_stderr "did you mean 'predict'?"
}

test_AMisspeltSetting()
{
    write_samples
    printf 'nuget = 0.1\n' >best.toml
    predict --config best.toml --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr "best.toml, line 1: 'nuget' is no setting; the settings are duplicates"
    expect_stderr "; did you mean 'nugget'?"
}

test_HelpOfASubcommand()
{
    for subcommand in predict validate tune variogram report info; do
        krige help "$subcommand"
        expect_status 0
        cp "$scratch/log/out" by_word
        krige "$subcommand" --help
        cmp by_word "$scratch/log/out" || fail "krige help $subcommand prints something else"
    done
}

test_HelpAlone()
{
    krige help
    expect_status 0
    cp "$scratch/log/out" by_word
    krige --help
    cmp by_word "$scratch/log/out" || fail 'krige help prints something else'
}

test_HelpOfNoSubcommand()
{
    krige help prophesy
    expect_status 2
    expect_stderr "'prophesy' is none of the subcommands"
}

test_SamplesAndTruthCannotBothBeStandardInput()
{
    usage 'samples and --against cannot both be standard input' validate - --inputs x,y --outputs z --against -
}

test_TrialsDoNotGoWhereTheSettingsGo()
{
    usage '--trials: is the same as --output' tune samples.csv --inputs x,y --outputs z --trials a.csv -o a.csv
}

# Sets of samples that leave little to estimate from: a clear error, or a finite and honest answer.

# finite LEAST GREATEST: out.csv has estimates, all of them between these.
finite()
{
    expect_status 0
    awk -F, -v least="$1" -v greatest="$2" 'NR > 1 { ++n; if (!($3 >= least && $3 <= greatest)) bad = 1 }
        END { exit bad || n < 1 }' out.csv || { cat out.csv; fail "not between $1 and $2"; }
}

# sane ARGUMENTS...: no death by a signal, and a message where it fails.
sane()
{
    krige "$@"
    [ "$status" -eq 0 ] || { [ "$status" -eq 1 ] && grep -q '^krige: .*samples.csv: ' "$scratch/log/err"; } ||
        fail "$*: exit status $status"
}

# all_sane: every analysis of samples.csv.
all_sane()
{
    for arguments in validate 'validate --leave-one-out' 'validate --nearest 3 --nugget 0.1' 'validate --duplicates merge' \
        'tune --max-trials 8' 'tune --max-trials 8 --held-out 0' variogram 'variogram --lags 5' 'variogram --fit' \
        'predict --grid 4x4 -o out.csv --interval 95' 'predict --grid 4x4 -o out.csv --drift 1' \
        'predict --grid 4x4 -o out.csv --nearest 3 --drift 2'; do
        # shellcheck disable=SC2086
        set -- $arguments
        subcommand=$1
        shift
        sane "$subcommand" samples.csv --inputs x,y --outputs z "$@"
    done
    krige info samples.csv
    expect_status 0
}

test_OneSampleIsTooFew()
{
    printf 'x,y,z\n0,0,1\n' >samples.csv
    predict --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr 'samples.csv: a single sample has no ranges, from which inputs are scaled; add samples'
    all_sane
}

test_TwoSamplesAreTooFewForTwoInputs()
{
    printf 'x,y,z\n0,0,1\n1,1,2\n' >samples.csv
    predict --grid 2x2 -o out.csv
    expect_status 1
    expect_stderr '2 samples are too few for 2 inputs: at least 3 are needed'
    all_sane
}

test_ThreeSamplesGiveEstimatesBetweenThem()
{
    printf 'x,y,z\n0,0,1\n1,0,2\n0,1,4\n' >samples.csv
    predict --grid 5x5 -o out.csv
    finite 1 4
    krige validate samples.csv --inputs x,y --outputs z --leave-one-out
    expect_status 1
    expect_stderr 'are too few for 2 inputs'
    all_sane
}

test_FourSamplesGiveEstimatesBetweenThem()
{
    printf 'x,y,z\n0,0,1\n1,0,2\n0,1,4\n1,1,3\n' >samples.csv
    predict --grid 5x5 -o out.csv
    finite 1 4
    krige validate samples.csv --inputs x,y --outputs z
    expect_status 0
    all_sane
}

test_AConstantOutputIsEstimatedAsSuch()
{
    awk 'BEGIN { print "x,y,z"; for (i = 1; i <= 30; ++i) printf "%g,%g,5\n", i * 0.618 % 1, i * 0.755 % 1 }' >samples.csv
    for options in '' '--drift 1' '--nugget 0.1' '--nearest 8' --exact; do
        # shellcheck disable=SC2086
        predict --grid 5x5 $options --interval 95 -o out.csv
        finite 4.999999999 5.000000001
    done
    all_sane
}

test_SamplesOnALineTakeNoTrendAcrossIt()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 30; ++i) printf "%d,%d,%d\n", i, 2 * i + 1, i * i % 7 }' >samples.csv
    predict --grid 5x5 -o out.csv
    finite -1 7
    predict --grid 5x5 --drift 1 -o none.csv
    expect_status 1
    expect_stderr 'they may lie on a line or on too few different places for --drift 1; lower --drift'
    all_sane
}

test_AnInputOfOneValueIsNamed()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 30; ++i) printf "3,%d,%d\n", i, i * i % 7 }' >samples.csv
    predict --grid 5x5 -o out.csv
    expect_status 1
    expect_stderr "the input 'x' has one value in all samples (3); leave it out of --inputs, or give it a positive --scale"
    all_sane
}

test_TwoClustersFarApartGiveEstimatesBetweenTheirs()
{
    awk 'BEGIN { print "x,y,z"; for (i = 1; i <= 40; ++i) printf "%.6f,%.6f,%.6f\n", i * 0.618 % 1 + i % 2 * 1e6,
        i * 0.755 % 1 + i % 2 * 1e6, i * 0.57 % 1 + i % 2 }' >samples.csv
    for options in '' '--nugget 0.1' '--nearest 8' --exact; do
        # shellcheck disable=SC2086
        predict --grid 5x5 $options -o out.csv
        finite -0.5 2.5
    done
    all_sane
}

test_ManySamplesAtTenPlacesSayHowToMergeThem()
{
    awk 'BEGIN { print "x,y,z"; for (i = 0; i < 100000; ++i) printf "%g,%g,%g\n", (i % 10) * 0.618 % 1, (i % 10) * 0.755 % 1,
        i * 0.57 % 1 }' >samples.csv
    # A program that watches its memory wants more address space to begin than this one has.
    if (ulimit -v 8000000; "$program" --version) >/dev/null 2>&1; then
        (ulimit -v 8000000; "$program" predict samples.csv --inputs x,y --outputs z --grid 5x5 -o out.csv) \
            2>"$scratch/log/err"
        status=$?
        expect_status 1
        expect_stderr 'add --nearest 32 to work on the nearest samples, or --duplicates merge, which leaves 10 points'
    fi
    predict --grid 5x5 --nearest 8 -o out.csv
    expect_status 1
    expect_stderr '100000 of 100000 samples share their place with another, for instance lines 2 and 12, distance 0'
    expect_files samples.csv
    for options in '--duplicates merge' '--nearest 8 --nugget 0.1'; do
        # shellcheck disable=SC2086
        predict --grid 5x5 $options -o out.csv
        finite 0 1
    done
    krige validate samples.csv --inputs x,y --outputs z --duplicates merge
    expect_status 0
}

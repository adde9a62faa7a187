# What the scripts share; sourced, not run.

project_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Debian packages, by the groups of script/bootstrap.
build_packages="g++ cmake ninja-build qtbase5-dev libhwy-dev libcli11-dev libcsv-dev libarchive-dev libpng-dev zlib1g-dev"
test_packages="libgtest-dev libgmock-dev libmpfr-dev binutils gnuplot-nox man-db help2man parallel python3 make pkg-config \
bzip2 xz-utils zip zstd libgdal-dev gdal-bin python3-xarray python3-netcdf4"
python_packages="python3-dev pybind11-dev python3-numpy python3-sklearn python3-joblib python3-pandas python3-xarray \
python3-dask python3-distributed python3-matplotlib python3-pytest python3-hypothesis python3-build python3-setuptools \
python3-wheel python3-venv python3-pip mypy"
benchmark_packages="libbenchmark-dev libopenblas-dev gnuplot-nox python3"
peer_packages="python3 python3-scipy python3-openturns r-cran-gstat r-base-core"
abi_packages="abigail-tools"
fuzz_packages="clang libclang-rt-14-dev llvm"
coverage_packages="gcovr"
mutation_packages="ccache git python3"
package_packages="dpkg-dev debhelper fakeroot lintian mmdebstrap"
browser_packages="chromium fonts-dejavu-core poppler-utils python3"
lint_packages="clang-format clang-tidy"
arm_packages="g++-aarch64-linux-gnu qemu-user libhwy-dev:arm64 qtbase5-dev:arm64 libgtest-dev:arm64 libgmock-dev:arm64"

heading() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# is_installed NAME or NAME:ARCHITECTURE; without one the machine's own counts.
is_installed() {
    local name=${1%%:*} architecture
    case $1 in *:*) architecture=${1#*:} ;; *) architecture=$(dpkg --print-architecture) ;; esac
    dpkg-query -W -f='${db:Status-Status} ${Architecture}\n' "$name" 2>/dev/null |
        grep -qxE "installed (all|$architecture)"
}

# as_root COMMAND...: as it is for root, else through sudo; fails where there is neither.
as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else return 1
    fi
}

# require_packages NAME...: installs those that are missing, or says which they are.
require_packages() {
    local missing=() name
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "Not a Debian machine: nothing is installed here. Needed, under their Debian names: $*" >&2
        return
    fi
    for name in "$@"; do is_installed "$name" || missing+=("$name"); done
    [ ${#missing[@]} -gt 0 ] || return 0
    case " ${missing[*]} " in
    *:arm64\ *) dpkg --print-foreign-architectures | grep -qx arm64 || as_root dpkg --add-architecture arm64 ;;
    esac
    heading "Installing ${missing[*]}"
    as_root apt-get update -q &&
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" ||
        fail "cannot install packages here. Missing: ${missing[*]}. Install them as root, then run this again."
}

# configure_and_build PRESET [CMAKE OPTION...]
configure_and_build() {
    local preset=$1
    shift
    cd "$project_dir"
    heading "Building ($preset)"
    cmake --preset "$preset" "$@" >/dev/null
    cmake --build --preset "$preset"
}

#!/usr/bin/env bash
# check_installed_tree.sh CMAKE BUILD_DIR CONFIG WORK_DIR LIBDIR INCLUDEDIR READELF SOURCE_DIR
#
# Installs the build and fails unless headers and libraries are exactly the public ones, the libraries find each other
# wherever the tree is moved to, and no text file tells where it was built.
set -euo pipefail
export LC_ALL=C

cmake=$1 build_dir=$2 config=$3 work_dir=$4 libdir=$5 includedir=$6 readelf=$7 source_dir=$8
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work_dir"
"$cmake" --install "$build_dir" --config "$config" --prefix "$work_dir" >/dev/null
cd "$work_dir"

package=$libdir/cmake/fenn_surrogatemodel_kriging
config_suffix=$(tr '[:upper:]' '[:lower:]' <<<"${config:-noconfig}")
expected=$(
    for library in morvel_exception fenn_surrogatemodel_common fenn_surrogatemodel_kriging; do
        printf '%s\n' "$libdir/lib$library.so" "$libdir/lib$library.so.1" "$libdir/lib$library.so.1.0.0"
    done
    printf '%s\n' \
        "$includedir/fenn/surrogatemodel_common/SurrogateModelInterface.h" \
        "$includedir/fenn/surrogatemodel_common/exception/ExceptionBase.h" \
        "$includedir/fenn/surrogatemodel_kriging/KrigingSurrogateModel.h" \
        "$includedir/fenn/surrogatemodel_kriging/Normalizer.h" \
        "$includedir/fenn/surrogatemodel_kriging/SurrogateModelDataBlock.h" \
        "$package/fenn_surrogatemodel_krigingConfig.cmake" \
        "$package/fenn_surrogatemodel_krigingConfigVersion.cmake" \
        "$package/fenn_surrogatemodelTargets.cmake" \
        "$package/fenn_surrogatemodelTargets-$config_suffix.cmake" \
        "$package/morvel_exceptionTargets.cmake" \
        "$package/morvel_exceptionTargets-$config_suffix.cmake" \
        "$libdir/pkgconfig/fenn-surrogatemodel-kriging.pc"
)
status=0
# The module of krige is not the library's, and lies there where it was built.
if ! diff <(sort <<<"$expected") <(find "$includedir" "$libdir" ! -type d ! -path "$libdir/krige/*" | sort); then
    echo "the installed tree differs: < is missing, > is one too many"
    status=1
fi

standard="libstdc++ libm libgcc_s libc ld-linux-x86-64 ld-linux-aarch64 libasan libubsan libtsan"
check() {
    "$here/check_dynamic_section.sh" "$readelf" "$libdir/lib$1.so" "lib$1.so.1" "\$ORIGIN" $standard "${@:2}" || status=1
}
check morvel_exception
check fenn_surrogatemodel_common libmorvel_exception
check fenn_surrogatemodel_kriging libfenn_surrogatemodel_common libmorvel_exception libQt5Core libhwy

for path in "$build_dir" "$source_dir"; do
    if grep -rIlF -- "$path" .; then
        echo "the files above hold the path $path"
        status=1
    fi
done
exit $status

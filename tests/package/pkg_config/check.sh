#!/usr/bin/env bash
# check.sh PACKAGE_TESTS EXAMPLES WORK_DIR
#
# Builds hosts by make and pkg-config, which finds the installed library by PKG_CONFIG_PATH, and fails unless they print
# what they must. LD_LIBRARY_PATH may name where the libraries lie.
set -euo pipefail
tests=$(realpath "$1") examples=$(realpath "$2") work=$3
rm -rf "$work"
mkdir -p "$work"
make --no-print-directory -C "$work" -f "$tests/pkg_config/Makefile" SOURCE_DIR="$tests" EXAMPLES_DIR="$examples"
diff "$tests/find_package/minimal_host.expected.txt" <("$work/minimal_host")
diff "$tests/plugin_digest.expected.txt" <("$work/plugin_digest")

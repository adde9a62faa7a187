#!/usr/bin/env bash
# Inside an otherwise empty Debian root that holds the packages and this folder's tests, and no source tree: installs,
# uses and removes them.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
echo force-unsafe-io >/etc/dpkg/dpkg.cfg.d/scratch # a root that is thrown away
install() { apt-get install -qq -y --no-install-recommends "$@" >/tmp/apt.log || { cat /tmp/apt.log; return 1; }; }

install /packages/krige_*.deb /packages/libfenn-surrogatemodel-kriging1_*.deb
krige --version
cd "$(mktemp -d)"
cp /usr/share/doc/krige/examples/volcano/samples.csv* .
gunzip -f samples.csv.gz 2>/dev/null || true
krige info samples.csv | head -n 5
krige predict samples.csv --inputs x,y --outputs elevation --grid 20x10 --interval 95 -o map.csv
[ "$(wc -l <map.csv)" = 201 ]
head -n 1 map.csv
! krige predict samples.csv --inputs x,y --outputs elevation --grid cell=20 -o map.tif 2>message.txt
grep -q 'comes with the package krige-gdal' message.txt
install /packages/krige-gdal_*.deb
krige predict samples.csv --inputs x,y --outputs elevation --grid cell=20 --crs EPSG:27200 -o map.tif
[ -s map.tif ]
[ -s /usr/share/man/man1/krige.1.gz ]
# Loads completions as a person's shell does.
bash -c '. /usr/share/bash-completion/completions/krige && complete -p krige'

install /packages/libfenn-surrogatemodel-kriging-dev_*.deb g++ make cmake pkg-config
examples=/usr/share/doc/libfenn-surrogatemodel-kriging-dev/examples
"$tests/pkg_config/check.sh" "$tests" "$examples" /tmp/pkg_config
cmake -S "$tests/find_package" -B /tmp/find_package -DFENN_EXAMPLES_DIR=$examples -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build /tmp/find_package
diff "$tests/find_package/minimal_host.expected.txt" <(/tmp/find_package/minimal_host)
diff "$tests/find_package/contract_host.expected.txt" <(/tmp/find_package/contract_host)

apt-get purge -qq -y --autoremove krige 'libfenn-surrogatemodel-kriging*' >/tmp/apt.log
left=$(find /usr /etc /var/lib '(' -iname '*krige*' -o -iname '*kriging*' ')')
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
echo "installed, used and removed"

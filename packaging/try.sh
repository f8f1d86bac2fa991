#!/usr/bin/env bash
# Installs the packages of one processor into a scratch root, runs the examples there and removes them again: try.sh ARCH
set -euo pipefail
arch=${1:?usage: try.sh ARCH}
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
triplet=$(dpkg-architecture -a "$arch" -q DEB_HOST_MULTIARCH 2>/dev/null)
lib=$root/usr/lib/$triplet
examples=$root/usr/share/doc/libzucom-dev/examples
emulator=() cc=gcc cxx=g++
if [[ $arch != "$(dpkg --print-architecture)" ]]; then
    emulator=(qemu-aarch64-static -L "/usr/$triplet") cc=$triplet-gcc cxx=$triplet-g++
fi

# The scratch root is empty: what the packages need of the distribution is taken from the machine, but nothing else.
fromMachine=""
for package in libc6 libgcc-s1 libstdc++6 libfmt9; do
    fromMachine+=,$package,$package:$arch
done
inRoot()
{
    dpkg --root="$root" --log=/dev/null --force-not-root --force-architecture --force-script-chrootless \
        --ignore-depends="${fromMachine#,}" "$@"
}
mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
inRoot --install "$source"/build/packages/*_"$arch".deb

export LD_LIBRARY_PATH=$lib
flags=$(PKG_CONFIG_LIBDIR=$lib/pkgconfig pkg-config --cflags --libs zucom)
# shellcheck disable=SC2086 # one word per flag
"$cc" -std=c99 "$examples/c/exchange.c" -o "$root/exchange-c" $flags
# shellcheck disable=SC2086
"$cxx" -std=c++17 "$examples/cpp/exchange.cpp" -o "$root/exchange-cpp" $flags

reader="${emulator[*]} $root/usr/bin/zucom"
"$source/tests/examples/check.sh" "$reader" "${emulator[@]}" "$root/exchange-c"
"$source/tests/examples/check.sh" "$reader" "${emulator[@]}" "$root/exchange-cpp"
if [[ ${#emulator[@]} == 0 ]]; then
    "$source/tests/examples/check.sh" "$reader" python3 "$examples/python/exchange.py"
else
    echo "skip  the Python example: the scratch root has no Python for $arch"
fi

inRoot --purge libzucom4 libzucom-dev zucom-tools
left=$(find "$root" -path '*/usr/*zucom*')
[[ -z $left ]] || { echo "left behind: $left" >&2; exit 1; }

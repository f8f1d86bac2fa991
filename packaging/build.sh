#!/usr/bin/env bash
# Makes the Debian packages for amd64 and arm64 in build/packages, checks them with lintian, installs them into scratch
# roots and runs the examples there.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
out=$root/build/packages
native=$(dpkg --print-architecture)

rm -rf "$out"
mkdir -p "$out"

# Each build has a copy of the sources of its own, so that nothing of it stays in the tree.
copySources()
{
    mkdir -p "$1"
    git -C "$root" ls-files -z --cached --others --exclude-standard |
        tar -C "$root" --null --ignore-failed-read -T - -c 2>/dev/null | tar -C "$1" -x
    cp -r "$root/packaging/debian" "$1/debian"
}

# Build dependencies are checked where they can be: another processor's are the build machine's own.
buildPackages()
{
    local arch=$1 tree=$out/tree/$1/zucom options=(-b -us -uc -a"$1")
    [[ $arch == "$native" ]] || options+=(-d "-Pcross,nocheck")
    copySources "$tree"
    (cd "$tree" && DEB_BUILD_OPTIONS="noautodbgsym nocheck parallel=$(nproc)" dpkg-buildpackage "${options[@]}") \
        >"$out/build-$arch.log" 2>&1 || { tail -n 40 "$out/build-$arch.log" >&2; return 1; }
    mv "$out/tree/$arch"/*.deb "$out"
}

checkPackages() { lintian --allow-root --fail-on error,warning --no-tag-display-limit "$out"/*_"$1".deb; }

cases=0 failures=0
for step in buildPackages checkPackages "$root/packaging/try.sh"; do
    for arch in amd64 arm64; do
        echo "== $(basename "$step") $arch"
        cases=$((cases + 1))
        (set -e; "$step" "$arch") &
        wait $! || { echo "FAIL  $(basename "$step") $arch"; failures=$((failures + 1)); }
    done
done
rm -rf "$out/tree"
ls -l "$out"/*.deb
echo "PACKAGE: $cases cases, 0 faults, $failures failures"
[[ $failures == 0 ]]

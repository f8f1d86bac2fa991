#!/usr/bin/env bash
# Installs a built tree into a scratch prefix, moves it away, and uses it as other projects do: use.sh BUILD
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "${1:?usage: use.sh BUILD}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cached() { sed -n "s/^$1:[^=]*=//p" "$build/CMakeCache.txt"; }
compiler() { sed -n "s/^set(CMAKE_$1_COMPILER \"\(.*\)\")/\1/p" "$build"/CMakeFiles/*/"CMake$1Compiler.cmake"; }
cc=$(compiler C) cxx=$(compiler CXX) toolchain=$(cached CMAKE_TOOLCHAIN_FILE)
emulator=()
if [[ -n $toolchain ]]; then
    read -ra emulator <<<"$(sed -n 's/^set(CMAKE_CROSSCOMPILING_EMULATOR \(.*\))/\1/p' "$toolchain")"
fi

# check NAME COMMAND...: one case; what the command said is shown when it failed. In the background, because `set -e` does
# not reach into the condition of an `if`.
cases=0 failures=0
check()
{
    local name=$1
    shift
    cases=$((cases + 1))
    "$@" >"$work/log" 2>&1 &
    if wait $!; then
        echo "ok    $name"
    else
        echo "FAIL  $name"
        sed 's/^/      /' "$work/log"
        failures=$((failures + 1))
    fi
}

installTree()
{
    cmake --install "$build" --prefix "$work/first"
    mv "$work/first" "$prefix"
    [[ -e $lib/libzucom.so.4.0.0 && $(readlink "$lib/libzucom.so.4") == libzucom.so.4.0.0 ]]
    [[ $(readlink "$lib/libzucom.so") == libzucom.so.4 ]]
    diff -r "$here/../../include/zucom" "$prefix/include/zucom"
}

consumer() { cmake -S "$here/consumer" -B "$work/$1" -DCMAKE_PREFIX_PATH="$prefix" -DWANTED="$2" "${compilers[@]}"; }
compilers=(-DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain"})

viaCmake()
{
    consumer cmake 4
    cmake --build "$work/cmake"
    ctest --test-dir "$work/cmake" --output-on-failure
}

refused()
{
    if consumer "version-$1" "$1" >"$work/refusal" 2>&1; then return 1; fi
    grep "version: 4.0.0" "$work/refusal"
}

# viaPkgConfig COMPILER STANDARD SOURCE
viaPkgConfig()
{
    local flags
    flags=$(PKG_CONFIG_PATH=$lib/pkgconfig pkg-config --cflags --libs "zucom >= 4")
    # shellcheck disable=SC2086 # one word per flag
    "$1" "-std=$2" -Wall -Wextra -Wpedantic -Werror "$3" -o "$work/program" $flags
    LD_LIBRARY_PATH=$lib "${emulator[@]}" "$work/program"
}

reloading()
{
    "$cc" -std=c99 -D_GNU_SOURCE "$here/reload.c" -o "$work/reload" -ldl
    "${emulator[@]}" "$work/reload" "$lib/libzucom.so.4"
}

# A program that calls nothing: only its libraries are loaded and what local time needs is read.
idling()
{
    echo "int main(void) { return 0; }" >"$work/idle.c"
    echo "[OUTPUTTER]" >"$work/mirn.conf"
    "$cc" "$work/idle.c" -o "$work/idle" -Wl,--no-as-needed -L"$lib" -lzucom -Wl,-rpath,"$lib"
    MIRN_LOGGER_CONGIG_FILE=$work/mirn.conf strace -f -qq -o "$work/trace" \
        -e trace=%file,%network,%process,write,writev,pwrite64,ioctl,readlink "$work/idle"
    grep -q 'libzucom.so.4' "$work/trace"
    local process='(execve|exit_group)\(' loading="ld\.so\.(cache|preload)\"|\.so(\.[0-9]+)*\"|\"$lib"
    local opened='stat[a-z0-9]*\([0-9]+, ""' localTime='"/etc/localtime"|/zoneinfo/'
    if grep -vE "$process|$loading|$opened|$localTime" "$work/trace"; then return 1; fi
}

programRuns() { "${emulator[@]}" "$prefix/bin/zucom" --help; }

prefix=$work/moved
lib=$prefix/$(cached CMAKE_INSTALL_LIBDIR)
echo "Using what $build installs, with $(basename "$cc")"
check "the files are where they belong" installTree
check "CMake, C99 and C++17" viaCmake
for version in 3 4.1 5; do
    check "CMake, version $version is refused" refused "$version"
done
check "pkg-config, C99" viaPkgConfig "$cc" c99 "$here/consumer/functions.c"
check "pkg-config, C++17" viaPkgConfig "$cxx" c++17 "$here/consumer/classes.cpp"
check "loaded, used and closed 1,000 times" reloading
[[ ! -e $prefix/bin/zucom ]] || check "the program finds the library" programRuns
[[ -n $toolchain ]] || check "an idle program reads only what local time needs" idling
echo "INSTALL: $cases cases, 0 faults, $failures failures"
[[ $failures == 0 ]]

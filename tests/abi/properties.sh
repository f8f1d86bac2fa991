#!/usr/bin/env bash
# Checks how a shared library file is linked: properties.sh LIBRARY
set -euo pipefail
library=${1:?usage: properties.sh LIBRARY}
dynamic=$(readelf -dW "$library")
work=$(mktemp)
trap 'rm -f "$work"' EXIT

problems=0
problem()
{
    echo "$library: $1" >&2
    problems=$((problems + 1))
}
has() { grep -qE "$1" <<<"$dynamic"; }

has 'SONAME.*\[libzucom\.so\.4\]' || problem "its name is not libzucom.so.4"
has 'FLAGS_1.*NODELETE' || problem "it could be unloaded (-z nodelete)"
has '(FLAGS_1.*NOW|BIND_NOW)' || problem "it binds lazily (-z now)"
readelf -lW "$library" | grep -q GNU_RELRO || problem "its tables stay writable (-z relro)"
if has 'TEXTREL'; then problem "it has text relocations"; fi
if has 'R(UN)?PATH'; then problem "it has a search path"; fi
if readelf --dyn-syms -W "$library" | grep -qE 'UND .*(pthread_create|thrd_create|_M_start_thread)'; then problem "it can start threads"; fi
needed=$(sed -nE 's/.*NEEDED.*\[(.*)\]/\1/p' <<<"$dynamic" | grep -vE '^(libstdc\+\+\.so\.6|libgcc_s\.so\.1|libc\.so\.6|ld-linux-.*)$' || true)
[[ -z $needed ]] || problem "it needs $needed"

"${STRIP:-strip}" -o "$work" "$library"
size=$(stat -c %s "$work") limit=$((160 * 1024))
[[ $size -le $limit ]] || problem "stripped it has $size bytes, more than $limit"
[[ $problems == 0 ]] && echo "$library: linked as it should be, $size bytes stripped"

#!/usr/bin/env bash
# Checks the documentation against the project: pages without warnings, nothing undocumented, no dead reference.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

export LC_ALL=C.UTF-8
faults=0
fault() {
    echo "docs: $*" >&2
    faults=$((faults + 1))
}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Manual pages, in the folders that references between them are looked up in.
for section in 1 3 7; do
    mkdir -p "$scratch/man$section"
    cp docs/man/*."$section" "$scratch/man$section/" 2>/dev/null || true
done
for page in "$scratch"/man?/*; do
    grep -q '^\.so ' "$page" && continue   # another name of a page that is checked under its own
    (cd "$scratch" && MANPATH="$scratch:/usr/share/man" mandoc -Tlint -Wstyle "$page" 2>/dev/null) >"$scratch/log" || true
    grep -v 'referenced manual not found: Xr [a-z_]* [2345]$' "$scratch/log" >"$scratch/lint" || true   # the system's own
    (cd "$scratch" && MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" >/dev/null 2>>"$scratch/lint") || true
    while read -r line; do fault "$(basename "$page"): $line"; done <"$scratch/lint"
done

# Every function has a page; every result code, with its text, and every key has a row in the overview.
overview=docs/man/libzucom.7
functions=$(grep -oE 'ZUCOM_API [^(]*\bZUCOM_[A-Za-z]+\(' include/zucom/zucom.h | grep -oE 'ZUCOM_[A-Za-z]+\(' | tr -d '(' | sort -u)
for function in $functions; do
    [ -f "docs/man/$function.3" ] || fault "no manual page for $function"
done
while read -r name code; do
    grep -qE "^(\\\\)?$code $name( \*)?	" "$overview" || fault "$overview has no row for $code $name"
done < <(sed -nE 's/^ *(ZUCOM_(OK|ERR_[A-Z_]+)) = (-?[0-9]+).*/\1 \3/p' include/zucom/zucom.h)
while IFS=$'\t' read -r _ text; do
    grep -qF "\"ZUCOM: $text" api/zucomErrorText.cpp || fault "$overview: no code has the text $text"
done < <(grep -E '^(\\-)?[0-9]+ ZUCOM_' "$overview")
for key in $(grep -ohE '\{"[A-Za-z0-9]{4,}",' port/*.cpp logger/*.cpp | tr -d '{",'); do
    grep -qE "^$key(	|, )" "$overview" || fault "$overview has no row for the key $key"
done

# The program of the overview compiles.
sed -n '/^#include <stdio.h>/,/^\.Ed/p' docs/man/libzucom.7 | sed '$d; s/\\e/\\/g' >"$scratch/example.c"
cc -std=c99 -Wall -Wextra -Werror -Iinclude -fsyntax-only "$scratch/example.c" || fault "the example of libzucom.7 does not compile"

# The headers' comments.
{ cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = $scratch"; } | doxygen - || fault "the headers' comments have faults"

# Relative links lead somewhere.
guides=$(git ls-files -co --exclude-standard '*.md')
for guide in $guides; do
    while read -r target; do
        [ -e "$(dirname "$guide")/${target%%#*}" ] || fault "$guide: no $target"
    done < <(grep -oE '\]\([^)]+\)' "$guide" | sed -E 's/^\]\(//; s/\)$//' | grep -vE '^(https?:|mailto:|#)' || true)
done

# The tests that promises name exist.
while read -r suite test; do
    grep -rqE "TEST(_F|_P)?\($suite, $test\)" tests || fault "docs/what-we-promise.md: no test $suite.$test"
done < <(grep -oE '`[A-Z][A-Za-z0-9]+\.[a-z][A-Za-z0-9]+`' docs/what-we-promise.md 2>/dev/null | tr -d '`' | tr . ' ' | sort -u)

echo "docs: $(wc -w <<<"$functions") functions, $(find docs/man -type f | wc -l) manual pages, $(wc -w <<<"$guides") guides, $faults faults found"
[ "$faults" -eq 0 ]

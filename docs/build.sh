#!/usr/bin/env bash
# Builds what is read in a browser or on paper: the reference of the headers and the manual pages as HTML and PDF.
# Usage: docs/build.sh [FOLDER]   (default build/docs)
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

out=${1:-build/docs}
mkdir -p "$out/man"

echo "reference of the public headers"
{ cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = \"$out\""; } | doxygen -

echo "manual pages"
for page in docs/man/*.[1-8]; do
    name=$(basename "$page")
    source=docs/man/$(sed -n 's|^\.so man[1-8]/||p' "$page")   # a page can be another name of one
    [ -f "$source" ] || source=$page
    # Only pages of our own are links: the first form is taken where the page lies in the current folder.
    (cd docs/man && mandoc -Thtml -Oman='%N.%S.html;#' "$(basename "$source")") >"$out/man/$name.html"
    man -t -l "$source" | ps2pdf - "$out/man/$name.pdf"
done

docs/check.sh
echo "read: $out/html/index.html, $out/man/libzucom.7.html"

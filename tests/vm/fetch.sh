#!/usr/bin/env bash
# fetch.sh FOLDER: downloads Debian's kernel and a static busybox for arm64 into FOLDER and unpacks them to FOLDER/root.
# apt works on a state of its own in FOLDER, from the sources of this machine: no rights, no foreign architecture here.
set -euo pipefail

folder=$(realpath -m "$1")
[ -e "$folder/root/.complete" ] && exit 0

mkdir -p "$folder"/{state/lists/partial,cache/archives/partial,debs}
: >"$folder/state/status"
options=(-qq -o APT::Architecture=arm64 -o APT::Architectures::=arm64 -o Dir::State="$folder/state"
    -o Dir::State::status="$folder/state/status" -o Dir::Cache="$folder/cache" -o Debug::NoLocking=1
    -o APT::Sandbox::User=root -o Acquire::Languages=none)

echo "vm: downloading the arm64 kernel and busybox"
apt-get "${options[@]}" update
kernel=$(apt-cache "${options[@]}" depends --important linux-image-arm64 | sed -n 's/.*Depends: \(linux-image-.*\)/\1/p' | head -1)
(cd "$folder/debs" && rm -f ./*.deb && apt-get "${options[@]}" download "$kernel" busybox-static)

rm -rf "$folder/root"
for package in "$folder"/debs/*.deb; do
    dpkg-deb --extract "$package" "$folder/root"
done
version=$(basename "$folder"/root/boot/vmlinuz-*)
/sbin/depmod -b "$folder/root" "${version#vmlinuz-}"
touch "$folder/root/.complete"
rm -rf "$folder"/{debs,state,cache}

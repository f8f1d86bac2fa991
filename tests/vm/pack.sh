#!/usr/bin/env bash
# pack.sh ROOT BUILD INITRD: packs what the virtual machine runs into the file INITRD: busybox and kernel modules from the
# unpacked packages in ROOT, the agent and the library from BUILD, and the C and C++ libraries of the cross compiler.
set -euo pipefail

root=$1 build=$2 initrd=$(realpath -m "$3")
here=$(dirname "$(realpath "$0")")
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

chmod 755 "$tree"
mkdir -p "$tree"/{bin,dev,lib,modules,proc,sys}
install -m 755 "$here/init" "$tree/init"
install -m 755 "$root/bin/busybox" "$tree/bin/"
install -m 755 "$build/tests/vm/zucom_vm_agent" "$tree/agent"
install -m 755 "$build/libzucom.so.4" "$tree/lib/"
for library in ld-linux-aarch64.so.1 libc.so.6 libm.so.6 libgcc_s.so.1 libstdc++.so.6; do
    install -m 755 "/usr/aarch64-linux-gnu/lib/$library" "$tree/lib/"
done

version=$(basename "$root"/boot/vmlinuz-*)
/sbin/modprobe -d "$root" -S "${version#vmlinuz-}" --show-depends -a virtio_pci virtio_console xhci_pci ftdi_sio |
    awk '$1 == "insmod" && !seen[$2]++ {print $2}' >"$tree/modules/files"
number=100
while read -r file; do
    cp "$file" "$tree/modules/$((number++))-$(basename "$file")"
done <"$tree/modules/files"

(cd "$tree" && find . | cpio --quiet -o -H newc | gzip -1) >"$initrd"

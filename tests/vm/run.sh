#!/usr/bin/env bash
# Tries the arm64 library on real drivers: Debian's kernel in a virtual machine with a PL011, a 16550A and an FTDI adapter.
# Needs no rights. The kernel is downloaded once and kept in build/vm.
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/../.."

for tool in cmake aarch64-linux-gnu-g++ qemu-system-aarch64 python3 apt-get dpkg-deb cpio; do
    if ! command -v "$tool" >/dev/null; then
        echo "vm: $tool is missing" >&2
        exit 1
    fi
done

tests/vm/fetch.sh build/vm
cmake --preset arm64 -B build/vm/arm64 -DZUCOM_TOOLS=OFF -DZUCOM_EXAMPLES=OFF -DZUCOM_FUZZ=OFF >/dev/null
cmake --build build/vm/arm64 --parallel "$(nproc)" --target zucom_vm_agent

run=$(mktemp -d "${TMPDIR:-/tmp}/zucom-vm.XXXXXX") # sockets need a short path
trap 'rm -rf "$run"' EXIT
tests/vm/pack.sh build/vm/root build/vm/arm64 "$run/initrd"
PYTHONDONTWRITEBYTECODE=1 python3 tests/vm/cases.py "$run" build/vm/root/boot/vmlinuz-* "$run/initrd"

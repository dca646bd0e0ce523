#!/usr/bin/env bash
# Frees a disk before it is removed: unmounts what is on it, and takes the multipath map from over it.
# Usage: unmount.sh DISK (sdc, dm-3)
set -euo pipefail
disk=$1

lsblk -nrpo NAME,MOUNTPOINT "/dev/$disk" | awk '$2 != "" { print $1 }' | while read -r device; do
    umount --all-targets "$device"
done
case $disk in
dm-*) multipath -f "$(cat "/sys/block/$disk/dm/name")" ;;
esac

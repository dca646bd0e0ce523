#!/bin/bash
# Removal before detach flushes what was written, says who uses the device, and goes on.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun mounted 64)
disk=$(disk_name "$(sdk attach-lun "$lun" scan-lun "$lun")")
expect "a file system" mkfs.ext4 -q "/dev/$disk"
mkdir -p /run/lab/mnt
expect "is mounted" mount "/dev/$disk" /run/lab/mnt
run_log_mark
expect "removal" sdk remove-lun "$lun"
expect "it was named with its mount point" grep -q "WARN.*$disk.*/run/lab/mnt" <(run_log)
expect "and removed" [ ! -b "/dev/$disk" ]
umount -l /run/lab/mnt
sdk detach-lun "$lun"

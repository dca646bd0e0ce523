#!/bin/bash
# Removal before detach writes back what was written into a mounted file system, says who uses the device, and goes on.
. "$(dirname "$0")/array.sh"

file=/run/lab/mnt/file
written() { yes "written before the removal" 2>/dev/null | head -c 8M; }

expect "an array with real disks" arraysim_begin
mkdir -p /run/lab/mnt
for kind in ext4 btrfs; do # the second has a number of its own, by which the kernel does not find it from the disk
    lun=$(arraysim_lun "mounted-$kind" 256)
    disk=$(disk_name "$(sdk attach-lun "$lun" scan-lun "$lun")")
    expect "a file system: $kind" "mkfs.$kind" -q "/dev/$disk"
    expect "is mounted" mount "/dev/$disk" /run/lab/mnt
    written > $file
    run_log_mark
    expect "removal" sdk remove-lun "$lun"
    expect "it was named with its mount point" grep -q "WARN.*$disk.*/run/lab/mnt" <(run_log)
    expect "and removed" [ ! -b "/dev/$disk" ]
    umount -l /run/lab/mnt

    disk=$(disk_name "$(sdk scan-lun "$lun")")
    expect "the disk comes back" [ -b "/dev/$disk" ]
    expect "and is mounted again" mount "/dev/$disk" /run/lab/mnt
    expect "with all that was written before" cmp $file <(written)
    umount /run/lab/mnt
    sdk remove-lun "$lun" detach-lun "$lun"
done

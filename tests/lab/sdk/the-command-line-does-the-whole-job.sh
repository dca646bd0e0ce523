#!/bin/bash
# tesselctl on a real kernel: doctor, attach --scan, explain, detach --remove-devices.
. "$(dirname "$0")/array.sh"

tesselctl() {
    LD_LIBRARY_PATH=$sdk_lib "$BUILD/bin/tesselctl" --array "127.0.0.1:$ARRAY_PORT" --user admin "$@"
}

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun shell)
doctor=$(tesselctl doctor)
same "the host is fit to scan" "$?" 0
expect "and reaches the array" grep -qi "array" <<< "$doctor"
tesselctl explain lun "$lun" --initiator "$lab_initiator" > /run/lab/explained
same "the host does not see the LUN, says explain" "$?" 1
before=$(host_disks)
expect "attach --scan" tesselctl attach lun "$lun" --scan
disk=$(disk_of "$(arraysim_wwn lun "$lun")")
expect "the LUN is a disk: $disk" [ -b "/dev/$disk" ]
expect "the host sees it, says explain" tesselctl explain lun "$lun" --initiator "$lab_initiator"
mkfs.ext4 -q "/dev/$disk" && mkdir -p /run/lab/shell && mount "/dev/$disk" /run/lab/shell
expect "a mounted disk is not taken away" fails tesselctl detach lun "$lun" --remove-devices
expect "it is still there" [ -b "/dev/$disk" ]
umount /run/lab/shell
expect "detach --remove-devices" tesselctl detach lun "$lun" --remove-devices
same "the host's disks are as they were" "$(host_disks)" "$before"

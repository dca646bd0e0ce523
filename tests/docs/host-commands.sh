#!/bin/bash
# The commands of the manual about the host, and its main examples, on a host with an array: log in, run the main job,
# at once and in single steps, look at the lock, free a disk. BUILD is the build directory, EXAMPLES the folder of the examples.
. "$(dirname "${BASH_SOURCE[0]}")/../lab/sdk/array.sh"

expect "an array with real disks" arraysim_begin
session_logout
expect "the host is logged out" fails iscsiadm -m session
expect "no lock before the first scan" grep -q "nothing has scanned" <("$EXAMPLES/host/rescan_lock.sh")
expect "login: $("$EXAMPLES/host/login.sh" 127.0.0.1:3260 2>&1 | tail -n 1)" iscsiadm -m session

TESSEL_PASSWORD=$TESSEL_ARRAYSIM_PASSWORD
export TESSEL_PASSWORD
before=$(host_disks)
expect "the main job" "$BUILD/bin/examples/main_job" 127.0.0.1 "$ARRAY_PORT" admin 0 "$lab_initiator"
same "the host's disks are as they were" "$(host_disks)" "$before"
expect "the lock is free" grep -Eq '^0 +1 +0 +0 ' <("$EXAMPLES/host/rescan_lock.sh")

lun=$(arraysim_lun volume 64)
expect "the single steps" "$BUILD/bin/examples/single_steps" 127.0.0.1 "$ARRAY_PORT" admin "$lun" "$lab_initiator"
same "the host's disks are as they were again" "$(host_disks)" "$before"
disk=$(basename "$(sdk attach-lun "$lun" scan-lun "$lun")")
expect "a file system on $disk" mkfs.ext4 -q "/dev/$disk"
mkdir -p /run/lab/one /run/lab/two
mount "/dev/$disk" /run/lab/one && mount "/dev/$disk" /run/lab/two
"$EXAMPLES/host/unmount.sh" "$disk"
expect "it is mounted nowhere any more" fails grep "^/dev/$disk " /proc/mounts
expect "a disk that nobody uses is no fault" "$EXAMPLES/host/unmount.sh" "$disk"

expect "multipathd" multipath_start
node=$(multipath_node "$(arraysim_wwn lun "$lun")")
mount "/dev/$node" /run/lab/one
expect "the map is freed" "$EXAMPLES/host/unmount.sh" "$node"
expect "it is gone" [ ! -e "/sys/block/$node" ]
multipath_stop
sdk remove-lun "$lun" detach-lun "$lun"

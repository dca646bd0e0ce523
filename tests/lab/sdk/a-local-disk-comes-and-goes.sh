#!/bin/bash
# LocalDisk on a real kernel: attached within seconds, proved, grown, in use, released, with nothing left.
. "$(dirname "$0")/array.sh"

# timed AIM-MS COMMAND...: says how long the command took. The aim is that of a guest alone on its machine; here another
# one may run beside it.
timed() {
    local aim=$1 start
    shift
    start=$(date +%s%N)
    "$@" || return 1
    echo "note: $((($(date +%s%N) - start) / 1000000)) ms, the aim is $aim: $*" >&2
}
# One call that fails, and what it says.
refused() { ! sdk "$@" 2>&1; }

expect "an array with real disks" arraysim_begin
before=$(host_disks)
lun=$(arraysim_lun local 16)
wwn=$(arraysim_wwn lun "$lun")
expect "the first, which makes the host's objects" sdk disk-attach-lun "$lun" disk-release-lun "$lun"
same "leaves no disk" "$(host_disks)" "$before"

timed 5000 sdk disk-attach-lun "$lun" >/run/lab/attached || exit 1
read -r path size paths </run/lab/attached
echo "ok: attached as $path, $size bytes, $paths"
expect "it is a disk" [ -b "$path" ]
same "of the LUN" "$(page83 "$path" | cut -c 17-48)" "$wwn"
same "with its size" "$size" "$((16 << 20))"
expect "and takes what is written" fill "$(disk_name "$path")" "$lun"
same "attaching again finds the same" "$(sdk disk-attach-lun "$lun")" "$(cat /run/lab/attached)"
same "another process finds it" "$(sdk disk-find-lun "$lun")" "$(cat /run/lab/attached)"

mkfs.ext4 -q "$path" && mkdir -p /run/lab/mounted && mount "$path" /run/lab/mounted
said=$(refused disk-release-lun "$lun") || exit 1
expect "a mounted disk is not released: $said" grep -q "mounted on /run/lab/mounted.*nothing was changed" <<<"$said"
expect "it is there still" [ -b "$path" ]
umount /run/lab/mounted
exec 5<"$path"
said=$(refused disk-release-lun "$lun") || exit 1
expect "nor one that somebody reads: $said" grep -q "is open in process $$" <<<"$said"
exec 5<&-
mount -t tmpfs tmpfs /run/lab/mounted
read -r major minor < <(tr : " " <"/sys/class/block/$(disk_name "$path")/dev")
mknod /run/lab/mounted/volume b "$major" "$minor"
exec 5</run/lab/mounted/volume
umount -l /run/lab/mounted # as the node of a container: no path of this host leads to it
said=$(refused disk-release-lun "$lun") || exit 1
expect "nor one that a container reads: $said" grep -q "is open in process $$" <<<"$said"
exec 5<&-
expect "released" timed 2000 sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
expect "released twice" sdk disk-release-lun "$lun"
scan_all
same "a scan brings nothing back" "$(host_disks)" "$before"
said=$(refused disk-find-lun "$lun") || exit 1
expect "and it is not found: $said" grep -q "no disk of this host answers as it" <<<"$said"

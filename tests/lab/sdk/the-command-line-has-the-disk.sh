#!/bin/bash
# tesselctl disk on a real kernel: attach, list, verify, refusal of a mounted disk, release.
. "$(dirname "$0")/array.sh"

tesselctl() {
    LD_LIBRARY_PATH=$sdk_lib "$BUILD/bin/tesselctl" --array "127.0.0.1:$ARRAY_PORT" --user admin "$@"
}
# listed LUN MEMBER: a member of what the list has of a LUN.
listed() {
    tesselctl disk list --output json | python3 -c 'import json, sys
for disk in json.load(sys.stdin):
    if disk["id"] == sys.argv[1]:
        print(disk[sys.argv[2]])' "$@"
}

expect "an array with real disks" arraysim_begin
before=$(host_disks)
lun=$(arraysim_lun shell)
wwn=$(arraysim_wwn lun "$lun")
path=$(tesselctl disk attach lun "$lun" 2>/run/lab/said) || { cat /run/lab/said; exit 1; }
same "nothing but the path is printed" "$(cat /run/lab/said)" ""
expect "it is a disk: $path" [ -b "$path" ]
same "of the LUN" "$(page83 "$path" | cut -c 17-48)" "$wwn"
same "attaching again gives it again" "$(tesselctl disk attach lun "$lun")" "$path"
tesselctl disk list
same "the list has it" "$(listed "$lun" path) $(listed "$lun" wwn) $(listed "$lun" shown)" "$path $wwn True"
expect "attach as JSON tells the path's state" \
    grep -q '"state" : "running"' <(tesselctl disk attach lun "$lun" --output json)
same "verify finds it" "$(tesselctl disk verify lun "$lun")" "$path is LUN $lun"
same "and knows it" "$(tesselctl disk verify lun "$lun" "$path")" "$path is LUN $lun"
other=$(arraysim_lun other)
said=$(tesselctl disk verify lun "$other" "$path" 2>&1)
same "it is no other LUN: $said" "$?" 1

mkfs.ext4 -q "$path" && mkdir -p /run/lab/shell && mount "$path" /run/lab/shell
said=$(tesselctl disk release lun "$lun" 2>&1)
same "a mounted disk is not released" "$?" 1
same "in one line" "$(wc -l <<<"$said")" 1
expect "that says what to do: $said" grep -q "mounted on /run/lab/shell.*--force" <<<"$said"
same "the list tells the mount" "$(listed "$lun" uses)" "['$(disk_name "$path") is mounted on /run/lab/shell']"
umount /run/lab/shell
expect "disk release" tesselctl disk release lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
same "the list has it no more" "$(listed "$lun" path)" ""
expect "disk release again" tesselctl disk release lun "$lun"

export LD_LIBRARY_PATH=$sdk_lib TESSEL_ARRAY=127.0.0.1:$ARRAY_PORT TESSEL_USER=admin PATH=$BUILD/bin:$PATH
expect "the manual's commands" "$(dirname "$0")/../../../examples/host/disk.sh" "$lun"
same "leave the host's disks as they were" "$(host_disks)" "$before"

path=$(tesselctl disk attach lun "$lun") && sdk detach-lun "$lun"
same "hidden without a release it is listed as not shown" "$(listed "$lun" shown)" False
tesselctl disk list
expect "and released" tesselctl disk release lun "$lun"
same "nothing is left" "$(host_disks)" "$before"

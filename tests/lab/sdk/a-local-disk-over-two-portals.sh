#!/bin/bash
# LocalDisk with multipath: the map is handed out and never a path of it, whatever is down; it goes with its paths.
# Runs last, since it leaves no path to the array.
. "$(dirname "$0")/array.sh"

attach() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path size paths </run/lab/attached; }
content() { [ "$(dd if="$1" bs=1M count=1 iflag=direct status=none | md5sum)" = "$(pattern "$2" | md5sum)" ]; }
maps() { grep -ls mpath- /sys/block/dm-*/dm/uuid | wc -l; }
grow() { arraysim_control PUT "/state/lun/$1" "{\"CAPACITY\":$(($2 * 2048))}" >/dev/null; }
# The session over the second portal, and its state.
second() { grep -lx 127.0.0.2 /sys/class/iscsi_connection/*/persistent_address | sed 's/.*connection\([0-9]*\):.*/\1/'; }
is() { [ "$(cat "/sys/class/iscsi_session/session$1/state")" = "$2" ]; }

expect "an array with real disks" arraysim_begin
session_logout
expect "a second portal" portal_add 127.0.0.2:3260
expect "the host logs in to both" session_login
before=$(host_disks)
lun=$(arraysim_lun map 16)
wwn=$(arraysim_wwn lun "$lun")
expect "without multipathd" attach "$lun"
same "a path is handed out" "$(page83 "$path" | cut -c 17-48)" "$wwn"
same "both are there" "$(disk_of "$wwn" | wc -l)" 2
expect "and go" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"

expect "multipathd" multipath_start
expect "attached" attach "$lun"
same "as a map" "$(map_of "$path")" "3$wwn"
same "of both paths: $paths" "$(ls "/sys/block/$(multipath_node "$wwn")/slaves" | wc -l)" 2
pattern "$lun" | dd of="$path" bs=1M iflag=fullblock oflag=direct status=none
mkfs.ext4 -q "$path" && mkdir -p /run/lab/mapped && mount "$path" /run/lab/mapped
head -c 8M /dev/urandom >/run/lab/random && cp /run/lab/random /run/lab/mapped
said=$(! sdk disk-release-lun "$lun" 2>&1) || exit 1
expect "not released while mounted: $said" grep -q "is mounted on /run/lab/mapped" <<<"$said"
same "the map is whole" "$(ls "/sys/block/$(multipath_node "$wwn")/slaves" | wc -l)" 2
umount /run/lab/mapped
expect "released" sdk disk-release-lun "$lun"
same "map and paths are gone" "$(maps) $(disk_of "$wwn")" "0 "
same "the host's disks are as they were" "$(host_disks)" "$before"

expect "attached again" attach "$lun"
mount -o ro "$path" /run/lab/mapped
expect "what was written is there" cmp /run/lab/random /run/lab/mapped/random
umount /run/lab/mapped
sdk hide-lun "$lun"
grow "$lun" 48
sdk show-lun "$lun"
expect "grown" attach "$lun"
same "the map has the new size" "$size $(blockdev --getsize64 "$path")" "50331648 50331648"
expect "released" sdk disk-release-lun "$lun"

attach "$lun"
away=$(second)
rmdir "$(target_dir)/np/127.0.0.2:3260"
ss -K dst 127.0.0.2 >/dev/null
expect "the second portal is down" wait_for 60 is "$away" FAILED
expect "attached over the first: $(cat /run/lab/attached)" attach "$lun"
same "as the map, whose other path is told as what it is" "$(map_of "$path") $(grep -o 'blocked\|transport-offline' <<<"$paths" | wc -l)" "3$wwn 1"
pattern "$lun" | dd of="$path" bs=1M iflag=fullblock oflag=direct status=none
expect "it is written" content "$path" "$lun"
expect "released" sdk disk-release-lun "$lun"
same "map and paths are gone" "$(maps)" 0
same "the host's disks are as they were" "$(host_disks)" "$before"

expect "attached with a portal down" attach "$lun"
same "as a map" "$(map_of "$path")" "3$wwn"
multipathd disablequeueing maps >/dev/null
expect "what is the map's queues" dmsetup message "3$wwn" 0 queue_if_no_path
echo 0 >"$(target_dir)/enable"
works() { cat "/sys/block/$(multipath_node "$wwn")"/slaves/*/device/state 2>/dev/null | grep -qx running; }
expect "no path is left" wait_for 120 fails works
expect "a map that queues without paths is released" sdk disk-release-lun "$lun"
same "it is gone" "$(maps)" 0
expect "multipathd ends" multipath_stop

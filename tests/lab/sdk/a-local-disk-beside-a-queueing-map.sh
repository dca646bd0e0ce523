#!/bin/bash
# LocalDisk beside the map of another array's LUN that has lost its paths and keeps for ever what it is asked: nothing
# waits for it, and it stays as it is.
. "$(dirname "$0")/array.sh"

attach() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path _ </run/lab/attached; }
content() { [ "$(dd if="$1" bs=1M count=1 iflag=direct status=none | md5sum)" = "$(pattern "$2" | md5sum)" ]; }
since() { echo "$((($(date +%s%N) - $1) / 1000000))"; }
state_is() { [ "$(cat "/sys/block/$1/device/state" 2>/dev/null)" = "$2" ]; }
gone() { [ ! -e "/sys/block/$1" ]; }

expect "an array with real disks" arraysim_begin
expect "multipathd" multipath_start
before=$(host_disks)
lun=$(arraysim_lun beside 16)
expect "a LUN is attached" attach "$lun"
pattern "$lun" | dd of="$path" bs=1M iflag=fullblock oflag=direct status=none
expect "released" sdk disk-release-lun "$lun"
start=$(date +%s%N)
expect "attached" attach "$lun"
well=$(since "$start")
expect "released" sdk disk-release-lun "$lun"

serial=$(serial_for 78 ddd)
target_create iqn.2020-01.test.lab:queueing && portal_add 127.0.0.1:3271 && acl_create "$lab_initiator"
acl_map "$lab_initiator" 1 "$(lun_create queueing "$serial" 16M >/dev/null; echo queueing)"
expect "a session with another array" session_login
expect "whose LUN has a map" wait_for 60 multipath_node "$(wwn_of "$serial")"
node=$(multipath_node "$(wwn_of "$serial")")
far=$(ls "/sys/block/$node/slaves")
echo 0 >"$(target_dir)/enable"
expect "its path is away" wait_for 120 state_is "$far" transport-offline
expect "it queues" dmsetup message "3$(wwn_of "$serial")" 0 queue_if_no_path
start=$(date +%s%N)
expect "the LUN is attached" attach "$lun"
took=$(since "$start")
expect "beside it in $took ms, alone $well ms" [ "$took" -le $((well * 12 / 10 + 5000)) ]
expect "with its data" content "$path" "$lun"
expect "released" sdk disk-release-lun "$lun"
expect "the other map is there" [ -d "/sys/block/$node" ]
expect "with its path" [ -e "/sys/block/$node/slaves/$far" ]

dmsetup message "3$(wwn_of "$serial")" 0 fail_if_no_path
expect "the other array goes" session_logout
expect "with its disk" wait_for 60 gone "$far"
wait_for 60 fails multipath_node "$(wwn_of "$serial")"
expect "multipathd ends" multipath_stop
target_use "$lab_target"
same "the host's disks are as they were" "$(host_disks)" "$before"

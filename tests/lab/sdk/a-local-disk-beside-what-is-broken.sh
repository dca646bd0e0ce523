#!/bin/bash
# LocalDisk where LUN numbers are reused and exchanged, and beside dead disks and another array's: always the right
# disk, soon, and nothing of others goes.
. "$(dirname "$0")/array.sh"

hide() { sdk hide-lun "$1"; } # the kernel keeps the dead disk
grow() { arraysim_control PUT "/state/lun/$1" "{\"CAPACITY\":$(($2 * 2048))}" >/dev/null; }
content() { [ "$(dd if="$1" bs=1M count=1 iflag=direct status=none | md5sum)" = "$(pattern "$2" | md5sum)" ]; }
attach() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path size paths </run/lab/attached; }
since() { echo "$((($(date +%s%N) - $1) / 1000000))"; }

expect "an array with real disks" arraysim_begin
before=$(host_disks)

one=$(arraysim_lun one 16)
other=$(arraysim_lun other 32)
attach "$one" && expect "LUN $one is marked" fill "$(disk_name "$path")" "$one"
number=$(address "$(disk_name "$path")")
hide "$one"
expect "LUN $other is attached" attach "$other"
same "at the number that was the first one's" "$(address "$(disk_name "$path")")" "$number"
same "with its own size" "$size" "$((32 << 20))"
same "and WWN" "$(page83 "$path" | cut -c 17-48)" "$(arraysim_wwn lun "$other")"
expect "and not the data of the first" fails content "$path" "$one"
expect "LUN $other is marked" fill "$(disk_name "$path")" "$other"
expect "the first one too" attach "$one"
expect "with its data" content "$path" "$one"
same "one disk each" "$(disk_of "$(arraysim_wwn lun "$one")" | wc -l) $(disk_of "$(arraysim_wwn lun "$other")" | wc -l)" "1 1"

hide "$one"
hide "$other"
for lun in "$one" "$other"; do
    expect "LUN $lun after the numbers were exchanged" attach "$lun"
    expect "has its data" content "$path" "$lun"
done
hide "$one"
expect "a LUN that is hidden already is released" sdk disk-release-lun "$one"
expect "its dead disk too" [ -z "$(disk_of "$(arraysim_wwn lun "$one")")" ]
expect "the other" sdk disk-release-lun "$other"
same "no disk is left" "$(host_disks)" "$before"

lun=$(arraysim_lun grows 16)
expect "a LUN is attached" attach "$lun"
hide "$lun"
grow "$lun" 48
sdk show-lun "$lun"
expect "attaching takes the size over" attach "$lun"
same "to the array's" "$size $(blockdev --getsize64 "$path")" "50331648 50331648"
sdk disk-release-lun "$lun"

target_create iqn.2020-01.test.lab:another && portal_add 127.0.0.1:3270 && acl_create "$lab_initiator"
for number in $(seq 8); do
    acl_map "$lab_initiator" "$number" "$(lun_create "faraway$number" "$(serial_for $((76 + number)) ddd)" 16M >/dev/null; echo "faraway$number")"
done
expect "a session with another array, of eight disks" session_login
away=$(disk_of "$(wwn_of "$(serial_for 77 ddd)")")
start=$(date +%s%N)
expect "a LUN is attached" attach "$one"
well=$(since "$start")
expect "and released" sdk disk-release-lun "$one"
echo 0 > "$(target_dir)/enable"
for state in blocked transport-offline; do
    is() { [ "$(cat "/sys/block/$away/device/state")" = "$1" ]; }
    expect "the other array's disks are $state" wait_for 120 is $state
    start=$(date +%s%N)
    expect "the LUN is attached" attach "$one"
    took=$(since "$start")
    expect "beside it in $took ms, alone $well ms" [ "$took" -le $((well * 12 / 10 + 5000)) ]
    expect "with its data" content "$path" "$one"
    expect "released" sdk disk-release-lun "$one"
    expect "the disk that is away is there still" [ -d "/sys/block/$away" ]
    expect "and the seven others" [ "$(cat /sys/block/sd*/device/state | grep -c "$state")" -ge 8 ]
done

#!/bin/bash
# tesselctl tidy on a real kernel: it tells and removes the disks that a detach left dead and that stand under the names
# of others; what is healthy, in use, away, or of another array stays.
. "$(dirname "$0")/array.sh"

tesselctl() {
    LD_LIBRARY_PATH=$sdk_lib "$BUILD/bin/tesselctl" --array "127.0.0.1:$ARRAY_PORT" --user admin "$@"
}
# told [OPTION]: what tidy tells of disks, "sdc removed", a line each, in the order of the names.
told() {
    tesselctl tidy --output json "$@" >/run/lab/told 2>&1 || { cat /run/lab/told; return 1; }
    python3 -c 'import json, sys
for disk in json.load(sys.stdin)["disks"]:
    print(disk["device"][5:], disk["verdict"])' </run/lab/told
}
# attached LUN: attaches it; prints its disk's name.
attached() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path _ </run/lab/attached && disk_name "$path"; }
hide() { sdk hide-lun "$1"; }
scan() { for host in /sys/class/scsi_host/host*/scan; do echo "- - -" >"$host"; done; }

expect "an array with real disks" arraysim_begin
healthy=$(arraysim_lun healthy)
well=$(attached "$healthy")
before=$(host_disks)
same "nothing is amiss" "$(told)" ""

lun=$(arraysim_lun detached)
dead=$(attached "$lun")
echo 1 >"/sys/block/$dead/device/delete" # a detach by single steps, and a scan of somebody else in the middle of it
scan
dead=$(disk_of "$(arraysim_wwn lun "$lun")")
hide "$lun"
same "a disk that was brought back, and died, is told" "$(told)" "$dead removable"
same "and is there still" "$(told)" "$dead removable"
tesselctl tidy
# shellcheck disable=SC2217 # it only holds the disk open
sleep 30 <"/dev/$dead" &
opener=$!
same "one in use stays" "$(told --remove)" "$dead kept"
expect "and the use is told" grep -q "is open in process $opener (sleep)" /run/lab/told
kill "$opener"
wait "$opener" 2>/dev/null
said=$(tesselctl tidy --remove)
expect "it is removed: $said" grep -q "^removes disk /dev/$dead (.*): nothing is mapped at its number any more" <<<"$said"
same "the others are as they were" "$(host_disks)" "$before"
same "nothing is left to tell" "$(told --remove)" ""

one=$(arraysim_lun one)
other=$(arraysim_lun other)
renamed=$(attached "$one")
hide "$one"
sdk show-lun "$other" # gets the number that is free
same "a disk whose number is another LUN's is told" "$(told)" "$renamed removable"
same "it is removed" "$(told --remove)" "$renamed removed"
renamed=$(attached "$other")
same "and found anew under its own names" "$(named "wwn-0x$(arraysim_wwn lun "$other")")" "$renamed"
same "nothing is amiss" "$(told --remove)" ""
killall -STOP systemd-udevd
hide "$other"
sdk show-lun "$one"
echo 1 >"/sys/block/$renamed/device/rescan" # the kernel learns it, and udev cannot
same "udev's old names alone are no reason while it does not answer" "$(told --remove)" "$renamed kept"
killall -CONT systemd-udevd
same "then it is removed" "$(told --remove)" "$renamed removed"
renamed=$(attached "$one")
same "and found anew under its own names" "$(named "wwn-0x$(arraysim_wwn lun "$one")")" "$renamed"

gone=$(arraysim_lun gone)
dead=$(attached "$gone")
hide "$gone"
arraysim_control DELETE "/objects/lun/$gone" >/dev/null
same "the disk of a LUN that was deleted is known by its neighbours" "$(told --remove)" "$dead removed"

target_create iqn.2020-01.test.lab:another && portal_add 127.0.0.1:3270 && acl_create "$lab_initiator"
acl_map "$lab_initiator" 1 "$(lun_create faraway "$(serial_for 77 ddd)" 16M >/dev/null; echo faraway)"
expect "a session with another array" session_login
away=$(disk_of "$(wwn_of "$(serial_for 77 ddd)")")
acl_unmap "$lab_initiator" 1
same "its dead disk stays" "$(told --remove)" "$away kept"
expect "for it is not this array's" grep -q "nothing shows that it was a disk of this array" /run/lab/told
echo 0 >"$(target_dir)/enable"
is_away() { [ "$(cat "/sys/block/$away/device/state")" = blocked ]; }
expect "the other array is away" wait_for 30 is_away
same "what is away stays, its LUN 0 too" "$(told --remove | grep -c kept)" 2
expect "it is there" [ -d "/sys/block/$away" ]
expect "the healthy one has its data" [ "$(page83 "/dev/$well" | cut -c 17-48)" = "$(arraysim_wwn lun "$healthy")" ]

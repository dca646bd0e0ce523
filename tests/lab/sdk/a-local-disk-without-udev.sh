#!/bin/bash
# LocalDisk while udev is stopped: the disk is found, proved and released, without multipath and with it.
. "$(dirname "$0")/array.sh"

attach() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path _ </run/lab/attached; }
content() { [ "$(dd if="$1" bs=1M count=1 iflag=direct status=none | md5sum)" = "$(pattern "$2" | md5sum)" ]; }
since() { echo "$((($(date +%s%N) - $1) / 1000000))"; }
udev_ended() { ! pgrep -x systemd-udevd; }
udev_stop() {
    pkill -x systemd-udevd
    for _ in $(seq 100); do udev_ended >/dev/null && break; sleep 0.1; done
    udev_ended >/dev/null && rm -f /run/udev/control
}

expect "an array with real disks" arraysim_begin
before=$(host_disks)
lun=$(arraysim_lun udev 16)
expect "a LUN is attached" attach "$lun"
expect "and marked" fill "$(disk_name "$path")" "$lun"
expect "and released" sdk disk-release-lun "$lun"

expect "udev is stopped" udev_stop
start=$(date +%s%N)
expect "the LUN is attached" attach "$lun"
echo "note: in $(since "$start") ms"
expect "with its data" content "$path" "$lun"
expect "released" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"

expect "udev runs" udev_start
expect "multipathd" multipath_start
expect "udev is stopped" udev_stop
start=$(date +%s%N)
sdk disk-attach-lun "$lun" >/run/lab/attached 2>/run/lab/said
status=$?
echo "note: with multipathd, in $(since "$start") ms: $status $(cat /run/lab/attached /run/lab/said)"
read -r path _ </run/lab/attached
[ "$status" != 0 ] || expect "what is handed out has its data" content "$path" "$lun"
expect "released" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
expect "udev runs again" udev_start
expect "multipathd ends" multipath_stop

#!/bin/bash
# Two hundred other disks (DISKS) are present when one is attached, searched for and removed; none of them goes, and
# LocalDisk takes no longer for them.
. "$(dirname "$0")/array.sh"

# timed OPERATION LUN: prints the milliseconds that it takes.
timed() {
    local start
    start=$(date +%s%N)
    sdk "$@" >/run/lab/attached || return 1
    echo "$((($(date +%s%N) - start) / 1000000))"
}

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun needle)
other=$(arraysim_lun alone)
timed disk-attach-lun "$other" >/dev/null && timed disk-release-lun "$other" >/dev/null
alone=$(timed disk-attach-lun "$other") && alone+=" and $(timed disk-release-lun "$other")" || exit 1
expect "${DISKS:-200} disks" scsi_debug_load "${DISKS:-200}"
among=$(timed disk-attach-lun "$other") && read -r path _ </run/lab/attached || exit 1
same "the disk of LUN $other is found" "$(page83 "$path" | cut -c 17-48)" "$(arraysim_wwn lun "$other")"
among+=" and $(timed disk-release-lun "$other")" || exit 1
echo "note: attached and released in $among ms, alone in $alone ms"
expect "the LUN is attached" sdk attach-lun "$lun"
expect "the LUN's disk comes" scan_all
udevadm settle --timeout=120
# Whole-bus rescans take seconds for each disk under emulation: the search alone, as the Korvex branch has it.
korvex_install
found=$(sdk scan-lun "$lun")
expect "the disk is found: $found" [ -b "$found" ]
expect "its name is longer than sdz" [ "$(disk_name "$found" | wc -c)" -gt 4 ]
same "it is the LUN's" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$(arraysim_wwn lun "$lun")"
korvex_remove
expect "it is removed" sdk remove-lun "$lun"
expect "it is gone" [ ! -b "/dev/$(disk_name "$found")" ]
expect "the others are there" [ "$(scsi_debug_count)" -ge "${DISKS:-200}" ]
sdk detach-lun "$lun"

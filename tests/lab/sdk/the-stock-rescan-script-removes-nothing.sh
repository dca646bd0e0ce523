#!/bin/bash
# With the rescan script of sg3-utils 1.46 as Debian ships it, which takes healthy disks for gone: a scan through the
# SDK finds the new disk, removes none, and says what to install.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
other=$(arraysim_lun other)
disk=$(disk_name "$(sdk attach-lun "$other" scan-lun "$other")")
expect "another disk is in use" fill "$disk" other
rm /run/lab/bin/rescan-scsi-bus.sh
hash -r
lun=$(arraysim_lun stock)
before=$(host_disks)
run_log_mark
found=$(sdk attach-lun "$lun" scan-lun "$lun")
expect "the new disk is found: $found" [ -b "$found" ]
same "all other disks stay" "$(host_disks | sed "s/$(disk_name "$found") //")" "$before"
expect "the other disk works" holds "$disk" other
expect "the log says so" grep -q 'ERROR.*sg3-utils' <(run_log)
rescan_script_mend
sdk remove-lun "$lun" detach-lun "$lun" remove-lun "$other" detach-lun "$other"

#!/bin/bash
# Disks by number from scsi_debug: their page 0x83 starts with a T10 designator, not with NAA.
. "$(dirname "$0")/../support/guest.sh"

expect "twelve disks are loaded" scsi_debug_load 12
same "there are twelve" "$(scsi_debug_count)" 12
for model in /sys/block/sd*/device/model; do
    case $(cat "$model") in scsi_debug*) disk=${model%/device/model}; disk=${disk##*/} ;; esac
done
page=$(page83 "/dev/$disk")
same "the first designator is of type T10 in ASCII" "${page:8:4}" 0201
expect "they are unloaded" scsi_debug_unload
same "none is left" "$(scsi_debug_count)" 0

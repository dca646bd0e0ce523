#!/bin/bash
# A LUN seen over two portals is two sd disks under one dm node that carries the WWN names.
. "$(dirname "$0")/../support/guest.sh"

expect "a target" target_create "$lab_target:paths"
expect "a first portal" portal_add 127.0.0.1:3261
expect "a second portal" portal_add 127.0.0.2:3261
expect "an ACL" acl_create "$lab_initiator"
wwn=$(lun_create paths "$(serial_for 41 3a)" 16M)
acl_map "$lab_initiator" 2 paths
expect "the initiator logs in" session_login
same "there are two disks" "$(disk_of "$wwn" | wc -l)" 2

expect "multipath starts" multipath_start
node=$(multipath_node "$wwn")
expect "there is a dm node" [ -b "/dev/$node" ]
same "it has both disks" "$(ls "/sys/block/$node/slaves" | tr '\n' ' ')" "$(disk_of "$wwn" | tr '\n' ' ')"
expect "the WWN names lead to it" wait_for 120 [ "/dev/disk/by-id/wwn-0x$wwn" -ef "/dev/$node" ]
same "so does scsi-3$wwn" "$(named "scsi-3$wwn")" "$node"
same "the node answers with the WWN" "$(page83 "/dev/$node" | cut -c 17-48)" "$wwn"
listing=$(multipath -ll | grep -A3 "$node ")
first=$(sed -n 4p <<< "$listing" | grep -o 'sd[a-z]*')
expect "the fourth line of its listing names a path" [ -e "/sys/block/$node/slaves/$first" -a -n "$first" ]
same "the canary is no multipath disk" "$(multipath -ll | grep -c QEMU)" 0

expect "multipath stops" multipath_stop
same "no dm node is left" "$(echo /sys/block/dm-*)" "/sys/block/dm-*"
expect "the initiator logs out" session_logout

#!/bin/bash
# The stand-in for the Korvex rescan command is found in PATH only while it is installed, counts its
# runs, finds new LUNs and ends with the status asked for.
. "$(dirname "$0")/../support/guest.sh"

expect "no kxRescan before" fails command -v kxRescan
expect "the array starts" array_start
expect "the initiator logs in" session_login
wwn=$(lun_create new "$(serial_for 71 7a)" 16M)
acl_map "$lab_initiator" 5 new
same "the LUN is not there yet" "$(disk_of "$wwn")" ""
expect "the stand-in is installed" korvex_install 3
kxRescan
same "it ends with its status" $? 3
expect "the LUN is there" [ -n "$(disk_of "$wwn")" ]
same "one run is counted" "$(korvex_calls)" 1
expect "the stand-in is removed" korvex_remove
hash -r
expect "no kxRescan after" fails command -v kxRescan
expect "the initiator logs out" session_logout

#!/bin/bash
# Two initiator names of one host have sessions of their own, each with the LUNs of its ACL.
. "$(dirname "$0")/../support/guest.sh"

second=iqn.2020-01.test.lab:second
expect "a target" target_create "$lab_target:two"
expect "a portal" portal_add 127.0.0.4:3260
expect "a first ACL" acl_create "$lab_initiator"
expect "a second ACL" acl_create "$second"
mine=$(lun_create mine "$(serial_for 31 2a)" 16M)
theirs=$(lun_create theirs "$(serial_for 32 2a)" 16M)
expect "LUN 1 of the first" acl_map "$lab_initiator" 1 mine
expect "LUN 1 of the second" acl_map "$second" 1 theirs

expect "the first logs in" session_login
expect "the first sees its LUN" [ -n "$(disk_of "$mine")" ]
same "the first sees no other" "$(disk_of "$theirs")" ""
expect "the second logs in" session_login "$second"
expect "the second sees its LUN" [ -n "$(disk_of "$theirs")" ]
same "both LUNs have number 1" "$(address "$(disk_of "$mine")" | cut -d: -f4),$(address "$(disk_of "$theirs")" | cut -d: -f4)" 1,1
expect "the first logs out" session_logout
same "its disk is gone" "$(disk_of "$mine")" ""
expect "the second's disk stays" [ -n "$(disk_of "$theirs")" ]
expect "the second logs out" session_logout "$second"

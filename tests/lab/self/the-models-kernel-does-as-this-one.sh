#!/bin/bash
# Shows, hides, exchanges, grows and renews LUNs, cuts the network, and writes down what the kernel and udev make of it,
# for tessel_replay, which holds the simulated kernel against it.
# With TRACE=FILE (below $LAB_SHARE) the record is kept.
. "$(dirname "$0")/../support/guest.sh"

trace=${TRACE:+$LAB_SHARE/}${TRACE:-/run/lab/trace}

# A line for each disk of the session: number, name, state, sectors, wwid, the WWN of the kernel's page 0x83, who
# answers now (none: no such unit; -: nobody), and what leads to it in /dev/disk/by-id.
seen() {
    local folder number name state answers links link
    for folder in /sys/class/scsi_device/"$host":0:0:*/device; do
        number=${folder%/device} && number=${number##*:}
        name=$(basename "$folder"/block/*)
        state=$(cat "$folder/state")
        answers=-
        if [ "$state" = running ]; then # a blocked one lets who asks wait
            answers=$(page83 "/dev/$name" 2>/dev/null | cut -c 17-48)
            [ -n "$answers" ] || answers=$(refusal "$name")
        fi
        links=
        for link in /dev/disk/by-id/scsi-3* /dev/disk/by-id/wwn-0x*; do
            [[ ! -L $link || $link = *-part* || $(basename "$(readlink "$link")") != "$name" ]] || links+=,$(basename "$link")
        done
        echo "see $number $name $state $(cat "/sys/block/$name/size") $(cat "$folder/wwid")" \
            "$(od -An -v -tx1 "$folder/vpd_pg83" | tr -d ' \n' | cut -c 17-48) $answers ${links:--}"
    done | sort -k 2n
}

refusal() { [[ $(sg_inq -v --page=0x83 "/dev/$1" 2>&1) = *"Logical unit not supported"* ]] && echo none || echo -; }

# Notes a step, and what is seen when all have come to rest.
step() { # TEXT COMMAND...
    local before='' now
    echo "do $1" >>"$trace"
    shift
    expect "$*" "$@"
    for _ in {1..60}; do
        udevadm settle --timeout=120
        now=$(seen)
        [ "$now" != "$before" ] || break
        before=$now
        sleep 1
    done
    echo "$now" >>"$trace"
}

new() { lun_create "model$1" "$(serial_for "$1" 77)" "$2" >/dev/null; }
wwn() { wwn_of "$(serial_for "$1" 77)"; }
show() { acl_map "$lab_initiator" "$1" "model$2"; }
hide() { acl_unmap "$lab_initiator" "$1"; }
scan() { echo '- - -' >"/sys/class/scsi_host/host$host/scan"; }
put() { echo 1 >"/sys/class/scsi_device/$host:0:0:$1/device/$2"; }
states() { [ "$(cat /sys/class/scsi_device/"$host":0:0:*/device/state | sort -u)" = "$1" ]; }

session_logout 2>/dev/null
expect "a target" target_create "$lab_target:model"
expect "a portal" portal_add 127.0.0.4:3260
expect "an ACL" acl_create "$lab_initiator"
expect "the initiator logs in" session_login
session=$(grep -l "^$lab_target:model$" /sys/class/iscsi_session/session*/targetname)
host=$(realpath "${session%/*}/device/..") && host=${host##*host}
for number in {1..6}; do new "$number" 16M; done
b16=$((16 << 20))

echo "# $(uname -sr), udev $(udevadm --version), $(date -I)" >"$trace"
echo "do show 0 $(wwn_of "$(serial_for 0 e)") $((4 << 20))" >>"$trace"
step "scan" scan
step "show 1 $(wwn 1) $b16" show 1 1
step "scan" scan
step "show 2 $(wwn 2) $b16" show 2 2
step "show 3 $(wwn 3) $b16" show 3 3
step "scan" scan
step "hide 2" hide 2
step "scan" scan
step "show 2 $(wwn 4) $b16" show 2 4
step "scan" scan
step "delete 2" put 2 delete
step "scan" scan
step "swap 3 $(wwn 5) $b16" swap_store "$lab_initiator" 3 model5
step "scan" scan
step "rescan 3" put 3 rescan
step "delete 1" put 1 delete
step "delete 3" put 3 delete
step "hide 1" hide 1
step "scan" scan
step "rescan 2" put 2 rescan
step "show 1 $(wwn 6) $b16" show 1 6
step "scan" scan
tpg=$(target_dir)
echo 0 >"$tpg/enable"
step "down" wait_for 120 states blocked
step "give-up" wait_for 120 states transport-offline
echo 1 >"$tpg/enable"
step "up" wait_for 120 states running
step "hide 2" hide 2
step "delete 2" put 2 delete
step "delete 3" put 3 delete
step "scan" scan

same "the simulated kernel did the same" "$("$BUILD/bin/tessel_replay" "$trace" 2>&1)" ""
session_logout

#!/bin/bash
# Several jobs on one host attach, read and release in their own time, and are killed at random moments: always the right
# disk, none comes back, the lock is free. JOBS (5) of ROUNDS (3) each, KILLS (6).
. "$(dirname "$0")/array.sh"

content() { [ "$(dd if="$1" bs=1M count=1 iflag=direct status=none | md5sum)" = "$(pattern "$2" | md5sum)" ]; }
job() { # LUN ROUNDS
    local round
    for round in $(seq "$2"); do
        sdk disk-attach-lun "$1" >"/run/lab/attached.$1" && read -r path _ <"/run/lab/attached.$1" &&
            content "$path" "$1" && sdk disk-release-lun "$1" || { echo "FAILED: LUN $1, round $round" >&2; return 1; }
    done
}

expect "an array with real disks" arraysim_begin
before=$(host_disks)
luns=()
for i in $(seq "${JOBS:-5}"); do
    lun=$(arraysim_lun "job$i")
    luns+=("$lun")
    sdk disk-attach-lun "$lun" >/run/lab/attached && read -r path _ </run/lab/attached
    expect "LUN $lun is marked" fill "$(disk_name "$path")" "$lun"
done
for lun in "${luns[@]}"; do sdk disk-release-lun "$lun"; done

start=$(date +%s)
jobs=()
for lun in "${luns[@]}"; do
    job "$lun" "${ROUNDS:-3}" &
    jobs+=($!)
done
for job in "${jobs[@]}"; do expect "a job of ${ROUNDS:-3} rounds" wait "$job"; done
echo "note: $((${JOBS:-5} * ${ROUNDS:-3})) attaches and releases in $(($(date +%s) - start)) s"
same "no disk is left" "$(host_disks)" "$before"
scan_all
same "and a scan brings none back" "$(host_disks)" "$before"

RANDOM=${SEED:-1}
lun=${luns[0]}
for kill in $(seq "${KILLS:-6}"); do
    for operation in attach release; do
        sdk "disk-$operation-lun" "$lun" >/dev/null &
        victim=$!
        sleep "$(printf '%d.%02d' $((RANDOM % 2)) $((RANDOM % 100)))"
        { kill -KILL "$victim" && wait "$victim"; } 2>/dev/null
    done
    [ $((kill % 2)) = 0 ] || continue
    sdk disk-attach-lun "$lun" >/run/lab/attached || { echo "FAILED: attach after kill $kill" >&2; exit 1; }
    read -r path _ </run/lab/attached
    content "$path" "$lun" || { echo "FAILED: another disk after kill $kill" >&2; exit 1; }
done
echo "ok: killed $((2 * ${KILLS:-6})) times, the same call again had the right disk"
expect "released" sdk disk-release-lun "$lun"
same "no dead disk stays" "$(host_disks)" "$before"
same "the lock is free" "$(ipcs -s -i "$(ipcs -s | awk '$1 == "0x000004d3" {print $2}')" | awk '$1 == "0" {print $2}')" 1

#!/bin/bash
# Two processes scan at once; the one that holds the rescan lock is killed: the other one gets it and finds its disk.
. "$(dirname "$0")/array.sh"

semaphore() { ipcs -s | awk '$1 == "0x000004d3" { print $2 }'; }
lock_value() { ipcs -s -i "$(semaphore)" | awk '$1 == "0" { print $2 }'; }
someone_waits() { ipcs -s -i "$(semaphore)" | awk '$1 == "0" && $3 == 1 { found = 1 } END { exit !found }'; }
rescanning() { [ "$(korvex_calls)" = 1 ]; }

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun killed)
sdk attach-lun "$lun"
# A rescan that lasts: long enough to be killed in.
korvex_install 0 600
sdk scan-lun "$lun" &
expect "the first scan rescans" wait_for 120 rescanning
same "the lock is held" "$(lock_value)" 0
korvex_install 0 0
sdk scan-lun "$lun" > /run/lab/second &
waiter=$!
expect "the second one waits" wait_for 120 someone_waits
pkill -KILL -o -x sdk_host
pkill -KILL -f 'sleep 600'
expect "the second one ends" wait $waiter
expect "with its disk: $(cat /run/lab/second)" [ -b "$(cat /run/lab/second)" ]
same "the lock is free" "$(lock_value)" 1
korvex_remove
sdk remove-lun "$lun" detach-lun "$lun"

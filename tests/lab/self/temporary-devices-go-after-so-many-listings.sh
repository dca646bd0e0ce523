#!/bin/bash
# lsscsi shows a temporary block device for as many listings as asked for, and real disks always.
. "$(dirname "$0")/../support/guest.sh"

expect "no temporary device before" fails grep -q tmp-block <(lsscsi)
expect "two listings are asked for" tmp_block_show 2
hash -r
for listing in first second; do
    expect "the $listing listing has it" grep -q '/dev/sdzz *$' <(lsscsi)
done
lsscsi > /tmp/third
expect "the third has it no more" fails grep -q tmp-block /tmp/third
expect "the third has the real disk" grep -q CANARY /tmp/third
same "three listings are counted" "$(lsscsi_calls)" 3
expect "the stand-in is removed" tmp_block_remove
hash -r
same "lsscsi is the real one again" "$(command -v lsscsi)" /usr/bin/lsscsi

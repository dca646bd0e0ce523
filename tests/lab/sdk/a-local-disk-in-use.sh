#!/bin/bash
# LocalDisk of a LUN that carries a volume group, and of one that is mounted: it is refused by what uses it; forced, what
# was written before is whole. With two portals and multipath.
. "$(dirname "$0")/array.sh"

attach() { sdk disk-attach-lun "$1" >/run/lab/attached && read -r path _ </run/lab/attached; }
lvm() { command lvm "$@" 2>&1 | grep -v 'leaked on' >&2; return "${PIPESTATUS[0]}"; }
maps() { cat /sys/block/dm-*/dm/uuid 2>/dev/null | grep -c mpath-; }
no_map() { [ "$(maps)" = 0 ]; }
# used TEXT: a release is refused and says it.
used() {
    local said
    if said=$(sdk disk-release-lun "$lun" 2>&1); then echo "FAILED: it was released" >&2; return 1; fi
    grep -q "$1" <<<"$said" && echo "$said"
}

expect "an array with real disks" arraysim_begin
if ! grep -lx 127.0.0.2 /sys/class/iscsi_connection/*/persistent_address >/dev/null 2>&1; then
    session_logout
    expect "a second portal" portal_add 127.0.0.2:3260
    expect "the host logs in to both" session_login
fi
expect "multipathd" multipath_start
before=$(host_disks)
lun=$(arraysim_lun used 64)
expect "a LUN is attached" attach "$lun"
cat >/run/lab/lvm.conf <<CONF
devices { filter = [ "a|^$path\$|", "r|.*|" ] use_devicesfile = 0 }
CONF
export LVM_SYSTEM_DIR=/run/lab LVM_SUPPRESS_FD_WARNINGS=1
expect "a volume group on its map" lvm vgcreate -q used "$path"
expect "with a volume" lvm lvcreate -q -y -W n -L 32M -n data used
expect "a release names the volume" used "is held by dm-[0-9]* (used-data)"
mkfs.ext4 -q /dev/mapper/used-data && mkdir -p /run/lab/used && mount /dev/mapper/used-data /run/lab/used
head -c 8M /dev/urandom >/run/lab/random && cp /run/lab/random /run/lab/used
expect "a release names its mount" used "is mounted on /run/lab/used"
said=$(! sdk disk-release-lun-in-use "$lun" 2>&1) || exit 1
expect "forced, the map alone stays: $said" grep -q "stays until what uses it has ended; its paths are gone" <<<"$said"
same "no path is left" "$(disk_of "$(arraysim_wwn lun "$lun")")" ""
expect "who uses it gets an error and does not wait" fails timeout 60 dd if=/dev/mapper/used-data of=/dev/null bs=4k count=1 iflag=direct status=none
umount -l /run/lab/used
expect "the volume ends" dmsetup remove --retry used-data
expect "and its map with it" wait_for 60 no_map
expect "released again" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"

expect "attached again" attach "$lun"
expect "the volume is there" lvm vgchange -q -ay used
mount /dev/mapper/used-data /run/lab/used
expect "what was written before is whole" cmp /run/lab/random /run/lab/used/random
umount /run/lab/used
expect "the volume group rests" lvm vgchange -q -an used
expect "released" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
expect "multipathd ends" multipath_stop

expect "attached without multipath" attach "$lun"
mkfs.ext4 -q -F "$path" && mount "$path" /run/lab/used && cp /run/lab/random /run/lab/used
expect "a release names the mount" used "is mounted on /run/lab/used"
expect "forced it goes" sdk disk-release-lun-in-use "$lun"
same "no disk is left" "$(disk_of "$(arraysim_wwn lun "$lun")")" ""
umount -l /run/lab/used
expect "attached again" attach "$lun"
mount "$path" /run/lab/used
expect "what was written before is whole" cmp /run/lab/random /run/lab/used/random
umount /run/lab/used
expect "released" sdk disk-release-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"

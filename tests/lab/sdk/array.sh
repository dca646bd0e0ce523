# For the SDK's tests in the guest: an array whose mapping views are real disks, and the SDK beside it.
. "$(dirname "${BASH_SOURCE[0]}")/../support/guest.sh"

# The libraries in a directory of their own, where their logs can be written.
sdk_lib=/run/lab/sdk
if [ ! -d $sdk_lib ]; then
    mkdir $sdk_lib
    cp -a "$BUILD"/lib/*.so* "$BUILD/lib/Tessel_API.ini" $sdk_lib
fi
sdk() { LD_LIBRARY_PATH=$sdk_lib "$BUILD/bin/sdk_host" "$@"; }

# scan_renewed LUN: what a scan finds where it must renew a stale disk first. It gives udev one second to name the new
# one: where that was too short, on a machine under load, it finds none, never another, and the next scan has it.
scan_renewed() {
    local found
    found=$(sdk scan-lun "$1") || return 1
    if [ -z "$found" ]; then
        echo "note: udev was later than the scan" >&2
        udevadm settle --timeout=120
        found=$(sdk scan-lun "$1")
    fi
    echo "$found"
}

# The SDK's run log since it was marked.
run_log_mark() { cat $sdk_lib/logs/Tessel_run_* 2>/dev/null | wc -l > /run/lab/log.seen; }
run_log() { cat $sdk_lib/logs/Tessel_run_* | tail -n +"$(($(cat /run/lab/log.seen) + 1))"; }

# disk_name PATH: "sdc" of /dev/disk/by-id/../../sdc.
disk_name() { basename "$1"; }

# map_of PATH: the name of the map that is handed out, by its name or, where udev is late with that, by its node.
map_of() { dmsetup info --columns --noheadings -o name "$1"; }

# fill DISK SEED, holds DISK SEED: a megabyte that tells which disk it was written to.
pattern() { { yes "this is disk $1" || true; } 2>/dev/null | head -c 1M; }
fill() { pattern "$2" | dd of="/dev/$1" bs=1M iflag=fullblock oflag=direct status=none; }
holds() { dd if="/dev/$1" bs=1M count=1 iflag=direct status=none | cmp -s - <(pattern "$2"); }

# Stand-ins for what no lab machine has: the Korvex multipath product, its temporary block devices,
# and disks by the hundred.

standins=/run/lab/standins

# korvex_install [STATUS [SECONDS]]: a kxRescan in PATH that takes so many seconds, then makes the
# kernel look for new LUNs on every host and ends with this status.
korvex_install() {
    mkdir -p "$standins"
    : > "$standins/kxRescan.calls"
    cat > /run/lab/bin/kxRescan <<-SCRIPT
	#!/bin/sh
	echo "started \$\$" >> $standins/kxRescan.calls
	sleep ${2:-0}
	lab scan_all
	echo "ended \$\$" >> $standins/kxRescan.calls
	exit ${1:-0}
	SCRIPT
    chmod 755 /run/lab/bin/kxRescan
}

korvex_remove() { rm -f /run/lab/bin/kxRescan; }

# korvex_calls: how many rescans the stand-in was started for.
korvex_calls() { grep -c started "$standins/kxRescan.calls"; }

# tmp_block_show COUNT: the next COUNT listings of lsscsi hold a temporary block device of the
# multipath product, those after them do not. lsscsi_calls tells how many listings there were.
tmp_block_show() {
    mkdir -p "$standins"
    echo "$1" > "$standins/tmp-block.left"
    : > "$standins/lsscsi.calls"
    cat > /run/lab/bin/lsscsi <<-SCRIPT
	#!/bin/bash
	exec 9>>$standins/lsscsi.lock && flock 9
	echo "\$\$" >> $standins/lsscsi.calls
	read -r left < $standins/tmp-block.left
	/usr/bin/lsscsi "\$@"
	[ "\$left" -gt 0 ] || exit 0
	echo "[63:0:0:1]   disk    KORVEX   tmp-block        1.0   /dev/sdzz "
	echo \$((left - 1)) > $standins/tmp-block.left
	SCRIPT
    chmod 755 /run/lab/bin/lsscsi
}

tmp_block_remove() { rm -f /run/lab/bin/lsscsi; }

lsscsi_calls() { grep -c . "$standins/lsscsi.calls"; }

# scsi_debug_load COUNT: this many disks, whose page 0x83 starts with a T10 designator, not with NAA.
scsi_debug_load() {
    local targets=$1 luns=1
    while [ "$targets" -gt 64 ]; do
        targets=$(((targets + 1) / 2))
        luns=$((luns * 2))
    done
    modprobe scsi_debug dev_size_mb=4 num_tgts="$targets" max_luns="$luns" add_host=1 || return 1
    wait_for $((120 + 2 * $1)) scsi_debug_found $((targets * luns))
    udevadm settle --timeout=$((120 + 2 * $1))
}

scsi_debug_found() { [ "$(scsi_debug_count)" -ge "$1" ]; }

scsi_debug_count() { cat /sys/block/sd*/device/model 2>/dev/null | grep -c scsi_debug; }

scsi_debug_unload() { modprobe -r scsi_debug && udevadm settle --timeout=120; }

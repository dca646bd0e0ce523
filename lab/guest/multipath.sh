# Device-mapper multipath: a LUN seen over two portals is two sd disks and one dm node.

# multipath_start: the daemon, for every disk of the target, never for the canary or the small LUN 0.
multipath_start() {
    pgrep -x multipathd >/dev/null && return 0
    cat > /etc/multipath.conf <<-CONF
	defaults {
	    user_friendly_names no
	    find_multipaths no
	    polling_interval 5
	}
	overrides {
	    no_path_retry fail
	}
	blacklist {
	    wwid "3$(wwn_of "$(serial_for 0 e)")"
	    device {
	        vendor "QEMU"
	        product ".*"
	    }
	}
	CONF
    modprobe -a dm_multipath dm_service_time || return 1
    multipathd -d -s >/run/lab/log/multipathd 2>&1 &
    wait_for 120 multipath_ready || return 1
    multipath_settle
}

multipath_ready() { multipathd show daemon | grep -Eq 'running|idle'; }

# multipath_settle: waits until every multipath disk has as many paths as there are disks for it.
multipath_settle() { wait_for 120 multipath_complete; }

multipath_complete() {
    local disk
    for disk in /sys/class/iscsi_session/session*/device/target*/*:*/block/*; do
        case $disk in
            *:0/block/* | *\**) ;;
            *) [ -n "$(ls "$disk/holders")" ] || return 1 ;;
        esac
    done
}

# multipath_node WWN: the dm node of a WWN, e.g. dm-0.
multipath_node() {
    local uuid
    for uuid in /sys/block/dm-*/dm/uuid; do
        [ "$(cat "$uuid" 2>/dev/null)" != "mpath-3$1" ] || { uuid=${uuid%/dm/uuid}; echo "${uuid##*/}"; return 0; }
    done
    lab_error "no multipath disk for $1"
}

multipath_ended() { ! pgrep -x multipathd; }

# multipath_stop: flushes the maps that nobody uses and ends the daemon.
multipath_stop() {
    multipath -F
    multipathd shutdown >/dev/null
    wait_for 120 multipath_ended
}

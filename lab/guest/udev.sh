# Device names: udev without systemd, and waiting for what the kernel announces.

lab_error() {
    echo "lab: $*" >&2
    return 1
}

udev_start() {
    [ -e /run/udev/control ] && return 0
    /lib/systemd/systemd-udevd --daemon --resolve-names=never 2>>/run/lab/log/udevd || return 1
    udevadm trigger --action=add --subsystem-match=block --subsystem-match=scsi --subsystem-match=virtio-ports
    udevadm settle --timeout=120
}

# Makes the kernel look for new LUNs on every bus, and waits for the names of what it finds.
scan_all() {
    local scan
    for scan in /sys/class/scsi_host/host*/scan; do echo '- - -' > "$scan" || return 1; done
    udevadm settle --timeout=120
}

# Waits until a command succeeds, with what udev still has to do done: wait_for SECONDS COMMAND...
wait_for() {
    local limit=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$limit" ] || { lab_error "gave up waiting for: $*"; return 1; }
        udevadm settle --timeout=5
        sleep 0.1
    done
}

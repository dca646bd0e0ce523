# The host's side: iscsid and its sessions over loopback.

# One initiator name for tests that need no second one.
lab_initiator=iqn.2020-01.test.lab:host
lab_target=iqn.2020-01.test.lab:array

initiator_start() {
    pgrep -x iscsid >/dev/null && return 0
    mount -t tmpfs -o mode=755 iscsi /etc/iscsi || return 1
    echo "InitiatorName=$lab_initiator" > /etc/iscsi/initiatorname.iscsi
    cat > /etc/iscsi/iscsid.conf <<-'CONF'
	node.startup = manual
	node.leading_login = No
	node.session.auth.authmethod = None
	node.session.scan = auto
	node.session.timeo.replacement_timeout = 20
	node.conn[0].timeo.login_timeout = 30
	node.conn[0].timeo.noop_out_interval = 0
	node.conn[0].timeo.noop_out_timeout = 0
	CONF
    modprobe -a iscsi_tcp sd_mod sg || return 1
    iscsid >/run/lab/log/iscsid 2>&1 || return 1
    wait_for 120 grep -q ISCSIADM_ABSTRACT_NAMESPACE /proc/net/unix
}

# The iface record that logs in under an initiator name; makes it when it is missing.
initiator_iface() {
    local iface
    iface=$(echo "$1" | tr -c 'a-zA-Z0-9\n' _)
    if ! iscsiadm -m iface -I "$iface" >/dev/null 2>&1; then
        iscsiadm -m iface -I "$iface" -o new >/dev/null &&
            iscsiadm -m iface -I "$iface" -o update -n iface.initiatorname -v "$1" >/dev/null || return 1
    fi
    echo "$iface"
}

# session_login [INITIATOR]: logs in to every portal of the target, and waits for the disks of all
# LUNs that are mapped for the initiator and for their names.
session_login() {
    local initiator=${1:-$lab_initiator} tpg iqn iface portal
    initiator_start && iface=$(initiator_iface "$initiator") && tpg=$(target_dir) && read -r iqn < /run/lab/target || return 1
    for portal in "$tpg"/np/*; do
        portal=${portal##*/}
        iscsiadm -m node -o new -T "$iqn" -p "$portal" -I "$iface" >/dev/null &&
            iscsiadm -m node -T "$iqn" -p "$portal" -I "$iface" --login >/dev/null || return 1
    done
    wait_for 120 session_scanned "$iqn" "$initiator" && udevadm settle --timeout=120
}

# Whether every session of an initiator with a target has as many disks as the ACL maps LUNs.
session_scanned() {
    local session disk found mapped
    mapped=$(find "$target_config/iscsi/$1/tpgt_1/acls/$2" -mindepth 1 -maxdepth 1 -name 'lun_*' | wc -l)
    for session in /sys/class/iscsi_session/session*; do
        [ "$(cat "$session/targetname" "$session/initiatorname" | tr '\n' ' ')" = "$1 $2 " ] || continue
        found=0
        for disk in "$session"/device/target*/*/block/*; do [ ! -e "$disk" ] || found=$((found + 1)); done
        [ "$found" -ge "$mapped" ] || return 1
    done
}

# session_logout [INITIATOR]
session_logout() {
    local iqn iface
    iface=$(initiator_iface "${1:-$lab_initiator}") && read -r iqn < /run/lab/target || return 1
    iscsiadm -m node -T "$iqn" -I "$iface" --logout >/dev/null || return 1
    iscsiadm -m node -T "$iqn" -I "$iface" -o delete >/dev/null
    udevadm settle --timeout=120
}

# array_start [ADDRESS:PORT]...: a target with these portals (127.0.0.1:3260 unless given) that lets
# the lab's one initiator in; map LUNs and session_login come next.
array_start() {
    local portal
    target_create "$lab_target" || return 1
    for portal in "${@:-127.0.0.1:3260}"; do portal_add "$portal" || return 1; done
    acl_create "$lab_initiator"
}

# page83 DISK: page 0x83 as one line of hexadecimal digits.
page83() { sg_inq --raw --page=0x83 "$1" | od -An -v -tx1 | tr -d ' \n'; echo; }

# disk_of WWN: the kernel names of the SCSI disks that answer with this WWN now, one a line.
disk_of() {
    local disk
    for disk in /sys/block/sd*; do
        disk=${disk##*/}
        [ "$(page83 "/dev/$disk" 2>/dev/null | cut -c 17-48)" != "$1" ] || echo "$disk"
    done
}

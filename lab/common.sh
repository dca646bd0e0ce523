# Shared by lab/run and lab/setup: where things are kept, and how errors are told.

LAB_HOME=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
LAB_CACHE=$(realpath -m "${LAB_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/tessel-lab}")
LAB_QEMU=${LAB_QEMU:-qemu-system-x86_64}

# What the host must have: the tool that shows that a package is there, and the package's name.
LAB_NEEDS="
$LAB_QEMU            qemu-system-x86
/bin/busybox         busybox-static
cpio                 cpio
modprobe             kmod
udevadm              udev
/lib/systemd/systemd-udevd   udev
iscsiadm             open-iscsi
sg_inq               sg3-utils
lsscsi               lsscsi
multipathd           multipath-tools
dmsetup              dmsetup
vgcreate             lvm2
mkfs.btrfs           btrfs-progs
mkfs.ext4            e2fsprogs
ip                   iproute2
curl                 curl
pgrep                procps
"

# Exit statuses of the lab itself; every other status is the command's own.
LAB_STATUS_SKIP=77
LAB_STATUS_CANARY=120
LAB_STATUS_TIMEOUT=124
LAB_STATUS_ERROR=125

PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

note() { printf 'lab: %s\n' "$*" >&2; }
die() { note "$*"; exit "$LAB_STATUS_ERROR"; }

# The packages of LAB_NEEDS that are not installed, one line; empty when all are there.
missing_packages() {
    local tool package missing=
    while read -r tool package; do
        [ -z "$tool" ] || command -v "$tool" >/dev/null || case " $missing" in
            *" $package "*) ;;
            *) missing+="$package " ;;
        esac
    done <<< "$LAB_NEEDS"
    echo "${missing% }"
}

# For every test inside the guest: the lab's tools, checks, and the names of disks.
. "$LAB_HOME/guest/lab.sh"
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
set -uo pipefail

# Where a name in /dev/disk/by-id leads, e.g. sdc; nothing when there is no such name.
named() { [ ! -e "/dev/disk/by-id/$1" ] || basename "$(realpath "/dev/disk/by-id/$1")"; }

# The address of a disk, e.g. 1:0:0:1.
address() { basename "$(realpath "/sys/block/$1/device")"; }

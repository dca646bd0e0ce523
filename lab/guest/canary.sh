# The canary: a disk that has nothing to do with any test, mounted and written to in every run.
# Whatever a test does to the machine's disks, this one must come through it unharmed.

canary_at=/run/lab/canary

canary_disk() {
    local model
    for model in /sys/block/sd*/device/model; do
        case $(cat "$model" 2>/dev/null) in CANARY*) basename "${model%/device/model}" ;; esac
    done
}

# The disk sequence number tells a disk that stayed from one that was removed and came back.
canary_identity() { cat "/sys/block/$1/diskseq"; }

# Of what is on the disk, not of what the page cache holds.
canary_sum() (
    set -o pipefail
    dd if="$canary_at/data" bs=1M iflag=direct status=none | sha256sum
)

canary_start() {
    local disk
    disk=$(canary_disk)
    [ -n "$disk" ] || { lab_error "no canary disk"; return 1; }
    mkfs.ext4 -q -E lazy_itable_init=1,nodiscard "/dev/$disk" || return 1
    mkdir -p "$canary_at"
    mount "/dev/$disk" "$canary_at" || return 1
    head -c 1M /dev/urandom > "$canary_at/data"
    sync -f "$canary_at/data"
    canary_sum > /run/lab/canary.sum || return 1
    echo "$disk $(canary_identity "$disk")" > /run/lab/canary.disk
}

# Says on stderr what happened to the canary, if anything did.
canary_check() {
    local disk identity sum
    read -r disk identity < /run/lab/canary.disk
    [ "$(canary_disk)" = "$disk" ] || { lab_error "the canary disk $disk is gone"; return 1; }
    [ "$(canary_identity "$disk")" = "$identity" ] || { lab_error "the canary disk $disk was removed and added again"; return 1; }
    [ "$(cat "/sys/block/$disk/device/state")" = running ] || { lab_error "the canary disk $disk is not running"; return 1; }
    { date > "$canary_at/written" && sync -f "$canary_at/written"; } || { lab_error "the canary disk $disk takes no writes"; return 1; }
    sum=$(canary_sum) && [ "$sum" = "$(cat /run/lab/canary.sum)" ] || { lab_error "the data of the canary disk $disk changed"; return 1; }
}

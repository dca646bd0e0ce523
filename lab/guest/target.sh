# The array's side: the kernel's own iSCSI target, set up through configfs. Functions work on the
# target made last, or the one that target_use names.

target_config=/sys/kernel/config/target
target_stores=/run/lab/stores

# The folder of the target in use.
target_dir() {
    local iqn
    { read -r iqn < /run/lab/target; } 2>/dev/null || { lab_error "no target yet: target_create first"; return 1; }
    echo "$target_config/iscsi/$iqn/tpgt_1"
}

target_load() {
    [ -d "$target_config/iscsi" ] && return 0
    modprobe -a configfs target_core_mod target_core_file iscsi_target_mod || return 1
    mountpoint -q /sys/kernel/config || mount -t configfs configfs /sys/kernel/config || return 1
    mkdir -p "$target_config/iscsi" "$target_config/core/fileio_0" "$target_stores"
}

# target_create IQN: a target with the small LUN 0 that every initiator gets, and no portal yet.
target_create() {
    local tpg=$target_config/iscsi/$1/tpgt_1
    target_load || return 1
    [ -d "$target_config/core/fileio_0/lun0" ] || lun_create lun0 "$(serial_for 0 e)" 4M >/dev/null || return 1
    mkdir -p "$tpg/lun/lun_0" || return 1
    ln -s "$target_config/core/fileio_0/lun0" "$tpg/lun/lun_0/store" || return 1
    echo 0 > "$tpg/attrib/authentication"
    echo 0 > "$tpg/attrib/generate_node_acls"
    echo 0 > "$tpg/attrib/demo_mode_write_protect"
    echo 1 > "$tpg/enable" || return 1
    echo "$1" > /run/lab/target
}

# target_use IQN: makes an existing target the one that the other functions work on.
target_use() {
    [ -d "$target_config/iscsi/$1" ] || { lab_error "no target $1"; return 1; }
    echo "$1" > /run/lab/target
}

# portal_add ADDRESS:PORT, e.g. 127.0.0.1:3260 and 127.0.0.2:3260 for two paths.
portal_add() {
    local tpg
    tpg=$(target_dir) && mkdir "$tpg/np/$1"
}

# serial_for LUN-ID [HEX...]: a 25-digit serial whose last eight digits are the LUN ID; the digits
# given come before it, filled up with zeros on their left.
serial_for() { printf '%017d%08x\n' 0 "$1" | sed "s/0\{${#2}\}\(.\{8\}\)$/$2\1/"; }

# wwn_of SERIAL25 [COMPANY-ID]: the WWN that a store with this serial shows.
wwn_of() { echo "6${2:-001405}$1"; }

# lun_create NAME SERIAL25 SIZE [COMPANY-ID]: a store; prints its WWN. The serial is 25 lowercase
# hexadecimal digits, the company ID six.
lun_create() {
    local name=$1 serial=$2 size=$3 company=${4:-001405} store=$target_config/core/fileio_0/$1
    [[ $serial =~ ^[0-9a-f]{25}$ ]] || { lab_error "lun_create: '$serial' is not 25 lowercase hexadecimal digits"; return 1; }
    [[ $company =~ ^[0-9a-f]{6}$ ]] || { lab_error "lun_create: '$company' is not 6 lowercase hexadecimal digits"; return 1; }
    target_load || return 1
    [ ! -d "$store" ] || { lab_error "lun_create: there is a store $name already"; return 1; }
    [ -e "$target_stores/$name" ] || truncate -s "$size" "$target_stores/$name" || return 1
    mkdir "$store" || return 1
    echo "fd_dev_name=$target_stores/$name,fd_dev_size=$(stat -c %s "$target_stores/$name")" > "$store/control" || return 1
    echo "0x$company" > "$store/wwn/company_id" || return 1
    echo "$serial" > "$store/wwn/vpd_unit_serial" || return 1
    echo 1 > "$store/enable" || return 1
    wwn_of "$serial" "$company"
}

# snapshot_create SOURCE NAME SERIAL25 [COMPANY-ID]: a store with the data that SOURCE holds now;
# prints its WWN.
snapshot_create() {
    cp --sparse=always "$target_stores/$1" "$target_stores/$2" || return 1
    lun_create "$2" "$3" 0 "${4:-001405}"
}

# lun_delete NAME: takes away a store that is mapped nowhere.
lun_delete() {
    local port
    for port in "$target_config"/iscsi/*/tpgt_1/lun/lun_*/store; do
        [ "$port" -ef "$target_config/core/fileio_0/$1" ] || continue
        rm "$port" && rmdir "${port%/store}" || return 1
    done
    rmdir "$target_config/core/fileio_0/$1" && rm "$target_stores/$1"
}

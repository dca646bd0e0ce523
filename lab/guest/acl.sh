# What each initiator sees of a target: one ACL per initiator name, with its mapped LUNs.

# acl_create INITIATOR: lets the initiator in and maps the small LUN 0 for it.
acl_create() {
    local tpg
    tpg=$(target_dir) || return 1
    mkdir "$tpg/acls/$1" && acl_map "$1" 0 lun0
}

# Prints the number under which the target exports a store, exporting it first when need be.
exported_lun() {
    local tpg=$1 store=$target_config/core/fileio_0/$2 port number=0
    for port in "$tpg"/lun/lun_*/store; do
        [ "$port" -ef "$store" ] || continue
        port=${port%/store}
        echo "${port##*/lun_}"
        return 0
    done
    [ -d "$store" ] || { lab_error "no store $2: lun_create first"; return 1; }
    while [ -d "$tpg/lun/lun_$number" ]; do number=$((number + 1)); done
    mkdir "$tpg/lun/lun_$number" && ln -s "$store" "$tpg/lun/lun_$number/store" && echo "$number"
}

# acl_map INITIATOR LUN STORE: the initiator sees the store under this LUN number (after a rescan).
acl_map() {
    local tpg mapped exported
    tpg=$(target_dir) || return 1
    [ -d "$tpg/acls/$1" ] || { lab_error "no ACL for $1: acl_create first"; return 1; }
    mapped=$tpg/acls/$1/lun_$2
    [ ! -d "$mapped" ] || { lab_error "LUN $2 of $1 is mapped already"; return 1; }
    exported=$(exported_lun "$tpg" "$3") || return 1
    mkdir "$mapped" && ln -s "$tpg/lun/lun_$exported" "$mapped/export" || return 1
    echo 0 > "$mapped/write_protect"
}

# acl_unmap INITIATOR LUN: the initiator's disk stays until it is removed or rescanned, but is dead.
acl_unmap() {
    local tpg mapped
    tpg=$(target_dir) || return 1
    mapped=$tpg/acls/$1/lun_$2
    [ -d "$mapped" ] || { lab_error "LUN $2 of $1 is not mapped"; return 1; }
    find "$mapped" -maxdepth 1 -type l -delete && rmdir "$mapped"
}

# swap_store INITIATOR LUN STORE: another store behind a LUN that the initiator already has: the
# disk answers with the new identity, while its names in /dev/disk/by-id are still the old ones.
swap_store() { acl_unmap "$1" "$2" && acl_map "$1" "$2" "$3"; }

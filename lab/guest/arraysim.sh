# The simulated array over the kernel's target: what its mapping views expose are real disks. Needs BUILD, the build
# directory.

arraysim_state=/run/lab/array

# arraysim_begin: target, array and session, once for all tests of a boot; sets ARRAY_PORT and what the SDK needs.
arraysim_begin() {
    export TESSEL_ARRAYSIM_PASSWORD=lab-password TESSEL_PASSWORD=lab-password INITIATOR=$lab_initiator
    if [ ! -s /run/lab/array.port ]; then
        array_start || return 1
        "$BUILD/bin/tessel-arraysim" --state-dir "$arraysim_state" --port 0 --port-file /run/lab/array.port \
            --control-port 0 --control-port-file /run/lab/array.control --export-iscsi "$lab_target" \
            >/run/lab/log/array 2>&1 &
        wait_for 120 test -s /run/lab/array.port -a -s /run/lab/array.control ||
            { cat /run/lab/log/array >&2; return 1; }
        arraysim_control POST /objects/iscsi_initiator "{\"ID\":\"$lab_initiator\"}" >/dev/null && session_login ||
            return 1
    fi
    ARRAY_PORT=$(cat /run/lab/array.port)
    export ARRAY_PORT OVRA_REST_CA_FILE=$arraysim_state/ca.pem
}

# arraysim_control METHOD PATH [BODY]: a request to its control interface.
arraysim_control() {
    curl -sS --fail-with-body -X "$1" ${3:+--data "$3"} "http://127.0.0.1:$(cat /run/lab/array.control)$2"
}

# arraysim_lun NAME [MIB] and arraysim_snapshot LUN NAME make an object and print its ID; arraysim_wwn lun|snapshot ID.
# The names carry the test's process, since the tests of a boot share the array. What is refused ends the test.
arraysim_lun() {
    arraysim_object lun "{\"NAME\":\"$1-$$\",\"PARENTID\":\"0\",\"CAPACITY\":$((${2:-16} * 2048))}"
}
arraysim_snapshot() { arraysim_object snapshot "{\"NAME\":\"$2-$$\",\"PARENTID\":\"$1\"}"; }
arraysim_object() { # TYPE BODY
    local made
    made=$(arraysim_control POST "/objects/$1" "$2") ||
        { echo "arraysim: no $1 was made of $2: $made" >&2; kill -TERM $$; return 1; }
    json_member ID <<<"$made"
}
arraysim_wwn() { arraysim_control GET "/objects/$1/$2" | json_member WWN; }

# json_member NAME: a text member out of a JSON answer on standard input.
json_member() { sed -n "s/.*\"$1\" *: *\"\([^\"]*\)\".*/\1/p" | head -n 1; }

# host_disks: the disks that this host has, to compare before and after.
host_disks() { ls /sys/block | sort | tr '\n' ' '; }

# Starting, watching and ending the guest, for lab/run.

console=${LAB_CONSOLE:-$work/console}

# A path inside a QEMU option: its commas doubled.
option_path() { printf '%s' "${1//,/,,}"; }

# What every boot has in common, one argument a line.
machine_options() {
    # Without MONITOR the kernel idles by HLT: the emulator's MWAIT only pauses, so that an idle CPU would take a core.
    local accel=$1 cpu=max,vendor=GenuineIntel,la57=off,monitor=off
    [ "$accel" = kvm ] && cpu=host || accel=tcg,thread=multi,tb-size=512
    printf '%s\n' -machine q35,hpet=off -nodefaults -no-user-config -no-reboot -display none -monitor none \
        -accel "$accel" -cpu "$cpu" -smp "${LAB_CPUS:-1}" -m "${LAB_MEMORY:-2560}" \
        -kernel "$kernel" -initrd "$initramfs"
}

# Whether a guest really runs with KVM: a /dev/kvm that opens may still hang at the first instruction.
# The answer is kept until the machine restarts.
kvm_works() {
    local options answer
    answer=$LAB_CACHE/kvm-$(cat /proc/sys/kernel/random/boot_id)
    [ -w /dev/kvm ] || return 1
    if [ ! -s "$answer" ]; then
        rm -f "$LAB_CACHE"/kvm-*
        mapfile -t options < <(machine_options kvm)
        timeout -k 1 20 "$LAB_QEMU" "${options[@]}" -append "lab.trial quiet" </dev/null >/dev/null 2>&1 &&
            echo yes > "$answer" || echo no > "$answer"
    fi
    [ "$(cat "$answer")" = yes ]
}

chosen_accel() {
    case ${LAB_ACCEL:-tcg} in
        tcg | kvm) echo "${LAB_ACCEL:-tcg}" ;;
        auto) if kvm_works; then echo kvm; else echo tcg; fi ;;
        *) die "LAB_ACCEL must be tcg, kvm or auto, not '$LAB_ACCEL'" ;;
    esac
}

boot_guest() {
    local accel options out err
    accel=$(chosen_accel)
    mapfile -t options < <(machine_options "$accel")
    exec 5> >(exec cat) && out=$!
    exec 6> >(exec cat >&2) && err=$!
    started=$EPOCHREALTIME
    # norandmaps: programs at addresses of their own each time have all of their code translated anew by the emulator,
    # which makes starting one three times as slow.
    timeout -k 5 "$LAB_TIMEOUT" "$LAB_QEMU" "${options[@]}" \
        -append "console=ttyS0 quiet panic=-1 mitigations=off tsc=reliable nokaslr init_on_alloc=0 audit=0 net.ifnames=0 norandmaps" \
        -chardev "file,id=console,path=$(option_path "$console")" -serial chardev:console \
        -fsdev local,id=host,path=/,security_model=none,readonly=on,multidevs=remap \
        -device virtio-9p-pci,fsdev=host,mount_tag=host \
        -fsdev "local,id=own,path=$(option_path "$work/own"),security_model=none" \
        -device virtio-9p-pci,fsdev=own,mount_tag=own \
        -fsdev "local,id=share,path=$(option_path "$share"),security_model=none" \
        -device virtio-9p-pci,fsdev=share,mount_tag=share \
        -device virtio-rng-pci -device virtio-serial-pci \
        -add-fd fd=5,set=1 -chardev file,id=out,path=/dev/fdset/1,append=on \
        -add-fd fd=6,set=2 -chardev file,id=err,path=/dev/fdset/2,append=on \
        -device virtserialport,chardev=out,name=lab.stdout \
        -device virtserialport,chardev=err,name=lab.stderr \
        -drive "if=none,id=canary,format=raw,cache=unsafe,file=$(option_path "$work/canary.img")" \
        -device virtio-scsi-pci,id=scsi -device scsi-hd,bus=scsi.0,scsi-id=0,lun=3,drive=canary,product=CANARY,serial=canary,wwn=0x5000c50015ea71ac \
        </dev/null >"$work/qemu.log" 2>&1 &
    guest=$!
    exec 5>&- 6>&-
    qemu_status=0
    wait "$guest" || qemu_status=$?
    guest=
    wait "$out" "$err" || true
}

end_guest() {
    [ -z "$guest" ] || { kill "$guest" 2>/dev/null; wait "$guest" 2>/dev/null; } || true
}

seconds_between() { awk -v from="$1" -v to="$2" 'BEGIN { printf "%.1f", to - from }'; }

show_console() {
    note "last lines of the guest's console:"
    tail -n 12 "$console" 2>/dev/null | tr -d '\r' | sed 's/^/    /' >&2
}

# Says how the run went and exits with the command's status or the lab's own.
report_end() {
    local own=$work/own ready status crash
    if [ -s "$own/error" ]; then
        show_console
        die "$(cat "$own/error")"
    elif [ ! -s "$own/status" ] && [ "$qemu_status" -eq 124 ]; then
        show_console
        note "time limit of $LAB_TIMEOUT s reached (LAB_TIMEOUT), guest killed"
        exit "$LAB_STATUS_TIMEOUT"
    elif [ ! -s "$own/status" ]; then
        tail -n 3 "$work/qemu.log" >&2
        show_console
        crash=$(grep -m 1 -o 'Kernel panic.*\|lab: init: .*' "$console" | tr -d '\r') || true
        die "${crash:+$crash; }the guest ended without a result (QEMU's status $qemu_status)"
    fi
    status=$(cat "$own/status")
    ready=$(stat -c %.Y "$own/ready")
    note "boot $(seconds_between "$started" "$ready") s, whole run $(seconds_between "$started" "$EPOCHREALTIME") s, status $status"
    if [ -s "$own/canary" ]; then
        note "canary disk harmed: $(cat "$own/canary")"
        exit "$LAB_STATUS_CANARY"
    fi
    exit "$status"
}

# The bus rescan script of sg3-utils 1.46 takes every healthy disk for gone, because it looks for
# words that its own sg_inq spells otherwise, and with -r it removes it. Tests that are not about
# this run a copy in which both spellings are accepted, found first in PATH.

rescan_script=/usr/bin/rescan-scsi-bus.sh

rescan_script_mend() {
    local mended=/run/lab/bin/rescan-scsi-bus.sh
    sed -e '/IPTYPE=/s/Device_type=/\\(Device_type\\|PDT\\)=/;/IPTYPE=/s/\\1/\\2/' \
        -e '/IPQUAL=/s/  Device\.\*/  \\(Device\\|PDT\\).*/' "$rescan_script" > "$mended"
    chmod 755 "$mended"
    [ "$(diff "$rescan_script" "$mended" | grep -c '^>')" -eq 2 ] || {
        rm -f "$mended"
        lab_error "$rescan_script has not the two patterns that the lab mends"
    }
}

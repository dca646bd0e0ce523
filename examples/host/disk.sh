#!/usr/bin/env bash
# Makes a LUN a disk of this host with the command line, looks at it, and takes it away again. Usage: disk.sh LUN
set -euo pipefail
lun=$1
device=$(tesselctl disk attach lun "$lun")
tesselctl disk verify lun "$lun" "$device"
tesselctl disk list
tesselctl disk release lun "$lun"

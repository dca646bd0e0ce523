#!/usr/bin/env bash
# Shows the lock that scans of this host take one after the other. Changes nothing.
set -euo pipefail

id=$(ipcs -s | awk '$1 == "0x000004d3" { print $2 }')
if [ -z "$id" ]; then
    echo "no lock: nothing has scanned since this host started"
else
    ipcs -s -i "$id"
fi

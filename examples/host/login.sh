#!/usr/bin/env bash
# Logs this host in to an iSCSI portal of an array. Usage: login.sh ADDRESS:PORT
set -euo pipefail
portal=$1

cat /etc/iscsi/initiatorname.iscsi
iscsiadm -m discovery -t sendtargets -p "$portal"
iscsiadm -m node -p "$portal" --login
iscsiadm -m session

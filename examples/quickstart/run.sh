#!/usr/bin/env bash
# From an array's start to the end of a first program: the commands of the manual's "Getting started". Run it in a
# directory that holds first.cpp and CMakeLists.txt, with the SDK installed in ~/tessel.
set -euo pipefail
trap '[ -z "${array:-}" ] || kill "$array" 2>/dev/null || true' EXIT

# Start an array on this machine.
export PATH="$HOME/tessel/bin:$PATH"
export TESSEL_ARRAYSIM_PASSWORD=trial-password
tessel-arraysim --state-dir array --port 0 --port-file port >array.log 2>&1 &
array=$!
timeout 60 sh -c 'until [ -s port ]; do sleep 0.1; done'
cat array.log

# Trust it.
export OVRA_REST_CA_FILE="$PWD/array/ca.pem"

# Build the program with CMake.
cmake -B build -DCMAKE_PREFIX_PATH="$HOME/tessel"
cmake --build build

# Run it.
TESSEL_PASSWORD=trial-password build/first 127.0.0.1 "$(cat port)" admin

# Look at what it left.
tail -n 3 "$HOME"/tessel/lib/logs/Tessel_run_*.log
tail -n 1 "$HOME"/tessel/lib/logs/Tessel_interface_*.log

# See the LUN with the command line.
export TESSEL_ARRAY="127.0.0.1:$(cat port)" TESSEL_USER=admin TESSEL_PASSWORD=trial-password
tesselctl lun show 1

# Build the program with pkg-config.
export PKG_CONFIG_PATH="$HOME/tessel/lib/pkgconfig"
g++ -std=c++11 first.cpp -o first $(pkg-config --cflags --libs ovra-tessel) -Wl,-rpath,"$HOME/tessel/lib"

# The name is taken now: the array says so.
./first 127.0.0.1 "$(cat port)" admin || echo "status $?"

# Stop the array.
kill "$array"
wait "$array"

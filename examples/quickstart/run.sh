#!/usr/bin/env bash
# From an array to the end of a first program: the commands of the manual's "Getting started", for the shell of start.sh,
# in a directory that holds first.cpp and CMakeLists.txt, with the SDK installed in ~/tessel.
set -euo pipefail

# Where the array is.
echo "$TESSEL_ARRAY, trusted by $OVRA_REST_CA_FILE"

# Build the program with CMake.
cmake -B build -DCMAKE_PREFIX_PATH="$HOME/tessel"
cmake --build build

# Run it.
build/first "$TESSEL_ARRAYSIM_ADDRESS" "$TESSEL_ARRAYSIM_PORT" "$TESSEL_USER"

# Look at what it left.
tail -n 3 "$HOME"/tessel/lib/logs/Tessel_run_*.log
tail -n 1 "$HOME"/tessel/lib/logs/Tessel_interface_*.log

# See the LUN with the command line.
tesselctl lun show 1

# Build the program with pkg-config.
export PKG_CONFIG_PATH="$HOME/tessel/lib/pkgconfig"
g++ -std=c++11 first.cpp -o first $(pkg-config --cflags --libs ovra-tessel) -Wl,-rpath,"$HOME/tessel/lib"

# The name is taken now: the array says so.
./first "$TESSEL_ARRAYSIM_ADDRESS" "$TESSEL_ARRAYSIM_PORT" "$TESSEL_USER" || echo "status $?"

#!/usr/bin/env bash
# Builds the SDK and installs it below the home directory. Run it in the checkout.
set -euo pipefail

scripts/setup build
cmake --preset release -DTESSEL_BUILD_TESTS=OFF -DTESSEL_BUILD_EXAMPLES=OFF
cmake --build build/release
cmake --install build/release --prefix "$HOME/tessel"

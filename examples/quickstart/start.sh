#!/usr/bin/env bash
# A shell with an array beside it, which goes with the shell: what run.sh does is typed there.
export PATH="$HOME/tessel/bin:$PATH"
tessel-arraysim --run bash

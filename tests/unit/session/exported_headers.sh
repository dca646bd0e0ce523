#!/bin/sh
# Compiles every exported header alone, and all of them together, as C++11 with one compiler, and checks that
# they include nothing of the libraries that the SDK is made with.
# usage: exported_headers.sh COMPILER INCLUDE_DIR

compiler=$1
include=$2
failed=0

command -v "$compiler" >/dev/null || { echo "$compiler is not installed"; exit 1; }

compile() { # standard, source text, further options
    # shellcheck disable=SC2086 # options
    printf '%s\n' "$2" | "$compiler" -std="$1" -Wall -Wextra -Wpedantic -Werror -I"$include" -x c++ $3 -
}

all=
for header in "$include"/tessel/*.h; do
    line="#include <tessel/$(basename "$header")>"
    compile c++11 "$line" -fsyntax-only || { echo "$header does not compile alone"; failed=1; }
    all="$all
$line"
done
[ -n "$all" ] || { echo "no headers in $include/tessel"; exit 1; }

for standard in c++11 c++14 c++17 c++20; do
    compile $standard "$all" -fsyntax-only || { echo "the headers do not compile together as $standard"; failed=1; }
done

foreign=$(compile c++11 "$all" -M | tr ' ' '\n' | grep -E '/(json|jsoncpp|curl|spdlog|fmt|ovra)/')
[ -z "$foreign" ] || { echo "the headers include $foreign"; failed=1; }
exit $failed

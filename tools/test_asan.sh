#!/usr/bin/env bash
# Runs the contract tests and the C++ unit tests of a build with AddressSanitizer and UndefinedBehaviorSanitizer.
# Takes the build folder. Leaks are not counted here: an interpreter never frees everything; the tests count handles
# and references themselves.
set -eu
build=$(cd "$1" && pwd)
python=${PYTHON:-/usr/bin/python3}
export ASAN_OPTIONS=detect_leaks=0:detect_odr_violation=0 UBSAN_OPTIONS=print_stacktrace=1
ctest --test-dir "$build" --output-on-failure -j 2 --timeout 600 -E '^wrap\.'
LD_PRELOAD="$(g++ -print-file-name=libasan.so):$(g++ -print-file-name=libubsan.so)" \
    PYTHONPATH="$build/stage" "$python" -m pytest -q -p no:cacheprovider tests/contract

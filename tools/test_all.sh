#!/usr/bin/env bash
# Builds the modules for every CPython from 3.9 to 3.13 that is here and runs the contract tests and the demo with
# each. An interpreter is python3.X on the PATH, or PYTHON_3_X in the environment. Those without packages of their own
# borrow Debian's pytest through a folder of links. The managed assemblies do not depend on the Python version and come
# from the release build.
# usage: test_all.sh [version...]
set -u

root=$(cd "$(dirname "$0")/.." && pwd)
links=$root/build/pytest-links
assemblies=$root/build/release/stage/velbor/_assemblies
versions=("$@")
test ${#versions[@]} -gt 0 || versions=(3.9 3.10 3.11 3.12 3.13)
test -d "$assemblies" || { echo "no managed assemblies in $assemblies: run \`make build\`" >&2; exit 1; }
"$root/tools/setup.sh" --all-pythons || exit 1
mkdir -p "$links"
for name in pytest _pytest pluggy iniconfig packaging attr attrs py py.py exceptiongroup tomli; do
    test -e "/usr/lib/python3/dist-packages/$name" && ln -sfn "/usr/lib/python3/dist-packages/$name" "$links/$name"
done

failed=0
for version in "${versions[@]}"; do
    variable=PYTHON_${version/./_}
    python=${!variable:-$(command -v "python$version" || true)}
    if [ -z "$python" ] || ! "$python" -c "import sys; sys.exit('%d.%d' % sys.version_info[:2] != '$version')" 2>/dev/null; then
        echo "CPython $version: skipped (no python$version here; name one with $variable)"
        continue
    fi
    build=$root/build/python-$version
    echo "CPython $version: building with $python"
    if ! cmake -S "$root" -B "$build" -G Ninja --log-level=ERROR -DCMAKE_BUILD_TYPE=Release -DVELBOR_PYTHON="$python" \
        -DVELBOR_UNIT_TESTS=OFF -DVELBOR_MANAGED=OFF >/dev/null || ! cmake --build "$build" -j "${JOBS:-2}" -- --quiet; then
        echo "CPython $version: FAILED to build"
        failed=1
        continue
    fi
    ln -sfn "$assemblies" "$build/stage/velbor/_assemblies"
    if ! PYTHONPATH="$build/stage:$links" "$python" -m pytest -q -p no:cacheprovider "$root/tests/contract"; then
        echo "CPython $version: FAILED the contract tests"
        failed=1
    fi
    if ! PYTHONPATH="$build/stage" "$python" "$root/examples/demo.py" >/dev/null; then
        echo "CPython $version: FAILED the demo"
        failed=1
    fi
done
exit $failed

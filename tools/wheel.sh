#!/usr/bin/env bash
# Packs the staged package into a wheel in dist/. Takes the build folder. A wheel is a zip file with a record of its
# own content, so nothing but the standard library is needed.
set -eu
python=${PYTHON:-/usr/bin/python3}
exec "$python" tools/make_wheel.py "$1/stage" dist

#!/usr/bin/env bash
# Installs (as root) or names (as a user) the Debian packages that the build and the tests need. The .NET SDK is
# expected on the machine.
set -eu

packages=(g++ cmake ninja-build make git python3 python3-dev python3-pytest python3-numpy libgtest-dev libffi-dev)
case "${1:-}" in
    --all-pythons) packages+=(python3-exceptiongroup python3-tomli) ;;  # what pytest needs before CPython 3.11
    --lint) packages+=(clang-format clang-tidy mypy) ;;
esac

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    if [ "$(id -u)" -eq 0 ]; then
        echo "installing: ${missing[*]}"
        apt-get update -qq
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
    else
        echo "missing Debian packages; install them with: sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
fi

if ! command -v dotnet >/dev/null || ! dotnet --list-sdks 2>/dev/null | grep -q '^10\.'; then
    echo "the .NET 10 SDK is missing: install the package dotnet-sdk-10.0, or put its dotnet on the PATH" >&2
    exit 1
fi

#!/usr/bin/env bash
# Formatting and static checks: clang-format and clang-tidy for C++, mypy for Python, `dotnet format` for C#.
# With --fix the formatting is put right; otherwise a build folder may be given, whose compile commands clang-tidy uses.
set -eu
tools/setup.sh --lint
mapfile -t sources < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
    for project in managed/Voxlar managed/Interop; do
        dotnet format whitespace "$project" --folder
    done
    exit 0
fi
echo "clang-format"
clang-format --dry-run --Werror "${sources[@]}"
echo "mypy"
MYPYPATH=${1:-build/release}/stage python3 -m mypy --strict generator python/velbor/__init__.py python/velbor/_start.py \
    python/velbor/_runtime_finder.py
if [ -f "${1:-}/compile_commands.json" ]; then
    echo "clang-tidy"
    mapfile -t checked < <(git ls-files 'src/*.cpp' 'family/*.cpp')
    printf '%s\n' "${checked[@]}" | xargs -P 2 -n 4 clang-tidy -p "$1" --quiet 2>/dev/null
fi
echo "dotnet format"
for project in managed/Voxlar managed/Interop; do
    dotnet format whitespace "$project" --folder --verify-no-changes
done

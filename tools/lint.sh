#!/usr/bin/env bash
# Formatting and static checks: clang-format and clang-tidy for C++, mypy for Python, `dotnet format` for C#.
# With --fix the formatting is put right; otherwise the folder of a finished build may be given, whose compile
# commands, generated headers and staged package the checks use.
set -eu -o pipefail
tools/setup.sh --lint
mapfile -t sources < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
    for project in managed/Voxlar managed/Interop; do
        dotnet format whitespace "$project" --folder
    done
    exit 0
fi
build=${1:-build/release}
commands=$build/compile_commands.json
if [ ! -f "$commands" ]; then
    echo "no build in $build: run 'make build' first" >&2
    exit 1
fi

echo "clang-format"
clang-format --dry-run --Werror "${sources[@]}"

echo "mypy"
MYPYPATH=$build/stage mypy --strict generator python/velbor/__init__.py python/velbor/_start.py \
    python/velbor/_runtime_finder.py

echo "clang-tidy"
# One file. The count of the warnings that clang-tidy kept back is noise; anything else on stderr is not.
tidy() {
    local said status=0
    said=$(clang-tidy -p "$1" --quiet "$2" 2>&1) || status=$?
    grep -vE '^([0-9]+ warnings? generated\.)?$' <<<"$said" || true
    return $status
}
export -f tidy
# The generated half too: the templates in the headers come to life there.
mapfile -t checked < <(git ls-files 'src/*.cpp' 'family/*.cpp' && find "$build/generated/cpp" -name '*.cpp')
for file in "${checked[@]}"; do
    # Without a command of its own clang-tidy would guess one.
    grep -qF "\"$(realpath "$file")\"" "$commands" || { echo "$file is not built, so it cannot be checked" >&2; exit 1; }
done
printf '%s\n' "${checked[@]}" | xargs -P 2 -I {} bash -c 'tidy "$@"' tidy "$build" {}
echo "${#checked[@]} files are clean"

echo "dotnet format"
for project in managed/Voxlar managed/Interop; do
    dotnet format whitespace "$project" --folder --verify-no-changes
done

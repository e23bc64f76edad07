#!/usr/bin/env bash
# Runs the xunit tests of the scene library and of the interop layer. Takes the build folder, whose generated entry
# classes the interop layer is compiled with.
set -eu
generated=$(cd "$1" && pwd)/generated
export DOTNET_CLI_TELEMETRY_OPTOUT=1 DOTNET_NOLOGO=1
for project in Voxlar.Tests Interop.Tests; do
    echo "managed tests: $project"
    dotnet test "managed/tests/$project" --configuration Release --nologo --verbosity quiet -nodeReuse:false \
        "-p:GeneratedDir=$generated"
done

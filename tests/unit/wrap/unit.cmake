# These tests start the real runtime, the newest one that the SDK's own tool knows.
execute_process(COMMAND dotnet --list-runtimes OUTPUT_VARIABLE runtimes ERROR_QUIET)
string(REGEX MATCHALL "Microsoft\\.NETCore\\.App [^\n]*" runtimes "${runtimes}")
if(runtimes)
    list(GET runtimes -1 newest)
    string(REGEX REPLACE "Microsoft\\.NETCore\\.App ([^ ]+) \\[(.*)\\]" "\\2/\\1" runtime_folder "${newest}")
    target_compile_definitions(${UNIT} PRIVATE "RUNTIME_FOLDER=\"${runtime_folder}\"")
else()
    message(FATAL_ERROR "No .NET runtime found: install the .NET 10 SDK, or set VELBOR_UNIT_TESTS=OFF.")
endif()

set(wrap_folder "${PROJECT_SOURCE_DIR}/family/wrap")
target_sources(${UNIT} PRIVATE "${wrap_folder}/start_properties.cpp")
target_include_directories(${UNIT} PRIVATE "${wrap_folder}")
target_compile_definitions(${UNIT} PRIVATE "WRAP_FOLDER=\"${STAGE_PACKAGE}/_runtime/netcore10.0\"")
add_dependencies(${UNIT} coreclrwrap coreclrwrap_debug)

# The runtime leaves memory of its own behind, which is not ours to mend.
set(UNIT_ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")

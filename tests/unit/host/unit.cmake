# Stand-ins for the wrap library: one with all five symbols that records its calls, and one for each symbol
# that lacks that symbol.
set(fake_wraps "")
foreach(missing none load initialize create_delegate shutdown is_domain_initialized)
    set(fake "fake_wrap_${missing}")
    add_library(${fake} MODULE "${folder}/fake_wrap/fake_wrap.cpp")
    set_target_properties(${fake} PROPERTIES PREFIX ""
        LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/fake_wrap")
    target_compile_definitions(${fake} PRIVATE "FAKE_WRAP_WITHOUT_${missing}")
    list(APPEND fake_wraps ${fake})
endforeach()

# A second module of the family: another shared object with a host layer of its own.
add_library(family_module MODULE "${folder}/family_module/family_module.cpp")
target_link_libraries(family_module PRIVATE velbor_host)
target_include_directories(family_module PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
set_target_properties(family_module PROPERTIES PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/fake_wrap")

add_dependencies(${UNIT} ${fake_wraps} family_module)
target_compile_definitions(${UNIT} PRIVATE "FAKE_WRAP_FOLDER=\"${CMAKE_CURRENT_BINARY_DIR}/fake_wrap\"")

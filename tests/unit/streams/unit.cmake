# The code under test belongs to the module, not to the core; what it takes from the collections is stood in for.
file(GLOB stream_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/streams/*.cpp")
target_sources(${UNIT} PRIVATE ${stream_sources} "${folder}/disposable_stand_in.cpp"
    "${CMAKE_CURRENT_SOURCE_DIR}/support/managed_side.cpp")

target_sources(${UNIT} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/support/managed_side.cpp")

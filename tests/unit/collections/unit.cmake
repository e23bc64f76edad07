target_link_libraries(${UNIT} PRIVATE velbor_collections)
target_sources(${UNIT} PRIVATE 
    "${folder}/fake_managed.cpp" "${folder}/fake_types.cpp" "${folder}/fixture.cpp")

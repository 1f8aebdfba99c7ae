# Looks at what the generator has made of the show's models.
if(TARGET show_assets)
    tamb_add_unit_test(assets_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/assets_test.cpp LIBS tamb_anim tamb_win32_posix)
    target_compile_definitions(assets_test PRIVATE SHOW_ASSETS="${CMAKE_BINARY_DIR}/assets")
    add_dependencies(assets_test show_assets)
endif()

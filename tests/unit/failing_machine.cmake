# Every loader, with the n-th allocation failing.
tamb_add_unit_test(failing_machine_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/failing_machine_test.cpp
    LIBS tamb_scene tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix ${CMAKE_DL_LIBS})
target_link_options(failing_machine_test PRIVATE LINKER:--wrap=malloc,--wrap=calloc,--wrap=realloc)

# The whole show, likewise, and with a codec that fails.
tamb_add_unit_test(failing_show_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/failing_show_test.cpp
    LIBS tamb_scene tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix ${CMAKE_DL_LIBS})
target_link_options(failing_show_test PRIVATE LINKER:--wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=GetProcAddress)

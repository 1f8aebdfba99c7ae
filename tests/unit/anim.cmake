set(here ${CMAKE_CURRENT_LIST_DIR})
tamb_add_unit_test(anim_test SOURCES ${here}/morph_file_test.cpp ${here}/morph_test.cpp
    LIBS tamb_anim tamb_render tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)

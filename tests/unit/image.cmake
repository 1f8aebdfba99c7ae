set(here ${CMAKE_CURRENT_LIST_DIR})
# With the real codec; textures go to the recorder.
tamb_add_unit_test(image_test SOURCES
    ${here}/codec_test.cpp ${here}/material_test.cpp
    LIBS tamb_render tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)

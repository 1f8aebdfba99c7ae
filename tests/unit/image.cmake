# With the real codec; textures go to the recorder.
tamb_add_unit_test(image_test SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/canvas_test.cpp ${CMAKE_CURRENT_LIST_DIR}/codec_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/light_test.cpp ${CMAKE_CURRENT_LIST_DIR}/material_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/matlib_test.cpp
    LIBS tamb_render tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)

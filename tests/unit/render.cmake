set(here ${CMAKE_CURRENT_LIST_DIR})
tamb_add_unit_test(render_test SOURCES
    ${here}/render_environment_test.cpp ${here}/gl_device_test.cpp
    LIBS tamb_render tamb_gl_recorder tamb_fake_win32)

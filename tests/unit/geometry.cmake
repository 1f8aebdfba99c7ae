set(here ${CMAKE_CURRENT_LIST_DIR})
tamb_add_unit_test(geometry_test SOURCES ${here}/model_test.cpp
    LIBS tamb_render tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)

set(here ${CMAKE_CURRENT_LIST_DIR})
tamb_add_unit_test(scene_test SOURCES ${here}/scene_parts_test.cpp
    LIBS tamb_scene tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)

# The show, with every window and frame written down.
tamb_add_unit_test(show_test SOURCES ${here}/scene_test.cpp
    LIBS tamb_scene tamb_gl_recorder tamb_fake_win32)

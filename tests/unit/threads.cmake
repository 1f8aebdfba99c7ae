# Threads of the product, again and again; most worth under the thread sanitizer.
tamb_add_unit_test(threads_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/threads_test.cpp
    LIBS tamb_render tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)
target_link_options(threads_test PRIVATE LINKER:--wrap=Sleep)

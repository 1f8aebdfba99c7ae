tamb_add_unit_test(platform_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/platform_test.cpp ${CMAKE_CURRENT_LIST_DIR}/trace_test.cpp
    LIBS tamb_platform tamb_win32_posix)

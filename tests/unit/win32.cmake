tamb_add_unit_test(posix_test SOURCES posix_test.cpp LIBS tamb_win32_posix)

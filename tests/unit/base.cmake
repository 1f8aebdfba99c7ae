tamb_add_unit_test(base_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/base_test.cpp LIBS tamb_base)

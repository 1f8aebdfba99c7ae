tamb_add_unit_test(math_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/math_test.cpp LIBS tamb_matrix)

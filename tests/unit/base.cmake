tamb_add_unit_test(base_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/string_test.cpp ${CMAKE_CURRENT_LIST_DIR}/array_test.cpp
    LIBS tamb_base)

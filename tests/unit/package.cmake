tamb_add_unit_test(package_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/package_test.cpp LIBS tamb_package)

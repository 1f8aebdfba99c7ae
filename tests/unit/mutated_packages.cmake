# The whole show of damaged packages.
tamb_add_unit_test(mutated_packages_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/mutated_packages_test.cpp
    LIBS tamb_scene tamb_gl_recorder tamb_fake_gl_window tamb_win32_posix)
target_compile_definitions(mutated_packages_test PRIVATE TAMBLOR_DATA_DIR="${TAMBLOR_DATA_DIR}")
add_dependencies(mutated_packages_test show_package)

# The saver on a machine that fails. TAMBLOR_LONG=1 lets it fail much more often.
add_executable(failing_saver_test
    saver_command.cpp failing_display_test.cpp failing_process_test.cpp failing_surroundings_test.cpp
    failing_wayland_test.cpp)
target_include_directories(failing_saver_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(failing_saver_test PRIVATE tamb_package tamb_win32_posix tamb_options test_compositor X11::X11 X11::Xrandr
    X11::Xtst X11::Xfixes GTest::gtest GTest::gtest_main)
target_compile_definitions(failing_saver_test PRIVATE
    TAMBLOR_EXE="$<TARGET_FILE:tamblor>" TAMBLOR_DATA_DIR="${TAMBLOR_DATA_DIR}" TAMBLOR_MODULES="${TAMBLOR_MODULES}"
    XVFB_EXE="${XVFB}"
    PLATFORM_SPY="$<TARGET_FILE:platform_spy>")
set_target_properties(failing_saver_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(failing_saver_test tamblor show_package platform_spy)
gtest_discover_tests(failing_saver_test DISCOVERY_MODE PRE_TEST TEST_PREFIX "failing/" PROPERTIES TIMEOUT ${TAMBLOR_TEST_SECONDS})

# The show for days, on X11 and on Wayland, by a clock that runs faster.
find_package(X11 REQUIRED COMPONENTS XRes)
add_executable(soak_test soak_test.cpp saver_command.cpp)
target_include_directories(soak_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(soak_test PRIVATE tamb_options test_compositor X11::X11 X11::Xrandr X11::Xtst X11::Xfixes X11::XRes
    GTest::gtest GTest::gtest_main)
target_compile_definitions(soak_test PRIVATE
    TAMBLOR_EXE="$<TARGET_FILE:tamblor>" TAMBLOR_DATA_DIR="${TAMBLOR_DATA_DIR}" XVFB_EXE="${XVFB}"
    PLATFORM_SPY="$<TARGET_FILE:platform_spy>")
set_target_properties(soak_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(soak_test tamblor show_package platform_spy)
gtest_discover_tests(soak_test DISCOVERY_MODE PRE_TEST TEST_PREFIX "soak/" PROPERTIES TIMEOUT ${TAMBLOR_TEST_SECONDS})

# The show for days, on X11 and on Wayland, by a clock that runs faster.
find_package(X11 REQUIRED COMPONENTS XRes)
find_package(OpenGL REQUIRED COMPONENTS EGL)
add_library(soak_spy MODULE soak_spy.cpp)
target_include_directories(soak_spy PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(soak_spy PRIVATE tamb_options OpenGL::GLX OpenGL::EGL PkgConfig::WAYLAND_CLIENT ${CMAKE_DL_LIBS})
add_executable(soak_test soak_test.cpp saver_command.cpp)
target_include_directories(soak_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(soak_test PRIVATE tamb_options test_compositor X11::X11 X11::Xrandr X11::Xtst X11::Xfixes X11::XRes
    GTest::gtest GTest::gtest_main)
target_compile_definitions(soak_test PRIVATE
    TAMBLOR_EXE="$<TARGET_FILE:tamblor>" TAMBLOR_DATA_DIR="${TAMBLOR_DATA_DIR}" XVFB_EXE="${XVFB}"
    SOAK_SPY="$<TARGET_FILE:soak_spy>" NM_EXE="${CMAKE_NM}")
set_target_properties(soak_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(soak_test tamblor show_package soak_spy)
gtest_discover_tests(soak_test DISCOVERY_MODE PRE_TEST TEST_PREFIX "soak/" PROPERTIES TIMEOUT ${TAMBLOR_TEST_SECONDS})

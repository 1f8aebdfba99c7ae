# Made on request: scripts/windows asks for it. The cases of the Linux saver that its Windows form shares run unchanged.
find_package(X11 REQUIRED)
set(integration ${CMAKE_SOURCE_DIR}/tests/integration)
set(picture ${CMAKE_SOURCE_DIR}/tests/picture)
add_executable(wine_test EXCLUDE_FROM_ALL
    under_wine.cpp wine_frame_test.cpp wine_installer_test.cpp wine_pictures_test.cpp wine_user_test.cpp
    ${integration}/bad_input_test.cpp ${integration}/full_screen_test.cpp ${picture}/comparison.cpp)
set_source_files_properties(${integration}/full_screen_test.cpp PROPERTIES
    COMPILE_OPTIONS $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
target_include_directories(wine_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(wine_test PRIVATE tamb_film tamb_package tamb_win32_posix tamb_win32_windowing tamb_win32_offscreen
    tamb_desktop_linux tamb_render tamb_gl tamb_options X11::X11 X11::Xrandr X11::Xtst X11::Xfixes GTest::gtest)
target_compile_definitions(wine_test PRIVATE
    TAMBLOR_DATA_DIR="${TAMBLOR_DATA_DIR}" TAMBLOR_REFERENCES="${picture}/references" XVFB_EXE="${XVFB}")
set_target_properties(wine_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(wine_test show_package show_assets)

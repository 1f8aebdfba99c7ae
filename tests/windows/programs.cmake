# A clock that the tests turn.
add_library(test_clock MODULE clock/winmm.cpp)
target_link_libraries(test_clock PRIVATE tamb_options)
target_link_options(test_clock PRIVATE -static LINKER:--kill-at)
set_target_properties(test_clock PROPERTIES PREFIX "" OUTPUT_NAME winmm
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/clock)

# A settings panel's pane for the preview, the show driven by chosen times.
add_executable(pane pane.cpp)
target_link_libraries(pane PRIVATE tamb_win32)
add_executable(frames frames.cpp)
target_link_libraries(frames PRIVATE tamb_scene tamb_desktop_ddraw tamb_gl)
# What the codec makes of picture files.
add_executable(pictures pictures.cpp)
target_include_directories(pictures PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(pictures PRIVATE tamb_image)
foreach(program pane frames pictures)
    target_link_options(${program} PRIVATE -static)
    set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
endforeach()

# Wine's loader for programs of this size. Debian keeps its loaders out of the path, where a script stands for them.
set(wine_folders /usr/lib/wine /usr/lib64/wine)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    find_program(TAMBLOR_WINE NAMES wine PATHS ${wine_folders} NO_DEFAULT_PATH)
else()
    find_program(TAMBLOR_WINE NAMES wine64 HINTS ${wine_folders})
endif()
find_program(TAMBLOR_WINESERVER NAMES wineserver wineserver64 HINTS ${wine_folders})
find_program(TAMBLOR_WINEGXX NAMES wineg++-stable wineg++)
find_program(TAMBLOR_WINEBUILD NAMES winebuild-stable winebuild)

# DevIL itself: Wine's modules in front of the Linux library, and the placeholder files by which programs find them.
set(codec ${CMAKE_BINARY_DIR}/tests/codec)
file(MAKE_DIRECTORY ${codec})
find_path(TAMBLOR_WINE_HEADERS windef.h PATHS /usr/include/wine/windows /usr/include/wine/wine/windows
    NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH)
if(TAMBLOR_WINEGXX AND TAMBLOR_WINEBUILD AND TAMBLOR_WINE_HEADERS AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    foreach(module devil ilu)
        set(source ${CMAKE_CURRENT_SOURCE_DIR}/codec/codec_bridge.cpp)
        set(exports ${codec}/${module}.spec) # Wine's tools know a list of exports by this ending
        configure_file(codec/${module}.exports ${exports} COPYONLY)
        add_custom_command(OUTPUT ${codec}/${module}.dll.so ${codec}/${module}.dll
            COMMAND ${TAMBLOR_WINEGXX} -shared -fPIC -O2 -Wall -DBRIDGE_${module} -o ${codec}/${module}.dll.so ${source} ${exports}
            COMMAND ${TAMBLOR_WINEBUILD} -m64 --fake-module --dll -E ${exports} -o ${codec}/${module}.dll
            DEPENDS ${source} ${exports} COMMENT "Building Wine's ${module}.dll" VERBATIM)
        list(APPEND modules ${codec}/${module}.dll)
    endforeach()
    add_custom_target(codec_bridge ALL DEPENDS ${modules})
endif()

# The cases. One after the other: they share a prefix, whose windows are on one display at a time.
find_program(TAMBLOR_OBJDUMP NAMES ${TAMBLOR_MINGW}-objdump)
add_test(NAME saver_stands_alone_and_carries_its_resources
    COMMAND ${CMAKE_COMMAND} -DOBJDUMP=${TAMBLOR_OBJDUMP} -DWINDRES=${CMAKE_RC_COMPILER}
        -DPROGRAM=$<TARGET_FILE:tamb.scr> -DVERSION=${PROJECT_VERSION} -P ${CMAKE_CURRENT_SOURCE_DIR}/check_saver.cmake)
add_test(NAME codec_stands_alone_and_offers_what_the_saver_asks_for
    COMMAND ${CMAKE_COMMAND} -DOBJDUMP=${TAMBLOR_OBJDUMP} -DDEVIL=$<TARGET_FILE:devil> -DILU=$<TARGET_FILE:ilu>
        -DBRIDGE=${CMAKE_SOURCE_DIR}/src/image/codec.cpp -P ${CMAKE_CURRENT_SOURCE_DIR}/check_codec.cmake)
if(NOT EXISTS ${TAMBLOR_NATIVE_BUILD}/tests/wine_test)
    message(WARNING "${TAMBLOR_NATIVE_BUILD} has no tests/wine_test (its target wine_test): the tests under Wine are left out")
    return()
endif()
include(GoogleTest)
add_executable(wine_test IMPORTED)
set_target_properties(wine_test PROPERTIES IMPORTED_LOCATION ${TAMBLOR_NATIVE_BUILD}/tests/wine_test)
# What of the Linux cases is about its files' places, its configuration file and its X server stays out.
gtest_discover_tests(wine_test DISCOVERY_MODE PRE_TEST TEST_PREFIX "wine/"
    TEST_FILTER "-BadInput.WithoutAServer*:BadInput.WhatIsMissing*"
    EXTRA_ARGS ${CMAKE_BINARY_DIR} ${TAMBLOR_WINE} ${TAMBLOR_WINESERVER}
    PROPERTIES TIMEOUT 300 RUN_SERIAL TRUE SKIP_RETURN_CODE 77)

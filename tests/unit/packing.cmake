# What tamb-pack makes and finds, with the real picture codec.
if(TARGET tamb_packing)
    set(here ${CMAKE_CURRENT_LIST_DIR})
    tamb_add_unit_test(packing_test SOURCES ${here}/packing_build_test.cpp ${here}/packing_verify_test.cpp
        LIBS tamb_packing tamb_win32_posix)
endif()

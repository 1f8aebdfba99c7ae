# What tamb-pack makes and finds, with the real picture codec.
if(TARGET tamb_packing)
    tamb_add_unit_test(packing_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/packing_test.cpp
        LIBS tamb_packing tamb_win32_posix)
endif()

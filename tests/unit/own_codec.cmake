# The codec's modules beside the system's library, which does the same.
tamb_add_unit_test(own_codec_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/own_codec_test.cpp
    LIBS tamb_codec tamb_image tamb_win32_posix)

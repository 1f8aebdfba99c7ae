tamb_add_unit_test(platform_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/platform_test.cpp LIBS tamb_platform tamb_win32_posix)
# The thread calls are written down on their way to the platform.
target_link_options(platform_test PRIVATE
    LINKER:--wrap=WaitForSingleObject,--wrap=TerminateThread,--wrap=CloseHandle,--wrap=Sleep,--wrap=SetPriorityClass)

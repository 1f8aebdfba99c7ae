tamb_add_unit_test(posix_test SOURCES posix_test.cpp LIBS tamb_win32_posix)
target_compile_definitions(posix_test PRIVATE TAMBLOR_INSTALLED_DATA="${CMAKE_INSTALL_FULL_DATADIR}/tamblor")

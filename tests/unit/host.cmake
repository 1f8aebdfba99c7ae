tamb_add_unit_test(host_test SOURCES host_test.cpp LIBS tamb_host tamb_fake_win32)

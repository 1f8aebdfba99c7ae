# tamb_options: what every target of ours is compiled with.
add_library(tamb_options INTERFACE)
target_include_directories(tamb_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_features(tamb_options INTERFACE cxx_std_20)
target_compile_options(tamb_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror
    # The effects are defined with every intermediate result rounded to single precision.
    -ffp-contract=off -fno-math-errno)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(tamb_options INTERFACE -Wno-restrict) # GCC 12 sees overlaps inside std::string's operator+
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(tamb_options INTERFACE -msse2 -mfpmath=sse)
endif()

# What an exploit meets, as Debian builds its programs and a little more; sanitizers see more than that. Each costs nothing
# that can be measured: scripts/bench, instructions_test.
if(NOT WIN32 AND NOT TAMBLOR_SANITIZE)
    include(CheckPIESupported)
    check_pie_supported()
    add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security
        # glibc checks sizes where the compiler has found them out, which takes optimising.
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
        add_compile_options(-fcf-protection)
    endif()
    add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
endif()

# The same bytes whenever the same objects are linked.
if(WIN32)
    add_link_options(LINKER:--no-insert-timestamp)
endif()

if(TAMBLOR_SANITIZE)
    add_compile_options(-fsanitize=${TAMBLOR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${TAMBLOR_SANITIZE})
endif()

# What Windows shows of a file of ours.
file(STRINGS ${CMAKE_SOURCE_DIR}/LICENSE TAMBLOR_COPYRIGHT REGEX "^Copyright")

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
endif()

# 32-bit ARM with musl, as boards with a small C library have it: Debian's cross compiler on musl's headers,
# start files and loader. There is no C++ run-time library for it: C++ sources get headers alone, and the
# compiler's C driver, which links them, would leave what they miss undefined.
include(${CMAKE_CURRENT_LIST_DIR}/armhf.cmake)
set(CMAKE_CXX_COMPILER ${CMAKE_C_COMPILER})
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-musleabihf)

# The kernel's headers lie among those of the other C library, and only they are taken from there. The
# headers of the C++ library ask for the version of that C library, which there is none of.
set(extra_headers ${CMAKE_BINARY_DIR}/musl-headers)
file(MAKE_DIRECTORY ${extra_headers})
foreach(part linux asm asm-generic)
  file(CREATE_LINK /usr/arm-linux-gnueabihf/include/${part} ${extra_headers}/${part} SYMBOLIC)
endforeach()
file(WRITE ${extra_headers}/features.h "#include_next <features.h>\n#define __GLIBC_PREREQ(major, minor) 0\n")
execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=include OUTPUT_VARIABLE compiler_headers
  OUTPUT_STRIP_TRAILING_WHITESPACE)

set(c_headers "-isystem ${extra_headers} -isystem /usr/include/arm-linux-musleabihf -isystem ${compiler_headers}")
set(cxx_headers /usr/arm-linux-gnueabihf/include/c++/12)
set(CMAKE_C_FLAGS_INIT "-nostdinc ${c_headers}")
set(CMAKE_CXX_FLAGS_INIT "-nostdinc -isystem ${cxx_headers} -isystem ${cxx_headers}/arm-linux-gnueabihf ${c_headers}")
set(link_as_musl "-specs=/usr/lib/arm-linux-musleabihf/musl-gcc.specs")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${link_as_musl})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${link_as_musl})

# libqrencode, which no package has for musl: tools/musl.sh puts it here.
set(musl_root ${CMAKE_CURRENT_LIST_DIR}/../build/musl-root)
string(APPEND CMAKE_C_FLAGS_INIT " -isystem ${musl_root}/include")
string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${musl_root}/include")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -L${musl_root}/lib -Wl,-rpath-link,${musl_root}/lib")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -L${musl_root}/lib")

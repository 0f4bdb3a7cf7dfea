# 32-bit big-endian PowerPC, the machine that the records were laid out for. Programs are static
# and run under qemu. Of OpenGL it has only the headers, which are the same on every machine; to be
# used with HALVENOR_RULES_ONLY. Needs g++-powerpc-linux-gnu and qemu-user. The C library's sine and
# cosine of doubles (not of floats) use an instruction (mffscrni) at which qemu-ppc 7.2 stops.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)

set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_CXX_STANDARD_LIBRARIES -latomic) # atomics of 8 bytes

# The headers of this machine, but for OpenGL's, are not the target's: show those two folders alone.
set(opengl_headers ${CMAKE_BINARY_DIR}/opengl_headers)
file(MAKE_DIRECTORY ${opengl_headers})
foreach(folder GL KHR)
  file(CREATE_LINK /usr/include/${folder} ${opengl_headers}/${folder} SYMBOLIC)
endforeach()
set(CMAKE_CXX_FLAGS_INIT "-isystem ${opengl_headers}")

set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

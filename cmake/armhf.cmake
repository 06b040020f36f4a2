# The word size and instruction set that the recorder's chip has, compiled on a PC with Debian's cross
# compiler; its programs run under an emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc-12)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++-12)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf) # where Debian keeps this architecture's libraries

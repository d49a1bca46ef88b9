# Cross-compiling for 64-bit Windows with Debian's mingw-w64 (g++-mingw-w64-x86-64-posix: the POSIX
# thread model, which std::thread and std::mutex need). The program is linked statically, so that
# cauce.exe runs without the compiler's DLLs beside it. Tests run under wine64 (Debian's wine64).
#   cmake -S . -B build-mingw -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake -DCAUCE_GUI=OFF -DCAUCE_WORKBOOK=OFF
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CAUCE_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${CAUCE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${CAUCE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${CAUCE_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${CAUCE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
if(EXISTS /usr/lib/wine/wine64)
  set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
endif()

# A cross build takes the header-only libraries (nlohmann_json, CLI11) from the build machine's Debian
# packages. Their own CMake files would put /usr/include on the target compiler's include path, where
# the build machine's C library would shadow the target's; so only their folders are copied apart.
function(cauce_host_headers target folder header)
  find_path(CAUCE_HOST_${folder} ${folder}/${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT CAUCE_HOST_${folder})
    message(FATAL_ERROR "${folder}/${header} not found under /usr/include (Debian package of ${target})")
  endif()
  file(COPY ${CAUCE_HOST_${folder}}/${folder} DESTINATION ${PROJECT_BINARY_DIR}/host-headers)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/host-headers)
endfunction()

cauce_host_headers(nlohmann_json::nlohmann_json nlohmann json.hpp)
cauce_host_headers(CLI11::CLI11 CLI CLI.hpp)

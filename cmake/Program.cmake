# The program `lyr`, where what it is built with is installed. Inside another project it is built
# when something needs it.
if(NOT LYR_BUILD_PROGRAM)
    return()
endif()

find_package(CLI11 CONFIG QUIET)
find_package(nlohmann_json CONFIG QUIET)
find_path(LYR_LIBELF_INCLUDE_DIR gelf.h)
find_library(LYR_LIBELF_LIBRARY elf)
mark_as_advanced(LYR_LIBELF_INCLUDE_DIR LYR_LIBELF_LIBRARY)
if(NOT CLI11_FOUND OR NOT nlohmann_json_FOUND OR NOT LYR_LIBELF_INCLUDE_DIR OR NOT LYR_LIBELF_LIBRARY)
    message(STATUS "The program lyr is not built: it needs libelf, CLI11 and nlohmann-json, "
        "on Debian the packages libelf-dev, libcli11-dev and nlohmann-json3-dev")
    return()
endif()

if(NOT LYR_INSTALL)
    set(onDemand EXCLUDE_FROM_ALL)
endif()
add_subdirectory(inspection ${onDemand})
add_subdirectory(lyr ${onDemand})

# What `cmake --install` lays down: both libraries, the exported headers, the program `lyr`, the CMake
# package and the pkg-config file. The tree may be moved afterwards. To run programs, the component
# LYRComponentModel_Runtime is enough.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/LYRComponentModel)
set(pkgConfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(runtime COMPONENT LYRComponentModel_Runtime)
set(development COMPONENT LYRComponentModel_Development)

install(TARGETS LYRComponentModel LYRSysTS EXPORT LYRComponentModelTargets
    LIBRARY ${runtime} NAMELINK_${development})
if(TARGET lyr)
    install(TARGETS lyr EXPORT LYRComponentModelTargets RUNTIME ${development})
    install(FILES docs/lyr.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 ${development})
endif()
install(DIRECTORY include/ platform/include/ kit/
    DESTINATION ${LYR_INSTALL_INCLUDEDIR} ${development}
    FILES_MATCHING PATTERN *.h)

install(EXPORT LYRComponentModelTargets NAMESPACE LYR::
    DESTINATION ${packageDir} ${development})
configure_package_config_file(cmake/LYRComponentModelConfig.cmake.in
    ${PROJECT_BINARY_DIR}/LYRComponentModelConfig.cmake
    INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/LYRComponentModelConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    cmake/LYRChecks.cmake
    cmake/LYRComponents.cmake
    cmake/LYRFolders.cpp.in
    ${PROJECT_BINARY_DIR}/LYRComponentModelConfig.cmake
    ${PROJECT_BINARY_DIR}/LYRComponentModelConfigVersion.cmake
    DESTINATION ${packageDir} ${development})

file(RELATIVE_PATH pkgConfigToPrefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/LYRComponentModel.pc.in ${PROJECT_BINARY_DIR}/LYRComponentModel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/LYRComponentModel.pc
    DESTINATION ${pkgConfigDir} ${development})

# Installs the library, its public headers, the CMake package (find_package(vumo CONFIG)), the pkg-config file, the
# examples and the pages. Components are what scripts/package makes packages of; the tool and Python install themselves.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vumo)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS vumo EXPORT vumoTargets
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS COMPONENT development)
install(EXPORT vumoTargets NAMESPACE vumo:: DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/vumoConfig.cmake.in ${PROJECT_BINARY_DIR}/vumoConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vumoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vumoConfig.cmake ${PROJECT_BINARY_DIR}/vumoConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The paths hang on the place of the .pc file, so that the installed tree can be moved; an absolute
# CMAKE_INSTALL_LIBDIR or CMAKE_INSTALL_INCLUDEDIR stays absolute.
set(pc_prefix ${CMAKE_INSTALL_PREFIX})
cmake_path(RELATIVE_PATH pc_prefix BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
set(pc_libdir "\${prefix}")
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
set(pc_cflags "-I\${includedir}")
set(pc_libs "-L\${libdir} -lvumo")
if(NOT BUILD_SHARED_LIBS)
    # Nobody but the user's link step can bring in what a static library needs.
    string(APPEND pc_cflags " -DVUMO_STATIC")
    if(NOT Iconv_IS_BUILT_IN)
        string(APPEND pc_libs " -liconv")
    endif()
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/vumo.pc.in ${PROJECT_BINARY_DIR}/vumo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vumo.pc DESTINATION ${pkgconfig_dir} COMPONENT development)

# As they lie in the repository, so that the links between them hold.
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
    PATTERN Doxyfile EXCLUDE
    PATTERN links.awk EXCLUDE
    PATTERN reference.css EXCLUDE
    PATTERN .* EXCLUDE)
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)

# Installs the library with its headers, the files by which CMake and pkg-config find it, the default
# tables and the documentation. Included where `public_headers` is set.
include(CMakePackageConfigHelpers)

set(TESSEL_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/tessel)
set(TESSEL_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/tessel)
set(TESSEL_INSTALL_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/tessel)

# ---- Library and headers ----

install(TARGETS tessel EXPORT tessel-targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
        NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
foreach(header IN LISTS public_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/tessel/${header} COMPONENT development
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessel/${folder})
endforeach()

# ---- find_package(tessel CONFIG) ----

install(EXPORT tessel-targets NAMESPACE tessel:: COMPONENT development
    DESTINATION ${TESSEL_INSTALL_CMAKEDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/tessel-config.cmake.in
    ${PROJECT_BINARY_DIR}/install/tessel-config.cmake
    INSTALL_DESTINATION ${TESSEL_INSTALL_CMAKEDIR} PATH_VARS TESSEL_INSTALL_DATADIR)
# Until version 1, every minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/tessel-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/install/tessel-config.cmake
    ${PROJECT_BINARY_DIR}/install/tessel-config-version.cmake COMPONENT development
    DESTINATION ${TESSEL_INSTALL_CMAKEDIR})

# ---- pkg-config ----

# All paths follow from the place of the file itself, so that the tree may be moved.
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
    file(RELATIVE_PATH PC_PREFIX /${pkgconfig_folder} /)
    string(REGEX REPLACE "/$" "" PC_PREFIX ${PC_PREFIX})
    set(PC_PREFIX "\${pcfiledir}/${PC_PREFIX}")
endif()
foreach(folder IN ITEMS LIBDIR INCLUDEDIR DATADIR)
    set(PC_${folder} ${CMAKE_INSTALL_${folder}})
    if(NOT IS_ABSOLUTE ${PC_${folder}})
        set(PC_${folder} "\${prefix}/${PC_${folder}}")
    endif()
endforeach()
if(NOT BUILD_SHARED_LIBS)
    set(PC_DEFINITIONS " -DTESSEL_STATIC")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/tessel.pc.in ${PROJECT_BINARY_DIR}/install/tessel.pc
    @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/tessel.pc COMPONENT development
    DESTINATION ${pkgconfig_folder})

# ---- Tables and documentation ----

install(FILES ${PROJECT_SOURCE_DIR}/data/element.ini ${PROJECT_SOURCE_DIR}/data/aa.ini
    ${PROJECT_SOURCE_DIR}/data/modification.ini ${PROJECT_SOURCE_DIR}/data/quant.ini
    COMPONENT data DESTINATION ${TESSEL_INSTALL_DATADIR})
install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/unimod_to_ini COMPONENT tools
    DESTINATION ${CMAKE_INSTALL_BINDIR})
# The folders stay as in the source tree, so that the links between the pages hold.
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md COMPONENT docs DESTINATION ${TESSEL_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/data/README.md COMPONENT docs
    DESTINATION ${TESSEL_INSTALL_DOCDIR}/data)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples COMPONENT docs
    DESTINATION ${TESSEL_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS PATTERN "__pycache__" EXCLUDE)
# What the target "docs" makes, if it was built.
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html COMPONENT docs
    DESTINATION ${TESSEL_INSTALL_DOCDIR} OPTIONAL)

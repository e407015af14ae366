# Debian packages by CPack: the library, what programs are built with, the default tables, the tools
# and the documentation. scripts/package.sh makes them from a build whose prefix is /usr.
# The library's package is named after its binary interface, so that two may be installed at once.
get_target_property(soversion tessel SOVERSION)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessel)
set(CPACK_PACKAGE_CONTACT "The tessel developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development data docs)
if(TESSEL_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# 0.1.0-1, not 0.1.0: a package may be made again from the same version.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtessel${soversion})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS tessel-data)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library.")

set(exact_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtessel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libtessel${soversion} ${exact_version}, tessel-data")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers, and the files by which CMake and pkg-config find the library.")

set(CPACK_DEBIAN_DATA_PACKAGE_NAME tessel-data)
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DATA_DESCRIPTION
    "Default tables of elements, amino acids, modifications and quantitation labels.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tessel-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "tessel-data, python3")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "Programs that check a search before it runs and convert tables of modifications.")

set(CPACK_DEBIAN_DOCS_PACKAGE_NAME libtessel-doc)
set(CPACK_DEBIAN_DOCS_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCS_PACKAGE_SECTION doc)
set(CPACK_COMPONENT_DOCS_DESCRIPTION "Documentation and example programs.")

include(CPack)

# The Debian package: `cmake --build --preset default --target package` makes
# kelmasn_VERSION_ARCH.deb of everything `cmake --install` puts into a prefix, under /usr. Its
# version is the project's.

# The licence goes with every installed tree, where a Debian package keeps it.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelmasn)
set(CPACK_PACKAGE_VENDOR "The kelmasn developers")
set(CPACK_PACKAGE_CONTACT "The kelmasn developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_PACKAGE_NAME kelmasn)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The kelmasn developers")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
# A Debian control file has no licence field: the description names it, and the package carries
# the licence text as /usr/share/doc/kelmasn/copyright.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "${PROJECT_DESCRIPTION}
kelmasn turns the plain C records of an access-control product into ASN.1 DER
byte strings behind a four-byte header, and reads them back. The package holds
the shared and static libraries, the headers, the pkg-config file, the CMake
package and the kelmasn command-line tool.
Licence: MIT.")
# The package declares the shared library it provides (its SONAME) for packages that link it.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
find_program(KELMASN_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(KELMASN_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6")
endif()

# The packaged binaries carry no debug information, and with it no path of the machine that built
# them: the shared library and the tool are stripped, the static library loses its debug sections
# only (its symbol table is what linking needs). A build with sanitizers still names its sources
# in their instrumentation: the package to ship comes from a build without them.
set(CPACK_STRIP_FILES ON)
set(CPACK_KELMASN_STRIP ${CMAKE_STRIP})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/strip-static-debug.cmake)

include(CPack)

# What `cmake --install` puts where, and the ZIP that `cpack` makes of it.
include(CMakePackageConfigHelpers)

# A folder of its own below include/: the headers' folders ("rules", "tree") have everyday names.
set(package_headers include/dregsweep)
set(package_cmake lib/cmake/Dregsweep)
set(package_documents share/doc/dregsweep)
set(package_data share/dregsweep)

install(TARGETS dregsweep_headers Dregsweep EXPORT DregsweepTargets
    RUNTIME DESTINATION bin
    ARCHIVE DESTINATION lib
    FILE_SET HEADERS DESTINATION ${package_headers})
install(TARGETS dsw RUNTIME DESTINATION bin)
install(EXPORT DregsweepTargets NAMESPACE Dregsweep:: DESTINATION ${package_cmake})

configure_package_config_file(
    cmake/DregsweepConfig.cmake.in DregsweepConfig.cmake INSTALL_DESTINATION ${package_cmake})
write_basic_package_version_file(DregsweepConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/DregsweepConfig.cmake ${CMAKE_BINARY_DIR}/DregsweepConfigVersion.cmake
    DESTINATION ${package_cmake})

install(FILES README.md CHANGELOG.md SECURITY.md THIRD-PARTY-NOTICES.md DESTINATION ${package_documents})
install(DIRECTORY docs/ DESTINATION ${package_documents}/docs)
install(DIRECTORY samples examples DESTINATION ${package_data})

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME dregsweep)
set(CPACK_PACKAGE_VENDOR "Dregsweep")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Junk-file cleaning engine for 64-bit Windows")
set(CPACK_SYSTEM_NAME win64)
set(CPACK_STRIP_FILES ON)
include(CPack)

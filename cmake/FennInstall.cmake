# What a host gets: the three shared libraries, the five public headers and a package for find_package. The static
# library and the objects are for this repository's own programs and are never installed.

include(CMakePackageConfigHelpers)

set(fennPackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/fenn_surrogatemodel_kriging)

# Two namespaces need two export sets.
set_target_properties(morvel_exception PROPERTIES EXPORT_NAME exception)
set_target_properties(fenn_surrogatemodel_common PROPERTIES EXPORT_NAME surrogatemodel_common)
set_target_properties(fenn_surrogatemodel_kriging PROPERTIES EXPORT_NAME surrogatemodel_kriging)
install(TARGETS morvel_exception EXPORT morvel_exception_targets)
install(TARGETS fenn_surrogatemodel_common fenn_surrogatemodel_kriging EXPORT fenn_surrogatemodel_targets)
install(EXPORT morvel_exception_targets
    NAMESPACE morvel::
    FILE morvel_exceptionTargets.cmake
    DESTINATION ${fennPackageDir})
install(EXPORT fenn_surrogatemodel_targets
    NAMESPACE fenn::
    FILE fenn_surrogatemodelTargets.cmake
    DESTINATION ${fennPackageDir})

foreach(header
        surrogatemodel_common/SurrogateModelInterface.h
        surrogatemodel_common/exception/ExceptionBase.h
        surrogatemodel_kriging/KrigingSurrogateModel.h
        surrogatemodel_kriging/Normalizer.h
        surrogatemodel_kriging/SurrogateModelDataBlock.h)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fenn/${folder})
endforeach()

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/fenn_surrogatemodel_krigingConfig.cmake.in
    ${PROJECT_BINARY_DIR}/fenn_surrogatemodel_krigingConfig.cmake
    INSTALL_DESTINATION ${fennPackageDir}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/fenn_surrogatemodel_krigingConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/fenn_surrogatemodel_krigingConfig.cmake
    ${PROJECT_BINARY_DIR}/fenn_surrogatemodel_krigingConfigVersion.cmake
    DESTINATION ${fennPackageDir})

# For builds without CMake. The prefix is found from where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH prefixFromPkgConfig "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" fennPkgConfigPrefix "\${pcfiledir}/${prefixFromPkgConfig}")
configure_file(
    ${PROJECT_SOURCE_DIR}/cmake/fenn-surrogatemodel-kriging.pc.in
    ${PROJECT_BINARY_DIR}/fenn-surrogatemodel-kriging.pc
    @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/fenn-surrogatemodel-kriging.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png")

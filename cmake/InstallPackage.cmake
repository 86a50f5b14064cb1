# What lets other projects find the installed libraries: a CMake package with the components fitting
# (neither Qt nor VTK) and surrogatemodel, and files for pkg-config. Nothing in them names the prefix.
include(CMakePackageConfigHelpers)
set(cmake_folder "${CMAKE_INSTALL_LIBDIR}/cmake/surrogatemodel")
set(generated "${PROJECT_BINARY_DIR}/package")

foreach(set_and_namespace IN ITEMS fitting:mirel platform:mirel surrogatemodel:surrogatemodel)
    string(REPLACE ":" ";" set_and_namespace "${set_and_namespace}")
    list(GET set_and_namespace 0 set)
    list(GET set_and_namespace 1 namespace)
    install(EXPORT ${set} NAMESPACE ${namespace}:: DESTINATION "${cmake_folder}"
        FILE ${set}-targets.cmake COMPONENT development)
endforeach()

configure_package_config_file(cmake/surrogatemodel-config.cmake.in
    "${generated}/surrogatemodel-config.cmake" INSTALL_DESTINATION "${cmake_folder}"
    NO_SET_AND_CHECK_MACRO)
# Until 1.0 a minor version may change interfaces.
write_basic_package_version_file("${generated}/surrogatemodel-config-version.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${generated}/surrogatemodel-config.cmake"
    "${generated}/surrogatemodel-config-version.cmake" DESTINATION "${cmake_folder}"
    COMPONENT development)

# VTK has no files for pkg-config: ours say where it is.
get_target_property(vtk_headers VTK::CommonCore INTERFACE_INCLUDE_DIRECTORIES)
list(TRANSFORM vtk_headers PREPEND "-I")
list(JOIN vtk_headers " " vtk_headers)
set(vtk_version "${VTK_MAJOR_VERSION}.${VTK_MINOR_VERSION}")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" OUTPUT_VARIABLE relative_prefix)
foreach(name IN ITEMS mirel-fitting surrogatemodel)
    configure_file("cmake/${name}.pc.in" "${generated}/${name}.pc" @ONLY)
    install(FILES "${generated}/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)
endforeach()

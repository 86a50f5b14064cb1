# Debian packages by cpack, from the preset "package" (scripts/package.sh): the fitting libraries, all
# libraries, what is needed to build with them, the program, the Python package.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    return()
endif()
find_program(SURROGATE_GZIP gzip REQUIRED)
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(SURROGATE_PACKAGE_MAINTAINER "The authors of the surrogate-model library <surrogatemodel@example.org>"
    CACHE STRING "Who maintains the Debian packages: NAME <ADDRESS>")
set(CPACK_PACKAGE_CONTACT "${SURROGATE_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The changelog of the package says where that of the program is.
set(changelog "${PROJECT_BINARY_DIR}/package/changelog")
configure_file(cmake/debian/changelog.in "${changelog}" @ONLY)
execute_process(COMMAND "${SURROGATE_GZIP}" -9nkf "${changelog}" COMMAND_ERROR_IS_FATAL ANY)

# surrogate_debian_package(COMPONENT NAME SECTION DEPENDS SUMMARY)
function(surrogate_debian_package component name section depends summary)
    string(TOUPPER "${component}" upper)
    string(JOIN "\n" text "${summary}"
        "Surrogate models replace an expensive simulation or experiment by a cheap"
        "formula fitted to its cases: response surfaces by least squares, Kriging by"
        "restricted maximum likelihood, with prediction intervals and figures of how"
        "good they are.")
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_COMPONENTS_ALL "${CPACK_COMPONENTS_ALL}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${name}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${section}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${text}" PARENT_SCOPE)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/copyright" "${changelog}.gz"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" COMPONENT ${component})
endfunction()

# Beside the calls of ldconfig that CPack writes: dpkg runs the trigger once for all packages.
file(WRITE "${PROJECT_BINARY_DIR}/package/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_FITTING_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")

set(same "(= ${PROJECT_VERSION})")
surrogate_debian_package(fitting libmirel-fitting0 libs ""
    "fitted surrogate models: Kriging and response surfaces")
surrogate_debian_package(libraries libsurrogatemodel0 libs "libmirel-fitting0 ${same}"
    "surrogate models for applications with undo, signals and tables")
surrogate_debian_package(development libsurrogatemodel-dev libdevel
    "libmirel-fitting0 ${same}, libsurrogatemodel0 ${same}, libboost-dev, nlohmann-json3-dev, qtbase5-dev, libvtk9-dev"
    "development files of the surrogate-model libraries")
surrogate_debian_package(programs surrogatemodel science
    "libmirel-fitting0 ${same}, libsurrogatemodel0 ${same}, fonts-dejavu-core"
    "surrogate models of tables of cases on the command line")
if(TARGET surrogate_python)
    surrogate_debian_package(python python3-surrogatemodel python
        "libmirel-fitting0 ${same}, python3 (>= 3.11), python3 (<< 3.12), python3-numpy, python3-sklearn"
        "surrogate models as scikit-learn estimators")
endif()
install(FILES README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/surrogatemodel-doc"
    COMPONENT documents)
install(DIRECTORY docs examples DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/surrogatemodel-doc"
    COMPONENT documents)
surrogate_debian_package(documents surrogatemodel-doc doc "" "documents of the surrogate-model libraries")
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_SHLIBDEPS OFF)
include(CPack)

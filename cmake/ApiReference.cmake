# The API reference: HTML of the comments in the public headers, target api_reference. Each warning of
# doxygen is an error, so that every public member needs a comment.
find_package(Doxygen 1.9.4 QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()
get_property(public_headers GLOBAL PROPERTY SURROGATE_PUBLIC_HEADERS)
set(DOXYGEN_PROJECT_NAME "surrogatemodel")
set(DOXYGEN_PROJECT_NUMBER "${PROJECT_VERSION}")
set(DOXYGEN_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/api-reference")
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
# Without it a header is left out with all its functions, commented or not.
set(DOXYGEN_INPUT_FILTER "sed '1s|^|/** @file */ |'")
# The comment before @{ is that of each member up to @}.
set(DOXYGEN_DISTRIBUTE_GROUP_DOC YES)
# What holds for the arguments of all functions stands in the comment of the class.
set(DOXYGEN_WARN_IF_INCOMPLETE_DOC NO)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "vtkAbstractTypeMacro(type,base)=" "SURROGATEMODEL_EXPORT=")
foreach(library IN ITEMS ANALYZERCOMMON DATAMANAGEMENT DATAPIPELINE FITTING MODELEXPORT PROPERTY
        SERIALIZATION SIGNALS)
    list(APPEND DOXYGEN_PREDEFINED "MIREL_${library}_EXPORT=")
endforeach()
set(DOXYGEN_STRIP_FROM_PATH "${PROJECT_SOURCE_DIR}/platform" "${PROJECT_SOURCE_DIR}/analyzer"
    "${PROJECT_SOURCE_DIR}")
set(DOXYGEN_STRIP_FROM_INC_PATH ${DOXYGEN_STRIP_FROM_PATH})
doxygen_add_docs(api_reference ${public_headers})
if(BUILD_TESTING AND NOT SURROGATE_TEST_PREFIX)
    add_test(NAME documents.ApiReference
        COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile.api_reference")
endif()

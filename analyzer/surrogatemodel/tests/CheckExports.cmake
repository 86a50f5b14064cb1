# cmake -D NM=... -D LIBRARY=... -P CheckExports.cmake
# Other libraries see the classes that users are meant to see, and nothing of how they work.
execute_process(COMMAND "${NM}" -DC --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE symbols RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "The symbols of ${LIBRARY} cannot be listed.")
endif()

foreach(class IN ITEMS
        InterpolationPointsInterface
        InterpolationVariablesAbstract
        InterpolationVariablesAbstract::DistributedPoints
        InterpolationVariablesInterface
        SurrogateModelFactory
        SurrogateModelInputTableBuilder
        SurrogateModelManager
        SurrogateModelManagerInterface
        SurrogateModelManagerSerializer
        SurrogateModelQueryToTable
        SurrogateModelUserDist
        SurrogateModelUserDistCollection
        SurrogateModelUserDistCollectionSerializer)
    if(NOT symbols MATCHES " typeinfo for ${class}\n")
        message(SEND_ERROR "${class} is to be exported with its type, but is not.")
    endif()
endforeach()
if(NOT symbols MATCHES "SurfaceCoefficientExporter::SurfaceCoefficientExporter")
    message(SEND_ERROR "SurfaceCoefficientExporter is to be exported, but is not.")
endif()

string(JOIN "|" internal_names "SourcePoints" "::Impl" "QueryExecutive" "anonymous namespace"
    "GenericSerializer" "NamedValueTranslator" "boost::bimaps")
string(REGEX MATCHALL "[^\n]*(${internal_names})[^\n]*" internal "${symbols}")
foreach(symbol IN LISTS internal)
    message(SEND_ERROR "Not to be exported: ${symbol}")
endforeach()

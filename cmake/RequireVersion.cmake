# surrogate_require_version(NAME FLOOR HEADER MACRO): stops where a library that has no package file
# for CMake is older than FLOOR; its header defines MACRO as "1.2.3", or as a hexadecimal number whose
# digits are the version's.
function(surrogate_require_version name floor header macro)
    set(version "")
    file(STRINGS "${header}" lines REGEX "#define[ \t]+${macro}[ \t]")
    if(lines MATCHES "${macro}[ \t]+\"([0-9.]+)\"")
        set(version "${CMAKE_MATCH_1}")
    elseif(lines MATCHES "${macro}[ \t]+0x([0-9])([0-9])([0-9])")
        set(version "${CMAKE_MATCH_1}.${CMAKE_MATCH_2}.${CMAKE_MATCH_3}")
    endif()
    if(NOT version VERSION_GREATER_EQUAL floor)
        message(FATAL_ERROR "${name} ${floor} or newer is needed; ${header} has \"${version}\".")
    endif()
endfunction()

# Finds libcsv, a parser for comma-separated values (https://github.com/rgamble/libcsv).
#
# Sets LibCsv_FOUND and defines the target LibCsv::LibCsv.

find_path(LibCsv_INCLUDE_DIR NAMES csv.h)
find_library(LibCsv_LIBRARY NAMES csv)
mark_as_advanced(LibCsv_INCLUDE_DIR LibCsv_LIBRARY)

if(LibCsv_INCLUDE_DIR AND EXISTS "${LibCsv_INCLUDE_DIR}/csv.h")
    file(STRINGS "${LibCsv_INCLUDE_DIR}/csv.h" libcsv_version_lines REGEX "#define CSV_(MAJOR|MINOR|RELEASE) ")
    list(TRANSFORM libcsv_version_lines REPLACE "[^0-9]" "")
    list(JOIN libcsv_version_lines "." LibCsv_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
    LibCsv
    REQUIRED_VARS LibCsv_LIBRARY LibCsv_INCLUDE_DIR
    VERSION_VAR LibCsv_VERSION
)

if(LibCsv_FOUND AND NOT TARGET LibCsv::LibCsv)
    add_library(LibCsv::LibCsv UNKNOWN IMPORTED)
    set_target_properties(
        LibCsv::LibCsv PROPERTIES IMPORTED_LOCATION "${LibCsv_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES
                                                                        "${LibCsv_INCLUDE_DIR}"
    )
endif()

# Finds libical, a parser for iCalendar (https://libical.github.io/libical).
#
# Sets LibIcal_FOUND and defines the target LibIcal::LibIcal.

find_path(LibIcal_INCLUDE_DIR NAMES libical/ical.h)
find_library(LibIcal_LIBRARY NAMES ical)
mark_as_advanced(LibIcal_INCLUDE_DIR LibIcal_LIBRARY)

if(LibIcal_INCLUDE_DIR AND EXISTS "${LibIcal_INCLUDE_DIR}/libical/ical.h")
    file(STRINGS "${LibIcal_INCLUDE_DIR}/libical/ical.h" libical_version_line REGEX "#define ICAL_VERSION ")
    string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" LibIcal_VERSION "${libical_version_line}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
    LibIcal
    REQUIRED_VARS LibIcal_LIBRARY LibIcal_INCLUDE_DIR
    VERSION_VAR LibIcal_VERSION
)

if(LibIcal_FOUND AND NOT TARGET LibIcal::LibIcal)
    add_library(LibIcal::LibIcal UNKNOWN IMPORTED)
    set_target_properties(
        LibIcal::LibIcal PROPERTIES IMPORTED_LOCATION "${LibIcal_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES
                                                                           "${LibIcal_INCLUDE_DIR}"
    )
endif()

# Install rules of the package: one configuration file for find_package(VeskTimeline) and the export sets of all libraries.

include(CMakePackageConfigHelpers)

set(vesktimeline_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VeskTimeline)

install(EXPORT VeskTimelineTargets NAMESPACE VeskTimeline:: DESTINATION ${vesktimeline_cmake_dir})
# A site with platform libraries of its own brings their packages, too.
foreach(export_set IN ITEMS Hox VeskWidgets)
    if(VESKTIMELINE_HAS_OWN_${export_set})
        install(EXPORT ${export_set}Targets NAMESPACE ${export_set}:: DESTINATION ${vesktimeline_cmake_dir})
    endif()
endforeach()

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/VeskTimelineConfig.cmake.in ${PROJECT_BINARY_DIR}/VeskTimelineConfig.cmake
    INSTALL_DESTINATION ${vesktimeline_cmake_dir}
)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/VeskTimelineConfigVersion.cmake COMPATIBILITY SameMajorVersion
)
install(FILES ${PROJECT_BINARY_DIR}/VeskTimelineConfig.cmake ${PROJECT_BINARY_DIR}/VeskTimelineConfigVersion.cmake
        DESTINATION ${vesktimeline_cmake_dir}
)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

# vesktimeline_target(<target>): the settings that every target of the project shares. Language level, visibility,
# warnings, sanitizers and, for libraries, the version; they end at this project's own targets.

set(VESKTIMELINE_SOVERSION 1)

function(vesktimeline_warnings target)
    target_compile_options(
        ${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsuggest-override -Wnon-virtual-dtor
    )
    if(VESKTIMELINE_DEVELOPER_WARNINGS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

function(vesktimeline_sanitizers target)
    if(VESKTIMELINE_SANITIZE)
        # Qt's containers compare empty arrays with memcmp() on null pointers, in headers and so in our code.
        target_compile_options(
            ${target} PRIVATE -fsanitize=${VESKTIMELINE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
                              -fno-sanitize=nonnull-attribute
        )
        target_link_options(${target} PRIVATE -fsanitize=${VESKTIMELINE_SANITIZE})
    endif()
endfunction()

function(vesktimeline_common target)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON CXX_EXTENSIONS OFF)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_FOREACH)
    vesktimeline_warnings(${target})
    vesktimeline_sanitizers(${target})
endfunction()

function(vesktimeline_target target)
    vesktimeline_common(${target})
    target_compile_definitions(
        ${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
                          QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    )
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
    endif()
    if(type STREQUAL "SHARED_LIBRARY")
        # An installed library finds the others of the project beside it, in whatever prefix.
        set_target_properties(
            ${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${VESKTIMELINE_SOVERSION} INSTALL_RPATH "$ORIGIN"
        )
        # The sanitizers' own symbols come with the program.
        if(NOT VESKTIMELINE_SANITIZE)
            target_link_options(${target} PRIVATE -Wl,--no-undefined)
        endif()
    endif()
endfunction()

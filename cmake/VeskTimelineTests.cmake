# vesktimeline_add_test(<name> SOURCES <file>... LIBRARIES <target>... [XSERVER] [LABELS <label>...])
#
# Adds a Qt Test program. It runs on the offscreen platform unless XSERVER is given: such a test is started by
# tests/x11/with_x_server.sh, which provides a display of its own with a window manager.

find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
enable_testing()

set(VESKTIMELINE_TEST_ENVIRONMENT
    "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/tests/config" "LC_ALL=C.UTF-8" "TZ=UTC" "QT_LOGGING_RULES=" "QT_SCALE_FACTOR=" "QT_STYLE_OVERRIDE=Fusion"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
    "ASAN_OPTIONS=detect_stack_use_after_return=1:new_delete_type_mismatch=1"
    "UBSAN_OPTIONS=print_stacktrace=1"
)

function(vesktimeline_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "XSERVER" "" "SOURCES;LIBRARIES;LABELS")
    add_executable(${name} ${arg_SOURCES})
    vesktimeline_common(${name})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} Qt6::Test)
    if(arg_XSERVER)
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/x11/with_x_server.sh $<TARGET_FILE:${name}>)
        set(platform xcb)
        list(APPEND arg_LABELS xserver)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set(platform offscreen)
    endif()
    set_tests_properties(
        ${name} PROPERTIES ENVIRONMENT "${VESKTIMELINE_TEST_ENVIRONMENT};QT_QPA_PLATFORM=${platform}" LABELS
                           "${arg_LABELS}" TIMEOUT 300
    )
endfunction()

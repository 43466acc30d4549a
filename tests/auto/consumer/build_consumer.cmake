# Builds a foreign project against this one and runs it. find_package: from a prefix that the project is installed to first.

function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGV}\nfailed with ${status}:\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${work})
set(arguments -D PROJECT_UNDER_TEST=${project_source})
if(way STREQUAL "find_package")
    run(${CMAKE_COMMAND} --install ${project_build} --prefix ${work}/prefix)
    set(arguments -D CMAKE_PREFIX_PATH=${work}/prefix)
endif()
run(
    ${CMAKE_COMMAND} -S ${source} -B ${work}/build -G Ninja -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_COMPILER=${compiler}
    -D CMAKE_CXX_COMPILER_LAUNCHER=${launcher} ${arguments}
)
run(${CMAKE_COMMAND} --build ${work}/build --parallel 2)
run(${work}/build/consumer)

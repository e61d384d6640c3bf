# add_recording_test(name [LABELS label...] [SOURCES file...] [LIBRARIES target...] [ENVIRONMENT name=value...])
#
# Builds name.cpp into a test that needs no display and cannot hang. It links the plug-in's own objects unless LIBRARIES
# says otherwise: the tests of the host, the station and the apps use the plug-in as a file.
function(add_recording_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LABELS;SOURCES;LIBRARIES;ENVIRONMENT")
    if(NOT arg_LIBRARIES)
        set(arg_LIBRARIES recording-core)
    endif()
    add_executable(${name} ${name}.cpp ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}")
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} recording-test-support Qt6::Test recording-options)
    precompile_headers(${name})
    if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
        # Newer QTRY_* macros convert within themselves. A source's options come after those of its target.
        set_source_files_properties(${name}.cpp ${arg_SOURCES} PROPERTIES COMPILE_OPTIONS -Wno-conversion)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT 300
        LABELS "${arg_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;RECORDING_STATION_LINGER=0;XDG_DATA_HOME=${CMAKE_CURRENT_BINARY_DIR}/${name}.data;XDG_CONFIG_HOME=${CMAKE_CURRENT_BINARY_DIR}/${name}.config;${RECORDING_TEST_ENVIRONMENT};${arg_ENVIRONMENT}")
endfunction()

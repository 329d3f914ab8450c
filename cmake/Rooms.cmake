# One static library a room: all that stands in its folder. LINK names what it may see.
function(quorvane_room name)
    cmake_parse_arguments(ROOM "" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h *.qrc)
    add_library(quorvane_${name} STATIC ${sources})
    target_include_directories(quorvane_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(quorvane_${name} PUBLIC ${ROOM_LINK} PRIVATE quorvane_options)
    quorvane_precompile_for(quorvane_${name} ${ROOM_LINK})
endfunction()

# One Qt Test executable a class or concern. LABEL is unit, gui, x11 or slow; an x11 test runs on an
# X server of its own with a window manager.
function(quorvane_test name)
    cmake_parse_arguments(TEST "" "LABEL;TIMEOUT" "SOURCES;LINK" ${ARGN})
    if(NOT TEST_SOURCES)
        set(TEST_SOURCES ${name}.cpp)
    endif()
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 300)
    endif()
    add_executable(${name} ${TEST_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE
        QUORVANE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
        QUORVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${TEST_LINK} Qt6::Test quorvane_options)
    quorvane_precompile_for(${name} ${TEST_LINK})
    if(TEST_LABEL STREQUAL "x11")
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-x11 $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    quorvane_test_environment(${name} ${TEST_LABEL} ${TEST_TIMEOUT})
endfunction()

# Each test has a home of its own, so that no setting or file of the person who runs it counts, and no
# bus but those that it starts: the program would meet the one that the person runs.
function(quorvane_test_environment name label timeout)
    set(home ${CMAKE_BINARY_DIR}/tests/home/${name})
    file(MAKE_DIRECTORY ${home})
    set(environment
        LC_ALL=C.UTF-8 TZ=UTC HOME=${home} XDG_CONFIG_HOME=${home}/config XDG_STATE_HOME=${home}/state
        XDG_DATA_HOME=${home}/data XDG_CACHE_HOME=${home}/cache
        DBUS_SESSION_BUS_ADDRESS=unix:path=${home}/none DBUS_SYSTEM_BUS_ADDRESS=unix:path=${home}/none
        LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp
        UBSAN_OPTIONS=print_stacktrace=1)
    if(NOT label STREQUAL "x11")
        list(APPEND environment QT_QPA_PLATFORM=offscreen)
    endif()
    set_tests_properties(${name} PROPERTIES
        LABELS ${label} TIMEOUT ${timeout} ENVIRONMENT "${environment}")
endfunction()

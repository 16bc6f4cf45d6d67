# What tests need besides the sources. Where something is missing, the tests that need it are left out with a message;
# with ZQX_REQUIRE_ALL_TESTS, as ./dev sets it, nothing is built before all of it is there.

# zqx_tests_lack(WHAT SUBJECT): the tests of SUBJECT cannot be made or run, since WHAT is missing.
function(zqx_tests_lack what subject)
    if(ZQX_REQUIRE_ALL_TESTS)
        message(FATAL_ERROR "${what} is missing, which the tests of ${subject} need.")
    endif()
    message(STATUS "Tests of ${subject} are left out: ${what} is missing")
endfunction()

# zqx_find_for_tests(VARIABLE SUBJECT PROGRAM...): are all the programs there that the tests of SUBJECT run?
function(zqx_find_for_tests variable subject)
    set(found ON)
    foreach(program IN LISTS ARGN)
        find_program(ZQX_TESTS_${program} ${program})
        mark_as_advanced(ZQX_TESTS_${program})
        if(NOT ZQX_TESTS_${program})
            zqx_tests_lack(${program} ${subject})
            set(found OFF)
        endif()
    endforeach()
    set(${variable} ${found} PARENT_SCOPE)
endfunction()

# zqx_add_tests_with(FOLDER SUBJECT PROGRAM...): the tests in FOLDER, if the programs are there.
function(zqx_add_tests_with folder subject)
    zqx_find_for_tests(found ${subject} ${ARGN})
    if(found)
        add_subdirectory(${folder})
    endif()
endfunction()

# zqx_add_test_target(TARGET FOLDER...): builds whatever belongs to the tests in these folders.
function(zqx_add_test_target target)
    add_custom_target(${target})
    foreach(folder IN LISTS ARGN)
        get_property(programs DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
        if(programs)
            add_dependencies(${target} ${programs})
        endif()
    endforeach()
endfunction()

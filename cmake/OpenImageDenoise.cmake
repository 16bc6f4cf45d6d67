# The denoising library is bound when it is first used, never linked. This puts the one of ZQX_OIDN_DIR beside ours in
# the build tree, where it is looked for, and installs it with ours when asked.
set(ZQX_OIDN_DIR "" CACHE PATH "Folder with the shared libraries of OpenImageDenoise, for tests and demo")
option(ZQX_WITHOUT_OIDN "Leave out the tests that need OpenImageDenoise" OFF)
option(ZQX_INSTALL_OIDN "Install the libraries of ZQX_OIDN_DIR beside ours" OFF)

set(zqx_oidn_libraries)
if(ZQX_OIDN_DIR)
    file(GLOB zqx_oidn_libraries ${ZQX_OIDN_DIR}/*OpenImageDenoise* ${ZQX_OIDN_DIR}/*tbb*)
    if(NOT zqx_oidn_libraries MATCHES "OpenImageDenoise")
        message(FATAL_ERROR "ZQX_OIDN_DIR is ${ZQX_OIDN_DIR}, where there is no library of OpenImageDenoise.")
    endif()
elseif(ZQX_BUILD_TESTS AND NOT ZQX_WITHOUT_OIDN)
    set(without_oidn "Build with ./dev, which fetches it, or name its folder with -DZQX_OIDN_DIR=...")
    if(ZQX_REQUIRE_ALL_TESTS)
        message(FATAL_ERROR "The tests need OpenImageDenoise. ${without_oidn}, or leave its tests out with "
                            "-DZQX_WITHOUT_OIDN=ON.")
    endif()
    message(STATUS "Tests of denoising with the real library are left out: OpenImageDenoise is missing. ${without_oidn}")
endif()
if(ZQX_INSTALL_OIDN AND NOT zqx_oidn_libraries)
    message(FATAL_ERROR "ZQX_INSTALL_OIDN needs ZQX_OIDN_DIR: ./dev fetches the libraries to build/oidn/lib.")
endif()

# zqx_place_oidn(TARGET): puts the libraries beside the target's file.
function(zqx_place_oidn target)
    if(zqx_oidn_libraries)
        add_custom_command(TARGET ${target} POST_BUILD
            COMMAND ${CMAKE_COMMAND} -E copy_if_different ${zqx_oidn_libraries} $<TARGET_FILE_DIR:${target}>
            COMMENT "Placing OpenImageDenoise beside $<TARGET_FILE_NAME:${target}>"
            VERBATIM)
    endif()
endfunction()

if(ZQX_INSTALL AND ZQX_INSTALL_OIDN)
    install(FILES ${zqx_oidn_libraries} DESTINATION ${ZQX_INSTALL_LIBRARY_DIR} COMPONENT runtime)
endif()

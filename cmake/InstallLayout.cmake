# Where things are installed, which part of the package they belong to, and how installed files find each other wherever
# the tree is moved to.
#
# Everything installed names a component; "cmake --install" without --component installs them all:
#   runtime      shared libraries: the engine and the platform
#   runtime_pictures, runtime_tools
#                the shared libraries for picture files, and for what is done with many
#   development  headers, link names, what CMake and pkg-config find the libraries by
#   tools        the program and what belongs to it: helpers, manual pages, completions, schema
#   docs         what people read
#
#   zqx_install(zqx_img runtime)
#   zqx_install(zqx-img tools)
#   zqx_install(zqx-img-helper tools DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/zqx-img)
#   install(FILES zqx-img.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
#   install(FILES _zqx-img DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)
if(NOT ZQX_INSTALL AND NOT ZQX_BUILD_PROGRAM) # nothing is installed: the cache is left alone
    set(zqx_libexec_from_bin ../libexec)
    return()
endif()
include(GNUInstallDirs)
file(RELATIVE_PATH zqx_libexec_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBEXECDIR})

if(WIN32)
    set(ZQX_INSTALL_LIBRARY_DIR ${CMAKE_INSTALL_BINDIR}) # where the loader looks
else()
    set(ZQX_INSTALL_LIBRARY_DIR ${CMAKE_INSTALL_LIBDIR})
endif()

# Of the folder for headers, the part for those of the runtimes (tov, qutil, rhm, gdi).
set(ZQX_PLATFORM_INCLUDE_FOLDER zqx-platform-${PROJECT_VERSION_MAJOR})

# zqx_install(TARGET COMPONENT [DESTINATION FOLDER]): a shared library, or a program, which goes to FOLDER or else where
# programs go. Libraries become targets of the CMake package.
function(zqx_install target component)
    if(NOT ZQX_INSTALL)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 2 arg "" DESTINATION "")
    if(NOT arg_DESTINATION)
        set(arg_DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        zqx_find_libraries_from(${target} ${arg_DESTINATION})
        install(TARGETS ${target} RUNTIME DESTINATION ${arg_DESTINATION} COMPONENT ${component})
    else()
        zqx_find_libraries_from(${target} ${CMAKE_INSTALL_LIBDIR})
        set(export ${target}) # a set of targets for each library, the platform's with the engine's
        if(target STREQUAL "zqx_platform")
            set(export zqx_img)
        endif()
        install(TARGETS ${target} EXPORT ${export}
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component}
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_COMPONENT development
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
            INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    endif()
endfunction()

# zqx_find_libraries_from(TARGET FOLDER): the loader finds our libraries for the target's file in FOLDER. Relative, so
# that the tree may be moved.
function(zqx_find_libraries_from target folder)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
    file(RELATIVE_PATH libraries ${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
    if(APPLE)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "@loader_path/${libraries}")
    elseif(libraries STREQUAL "")
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    else()
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    endif()
endfunction()

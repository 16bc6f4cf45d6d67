# How a library is made here. Its sources are compiled once, as objects. From these come up to two libraries:
#   NAME           the library for other programs, shared or static (ZQX_STATIC): versioned, exporting what its map lists,
#                  installed with its headers and with what CMake (zqx::...) and pkg-config find it by
#   NAME_internal  an archive for our own program and tests, which also reach what is not exported
#
#   zqx_add_library(zqx_pictures
#       SOURCES codecs/Decode.cpp ...
#       PRIVATE zqx_text hwy::hwy                   what only the sources need
#       INTERNAL zqx::img FreeImage::FreeImage      makes NAME_internal; what its users need besides it
#       PUBLIC zqx::img                             what users of the library need besides it
#       VERSION 0.1.0                               without a version there is no library for others
#       DESCRIPTION "Reads and writes picture files"
#       EXPORT_MAP exports.map                      what leaves the shared library (Linux)
#       HEADERS zqx/pictures                        folders of include/
#       COMPONENT runtime_pictures                  of its installation, see InstallLayout.cmake
#       STATIC_FLAGS -lfreeimage)                   what pkg-config adds where the library is static
#
# What is special about some sources is set on the target NAME_objects. While these are compiled, NAME_BUILDING is defined
# in capitals; a static library and its users have ZQX_STATIC_LIBRARIES. Export.h of each library goes by both.

if(ZQX_STATIC)
    set(ZQX_LIBRARY_TYPE STATIC)
else()
    set(ZQX_LIBRARY_TYPE SHARED)
endif()

function(zqx_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "VERSION;DESCRIPTION;EXPORT_MAP;COMPONENT"
        "SOURCES;PRIVATE;INTERNAL;PUBLIC;HEADERS;STATIC_FLAGS")
    add_library(${name}_objects OBJECT ${arg_SOURCES})
    zqx_hide_symbols(${name}_objects)
    string(TOUPPER ${name} upper)
    target_compile_definitions(${name}_objects PRIVATE ${upper}_BUILDING)
    target_include_directories(${name}_objects PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name}_objects PRIVATE zqx_compile_options ${arg_PRIVATE} PUBLIC ${arg_INTERNAL} ${arg_PUBLIC})

    if(arg_INTERNAL)
        add_library(${name}_internal STATIC)
        target_sources(${name}_internal PRIVATE $<TARGET_OBJECTS:${name}_objects>)
        target_include_directories(${name}_internal PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
        target_link_libraries(${name}_internal PRIVATE zqx_compile_options ${arg_PRIVATE} PUBLIC ${arg_INTERNAL})
    endif()

    if(arg_VERSION)
        add_library(${name} ${ZQX_LIBRARY_TYPE})
        target_sources(${name} PRIVATE $<TARGET_OBJECTS:${name}_objects>)
        target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
        zqx_take_parts(arg_PRIVATE ${name} ${arg_PRIVATE})
        target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:zqx_compile_options> ${arg_PRIVATE} PUBLIC ${arg_PUBLIC})
        set(published)
        foreach(option IN ITEMS VERSION DESCRIPTION EXPORT_MAP COMPONENT PUBLIC HEADERS STATIC_FLAGS)
            if(DEFINED arg_${option})
                list(APPEND published ${option} ${arg_${option}})
            endif()
        endforeach()
        zqx_publish_library(${name} ${published})
    endif()
endfunction()

# zqx_hide_symbols(TARGET): the target's objects fit into shared libraries and export only what is marked for it.
function(zqx_hide_symbols target)
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# zqx_publish_library(TARGET VERSION ... DESCRIPTION ...): makes a library, zqx_NAME, ready for other programs, which
# link it as zqx::NAME. Options are those of zqx_add_library.
function(zqx_publish_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "VERSION;DESCRIPTION;EXPORT_MAP;COMPONENT" "PUBLIC;HEADERS;STATIC_FLAGS")
    string(REGEX REPLACE "^zqx_" "" short ${target})
    add_library(zqx::${short} ALIAS ${target})
    string(REGEX MATCH "^[0-9]+" major ${arg_VERSION})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${short}
        VERSION ${arg_VERSION}
        SOVERSION ${major})
    target_compile_features(${target} INTERFACE cxx_std_17)
    if(ZQX_STATIC)
        target_compile_definitions(${target} INTERFACE ZQX_STATIC_LIBRARIES)
    elseif(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        zqx_link_strictly(${target})
        if(arg_EXPORT_MAP)
            cmake_path(ABSOLUTE_PATH arg_EXPORT_MAP BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
            target_link_options(${target} PRIVATE -Wl,--version-script=${arg_EXPORT_MAP})
            set_target_properties(${target} PROPERTIES LINK_DEPENDS ${arg_EXPORT_MAP})
        endif()
    endif()
    if(ZQX_INSTALL)
        zqx_install(${target} ${arg_COMPONENT})
        foreach(folder IN LISTS arg_HEADERS)
            cmake_path(GET folder PARENT_PATH above)
            install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/${folder}
                DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${above} COMPONENT development)
        endforeach()
        zqx_install_pkg_config(${target} ${arg_VERSION} "${arg_DESCRIPTION}" "${arg_PUBLIC}" "${arg_STATIC_FLAGS}")
    endif()
endfunction()

# zqx_link_strictly(TARGET): a shared library that lacks something is noticed when it is linked. The sanitizers' own
# functions are the program's to bring with Clang.
function(zqx_link_strictly target)
    if(NOT (ZQX_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()

# zqx_install_pkg_config(TARGET VERSION DESCRIPTION PUBLIC STATIC_FLAGS): the file that pkg-config finds the library by.
# Folders in it are relative to the prefix, and the prefix to the file, so that the tree may be moved. Packages of the
# system stay where they are, and pkg-config leaves the system's own folders out of its answers if it recognises them.
function(zqx_install_pkg_config zqx_name zqx_version zqx_description public static_flags)
    file(RELATIVE_PATH zqx_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
    file(RELATIVE_PATH zqx_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
    if(ZQX_DEBIAN_PACKAGES)
        set(zqx_prefix ${CMAKE_INSTALL_PREFIX})
    else()
        file(RELATIVE_PATH zqx_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
        string(REGEX REPLACE "(.*[^/])/?$" "\${pcfiledir}/\\1" zqx_prefix ${zqx_prefix})
    endif()
    set(zqx_requires)
    foreach(library IN LISTS public)
        if(library MATCHES "^zqx::")
            get_target_property(version ${library} VERSION)
            string(REPLACE "::" "_" library ${library})
            list(APPEND zqx_requires "${library} = ${version}")
        endif()
    endforeach()
    list(JOIN zqx_requires ", " zqx_requires)
    set(zqx_libs)
    set(zqx_cflags)
    if(zqx_name STREQUAL "zqx_platform")
        set(zqx_cflags "-I\${includedir}/${ZQX_PLATFORM_INCLUDE_FOLDER}")
    endif()
    if(ZQX_STATIC)
        list(JOIN static_flags " " zqx_libs)
        string(APPEND zqx_cflags " -DZQX_STATIC_LIBRARIES")
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/packaging/pkgconfig/library.pc.in ${zqx_name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${zqx_name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

# zqx_add_part(NAME SOURCES ... [PUBLIC ...] [PRIVATE ...]): what several of our libraries share, for themselves alone.
function(zqx_add_part name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC;PRIVATE")
    add_library(${name} STATIC ${arg_SOURCES})
    zqx_hide_symbols(${name})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
    target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:zqx_compile_options> ${arg_PRIVATE} PUBLIC ${arg_PUBLIC})
endfunction()

# zqx_take_parts(VARIABLE NAME LIBRARY...): makes the parts among these a part of the static library NAME too, unless one
# below it has them already; what remains to be linked is put into VARIABLE. Shared libraries have them inside anyway.
function(zqx_take_parts variable name)
    set(others ${ARGN})
    if(ZQX_STATIC)
        list(FILTER others EXCLUDE REGEX "^zqx_")
        set(parts ${ARGN})
        list(FILTER parts INCLUDE REGEX "^zqx_")
        get_property(taken GLOBAL PROPERTY zqx_taken_parts)
        foreach(part IN LISTS parts)
            if(NOT part IN_LIST taken)
                target_sources(${name} PRIVATE $<TARGET_OBJECTS:${part}>)
                set_property(GLOBAL APPEND PROPERTY zqx_taken_parts ${part})
            endif()
        endforeach()
    endif()
    set(${variable} ${others} PARENT_SCOPE)
endfunction()

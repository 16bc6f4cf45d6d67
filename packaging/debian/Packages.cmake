# Debian packages by cpack, one for each install component. The build is configured by the preset "package": prefix /usr
# and folders as Debian has them, hardened, without run paths.

# The changelog tells the version of the packages, which is the project's and how often that was packaged, and who
# packages.
set(changelog ${CMAKE_CURRENT_LIST_DIR}/changelog)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changelog})
file(STRINGS ${changelog} newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^zqx-img \\(${PROJECT_VERSION}-([0-9a-z]+)\\) ")
    message(FATAL_ERROR "${changelog} begins with '${newest}', which is not of version ${PROJECT_VERSION}.")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_1})
file(STRINGS ${changelog} maintainer LIMIT_COUNT 1 REGEX "^ -- ")
string(REGEX REPLACE "^ -- (.*>)  .*$" "\\1" maintainer ${maintainer})
configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright.in copyright @ONLY)

set(zqx_components runtime development tools docs)
set(zqx_package_runtime libzqx-img${PROJECT_VERSION_MAJOR})
foreach(library IN ITEMS pictures tools)
    if(TARGET zqx_${library})
        get_target_property(soversion zqx_${library} SOVERSION)
        set(zqx_package_runtime_${library} libzqx-${library}${soversion})
        list(APPEND zqx_components runtime_${library})
    endif()
endforeach()
set(zqx_package_development libzqx-img-dev)
set(zqx_package_tools zqx-img)
set(zqx_package_docs libzqx-img-doc)

# What every package says of itself.
foreach(component IN LISTS zqx_components)
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${zqx_package_${component}})
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/copyright DESTINATION ${folder} COMPONENT ${component})
    install(FILES ${changelog} DESTINATION ${folder} RENAME changelog.Debian COMPONENT ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${zqx_package_${component}})
    set(CPACK_DEBIAN_${upper}_PACKAGE_PRIORITY optional)
endforeach()

set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "image grading, filtering and denoising (shared libraries)
zqx_img adjusts photographs and rendered pictures: colour grading in linear
light, 3D lookup tables, blur, sharpening and exact conversion between eleven
pixel formats, with the same results on every processor.

This package has the shared libraries. Denoising needs OpenImageDenoise, which
is looked for when it is first used.")

# Each of the other libraries needs what is below it, in the same version.
set(CPACK_COMPONENT_RUNTIME_PICTURES_DESCRIPTION "picture files for zqx_img (shared library)
zqx_pictures reads and writes picture files for programs that adjust them with
zqx_img: 8-bit, 16-bit and float pictures, with colour profiles, resolution and
metadata, and limits on what files of strangers may cost.

This package has the shared library.")
set(CPACK_COMPONENT_RUNTIME_TOOLS_DESCRIPTION "work on many pictures with zqx_img (shared library)
zqx_tools has what the program zqx-img does, for other programs: adjustments
from documents, runs over folders, histograms, comparisons, smaller versions,
contact sheets and lookup tables.

This package has the shared library.")
set(all_libraries "${zqx_package_runtime} ${same_version}")
foreach(library IN ITEMS pictures tools)
    if(TARGET zqx_${library})
        string(TOUPPER RUNTIME_${library} upper)
        set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION libs)
        set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
        set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers)
        set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${all_libraries}")
        string(APPEND all_libraries ", ${zqx_package_runtime_${library}} ${same_version}")
    endif()
endforeach()

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${all_libraries}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS ${zqx_package_docs})
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "image grading, filtering and denoising (development files)
zqx_img adjusts photographs and rendered pictures: colour grading in linear
light, 3D lookup tables, blur, sharpening and exact conversion between eleven
pixel formats, with the same results on every processor.

This package has what programs are built with: C++17 headers, a CMake package
and pkg-config files.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${zqx_package_runtime} ${same_version}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "adjusts photographs and rendered pictures from a shell
The program zqx-img grades pictures in linear light (exposure, contrast,
highlights, shadows, white balance, hue, saturation, gradient map), blurs,
sharpens and flips them, bakes the grading into 3D lookup tables for other
programs, and removes the noise of renders. The parameters are a small JSON
document.")

set(CPACK_DEBIAN_DOCS_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCS_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCS_DESCRIPTION "image grading, filtering and denoising (documentation)
zqx_img adjusts photographs and rendered pictures: colour grading in linear
light, 3D lookup tables, blur, sharpening and exact conversion between eleven
pixel formats, with the same results on every processor.

This package has the documentation of the libraries and of the program zqx-img:
the guide, the reference of all public headers as pages for a browser, and
examples that can be built.")

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL ${zqx_components})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGE_NAME zqx-img)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish_staging.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish_packages.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE zqx-img)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Where the program's dependency on our own libraries is looked up before they are packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/src/zqx/pictures ${PROJECT_BINARY_DIR}/src/zqx/tools
    ${PROJECT_BINARY_DIR}/platform)
include(CPack)

# Compile options of every target of the project, through one interface library.
add_library(zqx_compile_options INTERFACE)

if(MSVC)
    # /fp:precise neither reorders nor contracts floating point.
    target_compile_options(zqx_compile_options INTERFACE /W4 /utf-8 /fp:precise $<$<BOOL:${ZQX_WARNINGS_AS_ERRORS}>:/WX>)
    target_compile_definitions(zqx_compile_options INTERFACE NOMINMAX _CRT_SECURE_NO_WARNINGS)
else()
    # Results are the same bits everywhere: a product and a sum must never become a fused multiply-add.
    target_compile_options(zqx_compile_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Woverloaded-virtual -Wold-style-cast
        -ffp-contract=off $<$<BOOL:${ZQX_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

if(ZQX_COVERAGE)
    # Counted exactly, by several threads too.
    target_compile_options(zqx_compile_options INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(zqx_compile_options INTERFACE --coverage)
endif()

if(ZQX_SANITIZE)
    target_compile_options(zqx_compile_options INTERFACE
        -fsanitize=${ZQX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zqx_compile_options INTERFACE -fsanitize=${ZQX_SANITIZE})
endif()

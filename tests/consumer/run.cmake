# One way of using the library, as a user would, with main.cpp of this folder as the program.
# Arguments: WAY, BUILD_FOLDER, SOURCE_FOLDER (the whole tree), WORK_FOLDER, GENERATOR, COMPILER,
# LINK_FLAGS; for another system also TOOLCHAIN (a file), EMULATOR and SUFFIX (of programs).
set(installed ${WORK_FOLDER}/moved)
set(work ${WORK_FOLDER}/${WAY})
set(consumer_folder ${SOURCE_FOLDER}/tests/consumer)
file(REMOVE_RECURSE ${work})

function(run)
    cmake_parse_arguments(PARSE_ARGV 0 run "" "FOLDER;OUTPUT" "")
    if(NOT run_FOLDER)
        set(run_FOLDER ${WORK_FOLDER})
    endif()
    execute_process(COMMAND ${run_UNPARSED_ARGUMENTS} WORKING_DIRECTORY ${run_FOLDER}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(result)
        message(FATAL_ERROR "${run_UNPARSED_ARGUMENTS}\n${output}${errors}")
    endif()
    if(run_OUTPUT)
        set(${run_OUTPUT} ${output} PARENT_SCOPE)
    endif()
endfunction()

if(TOOLCHAIN)
    set(compiler_options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
else()
    set(compiler_options -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS})
endif()

function(configure_and_build source)
    run(${CMAKE_COMMAND} -S ${source} -B ${work}/build -G ${GENERATOR} ${compiler_options} ${ARGN})
    run(${CMAKE_COMMAND} --build ${work}/build)
endfunction()

function(run_consumer folder)
    run(${EMULATOR} ${work}/build/consumer${SUFFIX} FOLDER ${folder})
endfunction()

# The files below a folder, relative to it, must be these.
function(expect_files folder)
    file(GLOB_RECURSE files RELATIVE ${folder} ${folder}/*)
    list(SORT files)
    if(NOT files STREQUAL "${ARGN}")
        message(FATAL_ERROR "installed: ${files}, expected: ${ARGN}")
    endif()
endfunction()

# ---- Against the installed tree ----

# Installs to one place and moves the tree to another, where all others find it.
function(use_install)
    file(REMOVE_RECURSE ${WORK_FOLDER}/first ${installed})
    run(${CMAKE_COMMAND} --install ${BUILD_FOLDER} --prefix ${WORK_FOLDER}/first)
    file(RENAME ${WORK_FOLDER}/first ${installed})
    file(GLOB internal ${installed}/include/tessel/base ${installed}/include/tessel/platform)
    if(internal)
        message(FATAL_ERROR "internal headers are installed: ${internal}")
    endif()
    if(NOT EXISTS ${installed}/share/doc/tessel/README.md)
        message(FATAL_ERROR "the documentation is not installed")
    endif()
endfunction()

function(use_find_package)
    configure_and_build(${consumer_folder}/found -DCMAKE_PREFIX_PATH=${installed}
        -DTESSEL_INCLUDE_FOLDER=${installed}/include)
    run_consumer(${installed}/share/tessel)

    # The examples that are installed can be built where they lie.
    run(${CMAKE_COMMAND} -S ${installed}/share/doc/tessel/examples -B ${work}/examples
        -G ${GENERATOR} ${compiler_options} -DCMAKE_PREFIX_PATH=${installed})
    run(${CMAKE_COMMAND} --build ${work}/examples --target list_combinations)
endfunction()

function(use_pkg_config)
    find_program(PKG_CONFIG pkg-config)
    if(NOT PKG_CONFIG)
        message("SKIPPED: there is no pkg-config")
        return()
    endif()
    file(GLOB_RECURSE pc ${installed}/*/tessel.pc)
    get_filename_component(pc_folder ${pc} DIRECTORY)
    set(ENV{PKG_CONFIG_PATH} ${pc_folder})
    run(${PKG_CONFIG} --cflags --libs tessel OUTPUT flags)
    separate_arguments(flags UNIX_COMMAND ${flags})
    separate_arguments(link_flags UNIX_COMMAND "${LINK_FLAGS}")
    file(MAKE_DIRECTORY ${work})
    run(${COMPILER} -std=c++20 ${link_flags} ${consumer_folder}/main.cpp -o ${work}/consumer ${flags})
    run(${PKG_CONFIG} --variable=datadir tessel OUTPUT data)
    string(STRIP ${data} data)
    get_filename_component(library_folder ${pc_folder} DIRECTORY)
    set(ENV{LD_LIBRARY_PATH} ${library_folder})
    run(${work}/consumer FOLDER ${data})
endfunction()

# ---- As a part of another project ----

function(use_add_subdirectory)
    configure_and_build(${consumer_folder}/nested -DTESSEL_FOLDER=${SOURCE_FOLDER}
        -DEXPECTED_TYPE=STATIC_LIBRARY)
    run_consumer(${SOURCE_FOLDER}/data)
    run(${CMAKE_COMMAND} --install ${work}/build --prefix ${work}/installed)
    expect_files(${work}/installed bin/consumer)
endfunction()

# What is off in a nested build by default can be had.
function(use_fetch_content)
    configure_and_build(${consumer_folder}/nested -DTESSEL_FOLDER=${SOURCE_FOLDER} -DFETCH=ON
        -DTESSEL_INSTALL=ON -DBUILD_SHARED_LIBS=ON -DEXPECTED_TYPE=SHARED_LIBRARY)
    run_consumer(${SOURCE_FOLDER}/data)
    run(${CMAKE_COMMAND} --install ${work}/build --prefix ${work}/installed)
    file(GLOB_RECURSE library ${work}/installed/*/libtessel.so.*.*.*)
    if(NOT library OR NOT EXISTS ${work}/installed/include/tessel/tessel.h)
        message(FATAL_ERROR "the library is not installed with its parent")
    endif()
endfunction()

cmake_language(CALL use_${WAY})

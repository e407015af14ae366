# Installs the built library into a scratch folder, builds a small program against it and runs it.
# Arguments: BUILD_FOLDER, SOURCE_FOLDER, WORK_FOLDER, GENERATOR, COMPILER, LINK_FLAGS.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE text ERROR_VARIABLE text)
    if(result)
        message(FATAL_ERROR "${ARGN}\n${text}")
    endif()
endfunction()

file(REMOVE_RECURSE ${WORK_FOLDER})
run(${CMAKE_COMMAND} --install ${BUILD_FOLDER} --prefix ${WORK_FOLDER}/installed)
run(${CMAKE_COMMAND} -S ${SOURCE_FOLDER} -B ${WORK_FOLDER}/build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS}
    -DCMAKE_PREFIX_PATH=${WORK_FOLDER}/installed
    -DTESSEL_INCLUDE_FOLDER=${WORK_FOLDER}/installed/include)
run(${CMAKE_COMMAND} --build ${WORK_FOLDER}/build)
run(${WORK_FOLDER}/build/consumer)

file(GLOB_RECURSE internal ${WORK_FOLDER}/installed/include/tessel/base/*
     ${WORK_FOLDER}/installed/include/tessel/platform/*)
if(internal)
    message(FATAL_ERROR "internal headers are installed: ${internal}")
endif()

# What every target of the project is compiled with.
function(tessel_compile_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    # The order of floating-point steps is part of the results: no fused multiply-add.
    target_compile_options(${target} PRIVATE
        -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        $<$<BOOL:${TESSEL_WARNINGS_AS_ERRORS}>:-Werror>)
    if(TESSEL_SANITIZE)
        set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
        target_compile_options(${target} PRIVATE ${sanitizers} -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE ${sanitizers})
    elseif(TESSEL_SANITIZE_THREADS)
        target_compile_options(${target} PRIVATE -fsanitize=thread -O1)
        target_link_options(${target} PRIVATE -fsanitize=thread)
    endif()
    if(TESSEL_FUZZ)
        set(sanitizers -fsanitize=address,undefined,float-cast-overflow
            -fno-sanitize-recover=all)
        target_compile_options(${target} PRIVATE ${sanitizers} -fsanitize=fuzzer-no-link
            -fno-omit-frame-pointer)
        target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
        target_link_options(${target} PRIVATE ${sanitizers})
    endif()
endfunction()

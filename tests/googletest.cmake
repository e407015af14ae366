# GoogleTest for a system whose libraries are not installed here: built from its sources in
# TESSEL_GOOGLETEST_SOURCES, under the names that an installed one has.
set(sources ${TESSEL_GOOGLETEST_SOURCES}/googletest)
add_library(gtest STATIC EXCLUDE_FROM_ALL ${sources}/src/gtest-all.cc)
target_compile_features(gtest PUBLIC cxx_std_20)
target_include_directories(gtest SYSTEM PUBLIC ${sources}/include)
target_include_directories(gtest PRIVATE ${sources})
add_library(gtest_main STATIC EXCLUDE_FROM_ALL ${sources}/src/gtest_main.cc)
target_link_libraries(gtest_main PUBLIC gtest)
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest_main)

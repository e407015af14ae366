include(${CMAKE_CURRENT_LIST_DIR}/tessel-targets.cmake)

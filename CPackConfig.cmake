# Lets a plain `cpack` in this folder pack the release build.
include("${CMAKE_CURRENT_LIST_DIR}/build/release/CPackConfig.cmake")

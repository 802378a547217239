# What Debian asks of every program: no address that is known beforehand, no linkage table that can
# be written to, checked string functions, a stack that can't jump over its guard page, jumps and
# returns that only land where they may. It has to come before the targets.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
  # For Windows the linker has it all from packaging/windows/toolchain.cmake.
  add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
  return()
endif()

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The same sources give the same program in every folder.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection ORVEX_HAS_CF_PROTECTION)  # a thing of x86
add_compile_options(-fstack-clash-protection "$<$<BOOL:${ORVEX_HAS_CF_PROTECTION}>:-fcf-protection>")
if(NOT ORVEX_SANITIZE)
  add_compile_options(-fstack-protector-strong
    "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  add_link_options(-Wl,-z,relro,-z,now)
endif()

# CLI11 is headers alone. Beside them lie those of the machine that builds, which nothing may see.
set(headers ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${headers})
file(CREATE_LINK /usr/include/CLI ${headers}/CLI SYMBOLIC)
add_library(CLI11::CLI11 INTERFACE IMPORTED GLOBAL)
target_include_directories(CLI11::CLI11 INTERFACE ${headers})
set(CLI11_FOUND TRUE)

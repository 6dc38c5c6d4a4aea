# The target headers_alone checks that each header of the folders below compiles alone: for each header, it
# compiles a source that includes only this header, twice. scripts/lint.sh builds this target.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  bench/*.h conformance/*.h fuzz/*.h host/*.h jni/*.h tests/*.h)
# Skips headers that only clang can compile: two headers of the fuzz targets, and those of tests/platform.
list(FILTER headers EXCLUDE REGEX "^(fuzz/support/(fake_jni|target)[.]h|tests/platform/.*)$")

set(sources "")
foreach(header IN LISTS headers)
  set(source ${CMAKE_BINARY_DIR}/headers_alone/${header}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"@header@\"\n#include \"@header@\"\n" @ONLY)
  list(APPEND sources ${source})
endforeach()

add_library(headers_alone OBJECT EXCLUDE_FROM_ALL ${sources})
target_include_directories(headers_alone PRIVATE
  ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR}/conformance/generated ${CMAKE_BINARY_DIR}/fuzz/generated
  bench conformance conformance/kit fuzz/support host/algo host/probe host/trial jni tests tests/support)
target_compile_options(headers_alone PRIVATE -O0 -g0)
target_link_libraries(headers_alone PRIVATE orlu_options orlu_host_headers)

# Shared flags and options of this project, its JDK, and orlu_add_jar().

option(ORLU_TESTS "Build the tests" ON)
option(ORLU_BENCH "Build the benchmarks" OFF)
set(ORLU_SANITIZE "" CACHE STRING "Sanitizers to build with: \"\", \"address,undefined\" or \"thread\"")

if(NOT ANDROID)
  # Prefers Debian's JDK 17, even if another JDK is the machine's default.
  file(GLOB debian_jdk LIST_DIRECTORIES true /usr/lib/jvm/java-17-openjdk-*)
  if(debian_jdk)
    list(GET debian_jdk 0 JAVA_HOME)
  endif()
  find_package(Java 17 REQUIRED COMPONENTS Development)
endif()
if(ANDROID)
  # The NDK contains jni.h.
  set(JNI_INCLUDE_DIRS "")
elseif(CMAKE_CROSSCOMPILING)
  # This machine's JNI headers also fit the target; the VM library must be the target's.
  set(JNI_INCLUDE_DIRS ${JAVA_HOME}/include ${JAVA_HOME}/include/linux)
  file(GLOB JAVA_JVM_LIBRARY ${ORLU_ARM_ROOT}/usr/lib/jvm/java-17-openjdk-armhf/lib/server/libjvm.so)
else()
  find_package(JNI REQUIRED COMPONENTS JVM)
endif()
find_package(Threads REQUIRED)

add_library(orlu_options INTERFACE)
target_compile_options(orlu_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # Only clang's -Wall includes -Wmissing-braces. Single braces are more readable for std::array.
  -Wno-missing-braces
  # Rounds every operation separately, for equal results on all machines.
  -ffp-contract=off)
target_link_options(orlu_options INTERFACE LINKER:--no-undefined)

if(NOT ORLU_SANITIZE)
  target_link_options(orlu_options INTERFACE LINKER:--enable-new-dtags)
else()
  # A sanitizer calls dlopen() from its own library, where our RUNPATH has no effect. A program's RPATH
  # applies to everything that the program loads.
  target_link_options(orlu_options INTERFACE LINKER:--disable-new-dtags)
  target_compile_options(orlu_options INTERFACE -fsanitize=${ORLU_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(orlu_options INTERFACE -fsanitize=${ORLU_SANITIZE})
  if(ORLU_SANITIZE MATCHES undefined)
    target_compile_options(orlu_options INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

# orlu_add_jar(NAME SOURCE_DIR [CLASS_PATH JAR...] [DEPENDS TARGET...] [RESOURCES FILE...]): compiles every
# source below SOURCE_DIR into java/NAME.jar. CLASS_PATH lists paths of jars. DEPENDS lists targets that
# earlier calls of this function added; their jars join the class path. RESOURCES lists files below SOURCE_DIR
# that the jar also contains. -XDstringConcat=inline compiles string concatenation to plain calls. Otherwise
# each start of the VM would link every concatenation anew, because class archives can't hold the result.
function(orlu_add_jar name source_dir)
  cmake_parse_arguments(JAR "" "" "CLASS_PATH;DEPENDS;RESOURCES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${source_dir}/*.java)
  set(classes ${CMAKE_CURRENT_BINARY_DIR}/${name}-classes)
  set(jar ${ORLU_JAVA_OUTPUT_DIRECTORY}/${name}.jar)
  # A dependency on a target only orders commands. The jar's command runs again only if a file changes, so it
  # also depends on the jars of these targets.
  set(jars ${JAR_DEPENDS})
  list(TRANSFORM jars REPLACE "(.+)" "${ORLU_JAVA_OUTPUT_DIRECTORY}/\\1.jar")
  set(class_path ${JAR_CLASS_PATH} ${jars})
  set(class_path_option "")
  if(class_path)
    string(REPLACE ";" ":" joined "${class_path}")
    set(class_path_option -cp ${joined})
  endif()
  set(copy_resources "")
  foreach(resource IN LISTS JAR_RESOURCES)
    list(APPEND copy_resources COMMAND ${CMAKE_COMMAND} -E copy ${source_dir}/${resource} ${classes}/${resource})
  endforeach()
  list(TRANSFORM JAR_RESOURCES PREPEND ${source_dir}/ OUTPUT_VARIABLE resource_files)
  add_custom_command(
    OUTPUT ${jar}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${classes} ${ORLU_JAVA_OUTPUT_DIRECTORY}
    COMMAND ${Java_JAVAC_EXECUTABLE} --release 17 -Xlint:all -Werror -XDstringConcat=inline
      -d ${classes} ${class_path_option} ${sources}
    ${copy_resources}
    COMMAND ${Java_JAR_EXECUTABLE} --create --file ${jar} -C ${classes} .
    DEPENDS ${sources} ${resource_files} ${JAR_DEPENDS} ${jars}
    COMMENT "Java ${name}.jar"
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${jar})
endfunction()

# Installs the build tree into a fresh prefix, then builds a small host against
# that prefix alone and runs it: with find_package, linking the shared and the
# static library, and with pkg-config. Run by ctest as "cmake -P" with:
#   BUILD_DIR CONSUMER_DIR WORK_DIR LIBDIR CXX GENERATOR PKG_CONFIG READELF
#   VERSION SOVERSION SANITIZE_FLAGS (may be empty)
foreach(var BUILD_DIR CONSUMER_DIR WORK_DIR LIBDIR CXX GENERATOR VERSION SOVERSION)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "install_consumer.cmake: ${var} is not set")
  endif()
endforeach()
if(NOT PKG_CONFIG)
  message(FATAL_ERROR "pkg-config was not found when the build was configured; install it (tools/dev.sh does)")
endif()

set(prefix "${WORK_DIR}/prefix")
set(libdir "${prefix}/${LIBDIR}")
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# Runs a command; a non-zero exit fails the test with the command's output.
# The output is left in run_output.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${what} failed (${rc}):\n${command}\n${out}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

run("cmake --install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")

foreach(file
    "${libdir}/libct600.so.${VERSION}" "${libdir}/libct600.so.${SOVERSION}" "${libdir}/libct600.so"
    "${libdir}/libct600.a" "${libdir}/libct600_types.a" "${libdir}/pkgconfig/ct600.pc"
    "${libdir}/cmake/ct600/ct600Config.cmake" "${libdir}/cmake/ct600/ct600ConfigVersion.cmake"
    "${prefix}/include/ct600/ct600.h" "${prefix}/bin/ct600" "${prefix}/share/ct600/templates/ctv3_16.xml")
  if(NOT EXISTS "${file}")
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()
if(READELF)
  run("readelf" "${READELF}" -d "${libdir}/libct600.so.${VERSION}")
  if(NOT run_output MATCHES "SONAME\\)[^\n]*\\[libct600\\.so\\.${SOVERSION}\\]")
    message(FATAL_ERROR "libct600.so has no SONAME libct600.so.${SOVERSION}:\n${run_output}")
  endif()
endif()

# Each host run gets its own temporary folder and the installed templates.
function(run_consumer program)
  get_filename_component(name "${program}" NAME)
  set(temp "${WORK_DIR}/tmp_${name}")
  file(MAKE_DIRECTORY "${temp}")
  run("${name}" "${CMAKE_COMMAND}" -E env
    "LD_LIBRARY_PATH=${libdir}" "CT600_TEMP_DIR=${temp}" "CT600_LOG_FILE=${temp}/ct600.log"
    "CT600_TEMPLATE_DIR=${prefix}/share/ct600/templates" "CT600_TODAY=01/06/2021"
    "${program}")
  if(NOT run_output MATCHES "ct600 consumer: ok")
    message(FATAL_ERROR "${name} did not report success:\n${run_output}")
  endif()
  message(STATUS "${name}: ${run_output}")
endfunction()

# find_package, shared and static.
set(build "${WORK_DIR}/consumer")
run("configuring the consumer" "${CMAKE_COMMAND}" -S "${CONSUMER_DIR}" -B "${build}" -G "${GENERATOR}"
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}"
  "-DCMAKE_CXX_FLAGS=${SANITIZE_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${SANITIZE_FLAGS}")
file(STRINGS "${build}/CMakeCache.txt" found REGEX "^ct600_DIR:")
if(NOT found MATCHES "=${libdir}/cmake/ct600$")
  message(FATAL_ERROR "find_package took ct600 from elsewhere: ${found}")
endif()
run("building the consumer" "${CMAKE_COMMAND}" --build "${build}" -j 2)
run_consumer("${build}/consumer_shared")
run_consumer("${build}/consumer_static")
if(READELF)
  run("readelf" "${READELF}" -d "${build}/consumer_shared")
  if(NOT run_output MATCHES "NEEDED\\)[^\n]*\\[libct600\\.so\\.${SOVERSION}\\]")
    message(FATAL_ERROR "consumer_shared does not load libct600.so.${SOVERSION}:\n${run_output}")
  endif()
endif()

# pkg-config, as a hand-written build would use it.
set(ENV{PKG_CONFIG_PATH} "${libdir}/pkgconfig")
run("pkg-config" "${PKG_CONFIG}" --modversion ct600)
string(STRIP "${run_output}" modversion)
if(NOT modversion STREQUAL VERSION)
  message(FATAL_ERROR "pkg-config gives version ${modversion}, expected ${VERSION}")
endif()
execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs ct600
  RESULT_VARIABLE rc OUTPUT_VARIABLE flags ERROR_VARIABLE error OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config --cflags --libs ct600 failed:\n${error}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(sanitize UNIX_COMMAND "${SANITIZE_FLAGS}")
run("building the consumer with pkg-config" "${CXX}" -std=c++20 -Wall -Wextra -Werror ${sanitize}
  "${CONSUMER_DIR}/main.cpp" -o "${WORK_DIR}/consumer_pkgconfig" ${flags})
run_consumer("${WORK_DIR}/consumer_pkgconfig")

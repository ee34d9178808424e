# Script mode: install the built library into a fresh prefix, then build and run the consumer
# through find_package and through pkg-config.
file(REMOVE_RECURSE ${KX_WORK_DIR})
set(prefix ${KX_WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${KX_BUILD_DIR} --prefix ${prefix})

set(sanitize_flags "")
if(KX_SANITIZE)
  set(sanitize_flags "-fsanitize=address,undefined")
endif()

# find_package
run(${CMAKE_COMMAND} -S ${KX_CONSUMER_SOURCE} -B ${KX_WORK_DIR}/cmake-build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${KX_CXX}
    "-DCMAKE_CXX_FLAGS=${sanitize_flags}" "-DCMAKE_EXE_LINKER_FLAGS=${sanitize_flags}")
run(${CMAKE_COMMAND} --build ${KX_WORK_DIR}/cmake-build)
run(${KX_WORK_DIR}/cmake-build/consumer)
if(NOT LAST_OUTPUT MATCHES "consumer ok")
  message(FATAL_ERROR "find_package consumer printed: ${LAST_OUTPUT}")
endif()

# pkg-config
file(GLOB pcdir LIST_DIRECTORIES true ${prefix}/lib*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "${pcdir}")
run(pkg-config --define-prefix --cflags kxxmllib16)
string(STRIP "${LAST_OUTPUT}" cflags)
run(pkg-config --define-prefix --libs kxxmllib16)
string(STRIP "${LAST_OUTPUT}" libs)
separate_arguments(cflags UNIX_COMMAND "${cflags}")
separate_arguments(libs UNIX_COMMAND "${libs}")
separate_arguments(sanitize_list UNIX_COMMAND "${sanitize_flags}")
run(${KX_CXX} -std=c++17 ${sanitize_list} ${cflags} ${KX_CONSUMER_SOURCE}/main.cpp ${libs}
    -o ${KX_WORK_DIR}/consumer-pc)
file(GLOB libdir LIST_DIRECTORIES true ${prefix}/lib*)
set(ENV{LD_LIBRARY_PATH} "${libdir}")
run(${KX_WORK_DIR}/consumer-pc)
if(NOT LAST_OUTPUT MATCHES "consumer ok")
  message(FATAL_ERROR "pkg-config consumer printed: ${LAST_OUTPUT}")
endif()

# Installs BUILD_DIR into WORK/prefix and builds third-party libraries against
# it with the host's plain cmake and compiler (see CMakeLists.txt).
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(last_out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
set(ncl ${prefix}/bin/ncl)
set(example ${SOURCE_DIR}/examples/third-party)
unset(ENV{ZELCLS_PATHS})
unset(ENV{CXXFLAGS})
unset(ENV{LDFLAGS})

run("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(f include/zel/zel.h include/zel/library.h lib/libzel_sdk.a lib/cmake/zel/zelConfig.cmake
          lib/cmake/zel/zelConfigVersion.cmake lib/pkgconfig/zel.pc lib/zel/系统.ncl lib/zel/工具.ncl
          share/doc/zel/writing-a-class-library.md share/doc/zel/LICENSE)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "the install lacks ${f}")
  endif()
endforeach()

# The installed ncl finds 系统.ncl and 工具.ncl in its own folder.
run("installed ncl check 工具" ${ncl} check 工具)

# Through the CMake package, with ctest running ncl check and the script.
run("configure example" ${CMAKE_COMMAND} -S ${example} -B ${WORK}/example -DCMAKE_PREFIX_PATH=${prefix})
run("build example" ${CMAKE_COMMAND} --build ${WORK}/example)
run("test example" ${CMAKE_CTEST_COMMAND} --test-dir ${WORK}/example --output-on-failure)

# Through pkg-config: the same sources, sources before the libraries.
file(MAKE_DIRECTORY ${WORK}/pc)
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run("pkg-config build" sh -c "cd '${WORK}/pc' && g++ -shared -fPIC $(pkg-config --cflags zel) '${example}'/*.cpp $(pkg-config --libs zel) -o 词频.ncl")
run("ncl check (pkg-config)" ${ncl} check ${WORK}/pc/词频.ncl)
run("script (pkg-config)" ${CMAKE_COMMAND} -DNCL=${ncl} -DPATHS=${WORK}/pc -DSCRIPT=${example}/words.zs
    -DEXPECTED=${example}/words.out -P ${prefix}/lib/cmake/zel/zelRunScript.cmake)

# The project of `ncl new` builds and passes its own test unchanged.
run("ncl new" ${ncl} new 示例 ${WORK}/new)
run("configure new" ${CMAKE_COMMAND} -S ${WORK}/new -B ${WORK}/new/build -DCMAKE_PREFIX_PATH=${prefix})
run("build new" ${CMAKE_COMMAND} --build ${WORK}/new/build)
run("test new" ${CMAKE_CTEST_COMMAND} --test-dir ${WORK}/new/build --output-on-failure)
message(STATUS "SDK installed and used: CMake package, pkg-config, ncl new")
